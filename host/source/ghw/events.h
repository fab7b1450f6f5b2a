// SPDX-License-Identifier: Apache-2.0
// The events of a GHW file: snapshots of all values, cycles of changes and the times between them,
// handed to a sink one by one. Reads and checks; decides nothing. The loop is a template on the
// sink, so that a sink's functions become part of it.
//
// A sink has these functions; slots are those of the table of scalars:
//
//     bool time(Ticks time);                 // later than the one before; false: stop here, before
//                                            // its changes
//     void byte(Slot slot, uint8_t value);   // a position of an enumeration
//     void word(Slot slot, int64_t value);   // an integer, a physical value or a real's bits
//
// What the format leaves open, and what is done:
// - Values before the first time other than 0 belong to time 0.
// - A cycle at the time of the one before goes on with its step.
// - A position that its type does not have is damage; an integer outside its bounds is not, since
//   nothing here counts on them.
// - The directory and the tail at the end are read over. A file that ends without them was cut off.
#pragma once

#include <bit>
#include <cstdint>
#include <string>

#include "host/kernel/kernel.h"
#include "host/source/ghw/ids.h"
#include "host/source/ghw/tokens.h"

namespace wf::ghw {

enum class EventsEnd : uint8_t {
    stopped,      // the sink said so; run() carries on from there
    end_of_data,  // all has been read
    damaged       // error() says where and why
};

class Events {
  public:
    // Reads from where `tokens` stands, behind the header. Both outlive this object.
    Events(Tokens &tokens, const IdTable &ids) : tokens_(tokens), ids_(ids) {}

    // Feeds the sink until it says stop, the data ends, or it makes no sense.
    template <typename Sink>
    EventsEnd run(Sink &sink);

    const std::string &error() const { return tokens_.error(); }

  private:
    // What became of one piece.
    enum class Step : uint8_t {
        done,   // the cursor stands behind it
        stop,   // done, and the sink wants no more
        end,    // there is no more
        fault,  // error() is set
    };
    // What run() is to read next.
    enum class Place : uint8_t { section, snapshot, cycles };

    template <typename Sink>
    Step snapshot(Sink &sink);
    template <typename Sink>
    Step cycles(Sink &sink);
    template <typename Sink>
    Step time(Ticks value, Sink &sink);
    // Hands over the value at `at`: the place behind it, or null when it is none.
    template <typename Sink>
    const char *value(const char *at, Leaf leaf, Sink &sink);
    template <typename Sink>
    void put_several(Leaf leaf, int64_t value, Sink &sink);

    // Reads the start of a section; its time goes to `time`, whether it has one or not.
    Step section(Ticks &time);
    bool read_directory();
    bool read_tail();
    // Reads the time that ends a cycle; -1: it was the last.
    bool read_advance(const char *at, Ticks &time);
    Step fault_in_value(const char *at, uint64_t number);

    Tokens &tokens_;
    const IdTable &ids_;
    Ticks time_ = 0;  // the last that was read
    Place place_ = Place::section;
    bool is_tail_read_ = false;
};

template <typename Sink>
EventsEnd Events::run(Sink &sink) {
    for (;;) {
        Ticks at = time_;
        Step step = Step::done;
        switch (place_) {
            case Place::section:
                step = section(at);
                step = step == Step::done ? time(at, sink) : step;
                break;
            case Place::snapshot:
                step = snapshot(sink);
                break;
            case Place::cycles:
                step = cycles(sink);
                break;
        }
        if (step != Step::done) {
            return step == Step::stop  ? EventsEnd::stopped
                   : step == Step::end ? EventsEnd::end_of_data
                                       : EventsEnd::damaged;
        }
    }
}

template <typename Sink>
Events::Step Events::time(Ticks value, Sink &sink) {
    if (value == time_) {
        return Step::done;
    }
    time_ = value;
    return sink.time(value) ? Step::done : Step::stop;
}

template <typename Sink>
Events::Step Events::snapshot(Sink &sink) {
    for (uint32_t number = 1; number <= ids_.count(); ++number) {
        tokens_.have(1);
        const char *after = value(tokens_.cursor(), ids_.at(number), sink);
        if (after == nullptr) {
            return fault_in_value(tokens_.cursor(), number);
        }
        tokens_.move_to(after);
    }
    place_ = Place::section;
    return tokens_.mark({"ESN\0", 4}, "the end mark ESN") ? Step::done : Step::fault;
}

// Numbers are written as their distance to the one before; distance 0 ends a cycle.
template <typename Sink>
Events::Step Events::cycles(Sink &sink) {
    const uint64_t count = ids_.count();
    uint64_t number = 0;
    const char *at = tokens_.cursor();
    const char *checked = tokens_.end() - Tokens::slack;
    for (;;) {
        if (at > checked) [[unlikely]] {
            tokens_.move_to(at);
            tokens_.have(1);
            at = tokens_.cursor();
            checked = tokens_.end() - Tokens::slack;
        }
        uint64_t distance = 0;
        const char *after = read_unsigned(at, distance);
        if (distance == 0 && after != nullptr) {
            Ticks next = 0;
            tokens_.move_to(at);
            if (!read_advance(after, next)) {
                return Step::fault;
            }
            if (place_ != Place::cycles) {
                return Step::done;
            }
            at = tokens_.cursor();
            number = 0;
            if (time(next, sink) == Step::stop) {
                return Step::stop;
            }
            continue;
        }
        number += distance;
        if (after == nullptr || distance > count || number > count) [[unlikely]] {
            return fault_in_value(at, number);
        }
        after = value(after, ids_.at(static_cast<uint32_t>(number)), sink);
        if (after == nullptr) [[unlikely]] {
            return fault_in_value(at, number);
        }
        at = after;
    }
}

template <typename Sink>
inline const char *Events::value(const char *at, Leaf leaf, Sink &sink) {
    if (leaf.form == Leaf::byte) [[likely]] {
        const auto position = static_cast<uint8_t>(*at);
        if (position > leaf.last || at >= tokens_.end()) [[unlikely]] {
            return nullptr;
        }
        sink.byte(leaf.slot, position);
        return at + 1;
    }
    int64_t word = 0;
    const char *after = at + sizeof word;
    const int form = leaf.form % Leaf::several;
    if (form == Leaf::number) {
        after = read_signed(at, word);
    } else if (form == Leaf::real) {
        std::memcpy(&word, at, sizeof word);
        word = tokens_.swapped(word);
    } else {
        word = static_cast<uint8_t>(*at);
        after = word > leaf.last ? nullptr : at + 1;
    }
    if (after == nullptr || after > tokens_.end()) {
        return nullptr;
    }
    if (leaf.form > Leaf::several) {
        put_several(leaf, word, sink);
    } else {
        sink.word(leaf.slot, word);
    }
    return after;
}

template <typename Sink>
void Events::put_several(Leaf leaf, int64_t value, Sink &sink) {
    const Slot *slots = ids_.slots_of(leaf);
    for (uint32_t left = *slots++; left > 0; --left, ++slots) {
        if (leaf.form == Leaf::several + Leaf::byte) {
            sink.byte(*slots, static_cast<uint8_t>(value));
        } else {
            sink.word(*slots, value);
        }
    }
}

}  // namespace wf::ghw
