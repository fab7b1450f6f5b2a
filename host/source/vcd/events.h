// SPDX-License-Identifier: Apache-2.0
// The events of a VCD file: value changes, times and the sections around them, handed to a sink one
// by one. Reads and checks; decides nothing. The loop is a template on the sink, so that a sink's
// functions become part of it.
//
// A sink has these functions; slots and widths are those of the targets in the table of codes,
// values are positions in std_logic (U X '0' '1' Z W L H -):
//
//     bool time(Ticks time);                                  // later than the one before; false:
//                                                             // stop here, before its changes
//     void bit(Slot slot, uint8_t value);
//     void bits(Slot first, const uint8_t *values, uint32_t count);  // left to right
//     void real(Slot slot, double value);
//
// What the format leaves open, and what is done:
// - Changes before the first time belong to time 0.
// - A short value is extended on the left: 0 and 1 by 0, x by x, z by z. A long one is cut when its
//   surplus is what an extension would have added, else refused. A scalar change of a vector is a
//   value of one digit.
// - x and z may be capitals; the other letters of std_logic (u w l h -) are taken as they are.
// - A last line without its line end counts when it is complete as it stands, which a cut can make
//   of a longer one, so a change there is warned of. A time there is the end; one that is earlier
//   than the last, or has no digits, was cut, and is left out with a warning. Anything else that is
//   incomplete is a file that was cut off.
// - A number has no place in a bit: it makes the bit unknown, with a warning for the first. Any
// text
//   will do for a number, since no number is counted.
// - Values of no digits belong to vectors of no bits.
// - $dumpvars and its like need their $end, but times may stand inside. The time in $vcdclose is
// the
//   end.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/kernel/kernel.h"
#include "host/source/vcd/ids.h"
#include "host/source/vcd/tokens.h"

namespace wf::vcd {

enum class EventsEnd : uint8_t {
    stopped,      // the sink said so; run() carries on from there
    end_of_data,  // all has been read
    damaged       // error() says where and why
};

// Positions in std_logic by character; `no_value` for what is no value.
inline constexpr uint8_t no_value = 0xff;
extern const std::array<uint8_t, 256> bit_values;
// What a shortened value is extended with, by the position of its first digit.
inline constexpr std::array<uint8_t, 9> extensions = {0, 1, 2, 2, 4, 5, 2, 2, 8};

class Events {
  public:
    // Told what is read otherwise than it stands, `file:line: text`.
    using Warn = std::function<void(const std::string &)>;

    // Reads from where `tokens` stands, behind the declarations. Both outlive this object.
    Events(Tokens &tokens, const IdTable &ids, Warn warn);

    // Feeds the sink until it says stop, the data ends, or it makes no sense.
    template <typename Sink>
    EventsEnd run(Sink &sink);

    const std::string &error() const { return error_; }

  private:
    // What became of one statement.
    enum class Step : uint8_t {
        done,   // the cursor stands behind it
        more,   // it runs into the end of the buffer: to be read again when there is more
        stop,   // done, and the sink wants no more
        fault,  // error_ is set
    };
    // What a code refers to.
    struct Reference {
        std::string_view code;
        Target target;
        const char *after;  // behind the code and its blank
    };

    // One for each kind of statement; `at` is its start, and moves behind it when it is done.
    template <typename Sink>
    Step other(const char *&at, Sink &sink);
    template <typename Sink>
    Step bit(const char *&at, uint8_t value, Sink &sink);
    template <typename Sink>
    Step vector(const char *&at, Sink &sink);
    template <typename Sink>
    Step port(const char *&at, Sink &sink);
    template <typename Sink>
    Step real(const char *&at, Sink &sink);
    template <typename Sink>
    Step time(const char *&at, Sink &sink);
    template <typename Sink>
    Step section(const char *&at, Sink &sink);
    Step text(const char *&at);
    Step null_vector(const char *&at, const char *code);
    // What is left at `at`, once there is no more data: whether it can be read as a line.
    bool take_last_line(const char *at);
    EventsEnd finish(const char *at);
    EventsEnd finish_cut_line(const char *at);

    // Hands over the `count` digits that lie at first_digit().
    template <typename Sink>
    Step place(const char *at, const Reference &reference, uint32_t count, Sink &sink);
    // The same for one target that is bits: cuts them or extends them on the left.
    template <typename Sink>
    void put_bits(Target target, uint32_t count, Sink &sink);

