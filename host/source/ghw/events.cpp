// SPDX-License-Identifier: Apache-2.0
// The parts of the event reader that no sink has a share in: starts of sections, the end of the
// file, messages.
#include "host/source/ghw/events.h"

namespace wf::ghw {

Events::Step Events::section(Ticks &time) {
    tokens_.enter("events");
    if (is_tail_read_) {
        const bool is_over = tokens_.at_end() && !tokens_.input().failed();
        return is_over || tokens_.fault_here("the end of the file") ? Step::end : Step::fault;
    }
    std::string tag;
    if (!tokens_.tag(tag, "a section SNP, CYC, DIR or TAI")) {
        return Step::fault;
    }
    bool is_good = false;
    if (tag == std::string_view("SNP\0", 4)) {
        tokens_.enter("SNP");
        place_ = Place::snapshot;
        is_good = tokens_.mark({"\0\0\0\0", 4}, "four zero bytes") &&
                  tokens_.long_word(time, "the time of a snapshot");
    } else if (tag == std::string_view("CYC\0", 4)) {
        tokens_.enter("CYC");
        place_ = Place::cycles;
        is_good = tokens_.long_word(time, "the time of a cycle");
    } else if (tag == std::string_view("DIR\0", 4)) {
        is_good = read_directory();
    } else if (tag == std::string_view("TAI\0", 4)) {
        is_good = read_tail();
    } else {
        tokens_.fault("a section SNP, CYC, DIR or TAI", in_hex(tag));
    }
    if (is_good && time < time_) {
        is_good =
            tokens_.fault("a time of at least " + std::to_string(time_), std::to_string(time));
    }
    return is_good ? Step::done : Step::fault;
}

// Where the sections are: offsets that are -1 when the file was written through a pipe.
bool Events::read_directory() {
    tokens_.enter("DIR");
    uint32_t layout = 0;
    uint32_t count = 0;
    if (!tokens_.word(layout, "the layout of the directory") ||
        !tokens_.word(count, "the number of sections")) {
        return false;
    }
    for (uint32_t i = 0; i < count; ++i) {
        std::string tag;
        uint32_t offset = 0;
        if (!tokens_.tag(tag, "the name of a section") ||
            !tokens_.word(offset, "the place of a section")) {
            return false;
        }
    }
    return tokens_.mark({"EOD\0", 4}, "the end mark EOD");
}

bool Events::read_tail() {
    tokens_.enter("TAI");
    uint32_t layout = 0;
    uint32_t offset = 0;
    is_tail_read_ = tokens_.word(layout, "the layout of the tail") &&
                    tokens_.word(offset, "the place of the directory");
    return is_tail_read_;
}

bool Events::read_advance(const char *at, Ticks &time) {
    int64_t advance = 0;
    const char *after = read_signed(at, advance);
    if (after == nullptr || after > tokens_.end()) {
        return tokens_.fault_here("the end of a cycle and the time to the next");
    }
    tokens_.move_to(after);
    if (advance == -1) {
        place_ = Place::section;
        return tokens_.mark({"ECY\0", 4}, "the end mark ECY");
    }
    if (advance < 0 || __builtin_add_overflow(time_, advance, &time)) {
        return tokens_.fault_at(
            at, "a time to the next cycle of 0 to " + std::to_string(INT64_MAX - time_),
            std::to_string(advance));
    }
    return true;
}

// What stands at `at` is the value of that scalar, in a cycle with its distance before it.
Events::Step Events::fault_in_value(const char *at, uint64_t number) {
    tokens_.move_to(at);
    if (number == 0 || number > ids_.count()) {
        tokens_.fault_here("the number of a scalar of at most " + std::to_string(ids_.count()),
                           at < tokens_.end() ? std::to_string(number) : "");
        return Step::fault;
    }
    const Leaf leaf = ids_.at(static_cast<uint32_t>(number));
    std::string expected = "a value of scalar " + std::to_string(number);
    if (leaf.form % Leaf::several == Leaf::byte) {
        expected += ", a position of at most " + std::to_string(leaf.last);
    }
    tokens_.fault_here(expected);
    return Step::fault;
}

}  // namespace wf::ghw