    uint8_t *first_digit() { return digits_.data() + widest_ + 8; }
    uint32_t convert_digits(const char *text);
    // Whether the digits beyond the width, if any, say nothing that an extension would not.
    bool fits(uint32_t count, uint32_t width);
    // Bits of the widest target behind a reference; 0 when none is bits.
    uint32_t widest_of(const Target &target) const;
    void extend_digits(uint32_t by);
    Step read_reference(const char *at, const char *code, Reference &reference);
    Step read_odd_reference(const char *at, const char *code, Reference &reference);
    Step read_port_states(const char *at, uint32_t &count, const char *&code);
    Step read_real(const char *at, double &value, const char *&code);
    Step read_time(const char *at, Ticks &value, const char *&after);
    Step read_section(const char *&at, Ticks &end);
    Step read_closing_time(Ticks &end);

    const char *skip_blanks(const char *text) const;
    const char *skip_word(const char *text) const;
    std::string word_at(const char *at) const;
    void warn_of_number(const char *at);
    Step fault(const char *at, std::string_view expected, std::string_view got);
    Step fault_at_word(const char *at, std::string_view expected);
    Step fault_in_digits(const char *at, uint32_t count);
    Step fault_in_width(const char *at, const Reference &reference, uint32_t count);

    Tokens &tokens_;
    const IdTable &ids_;
    uint32_t widest_;
    uint32_t capacity_;            // digits that may follow first_digit()
    std::vector<uint8_t> digits_;  // room to extend by, digits, and a word to spare
    Ticks time_ = 0;               // the last that was read
    std::string block_;            // the $dump section that is open
    bool block_timed_ = false;     // a time stood in it
    std::string last_line_;        // the last line, when it has no line end
    std::string last_place_;       // and where that is
    bool numbered_bits_ = false;   // a number has stood for bits
    Warn warn_;
    std::string error_;
};

template <typename Sink>
EventsEnd Events::run(Sink &sink) {
    const char *at = tokens_.cursor();
    for (;;) {
        const uint8_t value = bit_values[static_cast<unsigned char>(*at)];
        if (value != no_value) {
            const Code code = Code::at(at + 1);
            const char *after = at + 1 + code.length;
            const Target target = ids_.find(code);
            if (target.shape == 1 && after < tokens_.end()) [[likely]] {
                sink.bit(target.slot, value);
                at = after + 1;
                continue;
            }
        }
        // A copy goes by reference, so that `at` itself can stay in a register.
        const char *place = at;
        const Step step = value != no_value ? bit(place, value, sink) : other(place, sink);
        at = place;
        if (step == Step::more && !tokens_.more(at) && !take_last_line(at)) {
            return finish(at);
        }
        if (step == Step::stop || step == Step::fault) {
            tokens_.move_to(at);
            return step == Step::stop   ? EventsEnd::stopped
                   : last_line_.empty() ? EventsEnd::damaged
                                        : finish_cut_line(at);
        }
    }
}

// Whatever does not begin with a value.
template <typename Sink>
Events::Step Events::other(const char *&at, Sink &sink) {
    switch (*at) {
        case 'b':
        case 'B':
            return vector(at, sink);
        case '#':
            return time(at, sink);
        case '\n':
        case '\r':
        case ' ':
        case '\t':
        case '\v':
        case '\f':
            at = skip_blanks(at);
            return Step::done;
        case '$':
            return section(at, sink);
        case 'r':
        case 'R':
            return real(at, sink);
        case 's':
        case 'S':
            return text(at);
        case 'p':
        case 'P':
            return port(at, sink);
        default:
            return at == tokens_.end() ? Step::more : fault_at_word(at, "a value change or a time");
    }
}

// A scalar change that the loop has left aside: its code is incomplete, unknown, long, or not that
// of one bit.
template <typename Sink>
Events::Step Events::bit(const char *&at, uint8_t value, Sink &sink) {
    Reference reference;
    Step step = read_reference(at, at + 1, reference);
    if (step == Step::done) {
        *first_digit() = value;
        step = place(at, reference, 1, sink);
        at = reference.after;
    }
    return step;
}

template <typename Sink>
Events::Step Events::vector(const char *&at, Sink &sink) {
    const uint32_t count = convert_digits(at + 1);
    const char *behind = at + 1 + count;
    if (behind >= tokens_.end()) {
        return Step::more;
    }
    if (!is_blank(*behind) || count == 0) [[unlikely]] {
        return is_blank(at[1]) ? null_vector(at, skip_blanks(behind)) : fault_in_digits(at, count);
    }
    Reference reference;
    Step step = read_reference(at, skip_blanks(behind), reference);
    if (step == Step::done) {
        step = place(at, reference, count, sink);
        at = reference.after;
    }
    return step;
}

// States, then the strengths of 0 and of 1, which nobody asks for.
template <typename Sink>
Events::Step Events::port(const char *&at, Sink &sink) {
    uint32_t count = 0;
    const char *code = nullptr;
    Step step = read_port_states(at, count, code);
    Reference reference;
    if (step == Step::done) {
        step = read_reference(at, code, reference);
    }
    if (step == Step::done) {
        step = place(at, reference, count, sink);
        at = reference.after;
    }
    return step;
}

template <typename Sink>
Events::Step Events::real(const char *&at, Sink &sink) {
    double value = 0;
    const char *code = nullptr;
    Step step = read_real(at, value, code);
    Reference reference;
    if (step == Step::done) {
        step = read_reference(at, code, reference);
    }
    if (step != Step::done) {
        return step;
    }
    const Target *one = ids_.first_of(reference.target, &reference.target);
    for (uint32_t left = reference.target.count(); left > 0; --left, ++one) {
        if (one->shape == Target::real) {
            sink.real(one->slot, value);
        } else if (one->is_bits()) {
            warn_of_number(at);
            *first_digit() = bit_values['x'];
            put_bits(*one, 1, sink);
        }
    }
    at = reference.after;
    return Step::done;
}

template <typename Sink>
Events::Step Events::time(const char *&at, Sink &sink) {
    Ticks value = 0;
    const char *after = at;
    const Step step = read_time(at, value, after);
    if (step != Step::done) {
        return step;
    }
    at = after;
    block_timed_ = true;
    if (value == time_) {
        return Step::done;
    }
    time_ = value;
    return sink.time(value) ? Step::done : Step::stop;
}

template <typename Sink>
Events::Step Events::section(const char *&at, Sink &sink) {
    Ticks end = time_;
    const Step step = read_section(at, end);
    if (step != Step::done || end == time_) {
        return step;
    }
    time_ = end;
    return sink.time(end) ? Step::done : Step::stop;
}

// A change of bits leaves a number as it is: a real has no x for $dumpoff.
template <typename Sink>
Events::Step Events::place(const char *at, const Reference &reference, uint32_t count, Sink &sink) {
    const Target target = reference.target;
    if (target.is_bits() && count <= target.shape) [[likely]] {
        put_bits(target, count, sink);
        return Step::done;
    }
    const uint32_t width = widest_of(target);
    if (width > 0 && !fits(count, width)) {
        return fault_in_width(at, reference, count);
    }
    const Target *one = ids_.first_of(target, &target);
    for (uint32_t left = target.count(); left > 0; --left, ++one) {
        if (one->is_bits()) {
            put_bits(*one, count, sink);
        }
    }
    return Step::done;
}

template <typename Sink>
void Events::put_bits(Target target, uint32_t count, Sink &sink) {
    const uint32_t width = target.shape;
    const uint8_t *digits = first_digit() + count - width;
    if (count <= width) [[likely]] {
        extend_digits(width - count);
    }
    if (width == 1) {
        sink.bit(target.slot, *digits);
    } else {
        sink.bits(target.slot, digits, width);
    }
}

// Writes whole words in front of the digits, one at least, so that whether a value is short makes
// no difference to the processor.
inline void Events::extend_digits(uint32_t by) {
    const uint64_t word = uint64_t{0x0101010101010101} * extensions[*first_digit()];
    uint8_t *place = first_digit();
    const uint8_t *stop = place - by;
    do {
        place -= sizeof word;
        std::memcpy(place, &word, sizeof word);
    } while (place > stop);
}

inline Events::Step Events::read_reference(const char *at, const char *code, Reference &reference) {
    const Code found = Code::at(code);
    reference.target = ids_.find(found);
    reference.after = code + found.length + 1;
    if (reference.after > tokens_.end() || reference.target.shape == Target::undeclared)
        [[unlikely]] {
        return read_odd_reference(at, code, reference);
    }
    reference.code = std::string_view(code, found.length);
    return Step::done;
}

// The digits from `text` on, up to what is none, as positions at first_digit(). Eight at a time as
// long as they are 0 and 1, which differ from the positions of '0' and '1' in one bit.
inline uint32_t Events::convert_digits(const char *text) {
    constexpr uint64_t ones = 0x0101010101010101U;
    uint8_t *digits = first_digit();
    uint32_t count = 0;
    while (count < capacity_) {
        uint64_t word;
        std::memcpy(&word, text + count, sizeof word);
        const uint64_t others = (word ^ ones * '0') & ~ones;
        word = (word & ones) | ones * 2;
        std::memcpy(digits + count, &word, sizeof word);
        if (others == 0) {
            count += 8;
            continue;
        }
        count += static_cast<uint32_t>(std::countr_zero(others)) / 8;
        const uint8_t value = bit_values[static_cast<unsigned char>(text[count])];
        if (value == no_value) {
            break;
        }
        digits[count++] = value;
    }
    return count;
}

}  // namespace wf::vcd
