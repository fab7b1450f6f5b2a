// SPDX-License-Identifier: Apache-2.0
// The parts of the event reader that no sink has a share in: tables, odd statements, messages.
#include "host/source/vcd/events.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <utility>

namespace wf::vcd {
namespace {

// std_logic's literals, each with the characters that mean it.
constexpr std::array<uint8_t, 256> table_of(std::initializer_list<std::string_view> characters) {
    std::array<uint8_t, 256> table = {};
    table.fill(no_value);
    uint8_t position = 0;
    for (const std::string_view meaning : characters) {
        for (const char character : meaning) {
            table[static_cast<unsigned char>(character)] = position;
        }
        ++position;
    }
    return table;
}

// States of ports (extended VCD): driven from outside, from inside, from both or from nowhere.
// Where both sides disagree the bit is X.
constexpr std::array<uint8_t, 256> port_values =
    table_of({"", "NX?AaBbCc", "DdLl0", "UuHh1", "ZTFf"});

bool is_digit(char character) {
    return character >= '0' && character <= '9';
}

}  // namespace

constexpr std::array<uint8_t, 256> bit_values =
    table_of({"uU", "xX", "0", "1", "zZ", "wW", "lL", "hH", "-"});

Events::Events(Tokens &tokens, const IdTable &ids, Warn warn)
    : tokens_(tokens),
      ids_(ids),
      widest_(ids.widest()),
      // Some tools write every value with the same number of digits.
      capacity_(std::max<uint32_t>(widest_, 4096)),
      digits_(std::size_t{widest_} + capacity_ + 24),
      warn_(std::move(warn)) {
}

// Ids longer than eight characters, unknown ones, those at the end of the buffer, and those that
// stand apart from a scalar's value.
Events::Step Events::read_odd_reference(const char *at, const char *code, Reference &reference) {
    const bool apart = code < tokens_.end() && is_blank(*code);
    code = skip_blanks(code);
    const char *end = skip_word(code);
    if (end >= tokens_.end()) {
        return Step::more;
    }
    reference.code = std::string_view(code, static_cast<std::size_t>(end - code));
    reference.target = ids_.find_text(reference.code);
    reference.after = end + 1;
    if (reference.target.shape != Target::undeclared) {
        return Step::done;
    }
    return apart ? fault(at, "an identifier code right after " + quoted({at, 1}), "a blank")
                 : fault(at, "an identifier code that was declared", quoted(reference.code));
}

Events::Step Events::read_port_states(const char *at, uint32_t &count, const char *&code) {
    const char *text = at + 1;
    for (count = 0; count < capacity_; ++count) {
        const uint8_t value = port_values[static_cast<unsigned char>(text[count])];
        if (value == no_value) {
            break;
        }
        first_digit()[count] = value;
    }
    const char *behind = text + count;
    const char *strength0 = skip_blanks(behind);
    const char *strength1 = skip_blanks(skip_word(strength0));
    code = skip_blanks(skip_word(strength1));
    if (code >= tokens_.end()) {
        return Step::more;
    }
    if (count == 0 || !is_blank(*behind)) {
        return fault_at_word(at, "the states of a port");
    }
    return Step::done;
}

Events::Step Events::read_real(const char *at, double &value, const char *&code) {
    const char *end = skip_word(at);
    code = skip_blanks(end);
    if (code >= tokens_.end()) {
        return Step::more;
    }
    const auto result = std::from_chars(at + 1, end, value);
    if (result.ec != std::errc() || result.ptr != end) {
        // Beyond the range, x, or no number at all.
        value = std::numeric_limits<double>::quiet_NaN();
    }
    return Step::done;
}

void Events::warn_of_number(const char *at) {
    if (!std::exchange(numbered_bits_, true)) {
        warn_(tokens_.place_text(at) + "a number for bits makes them unknown: " + word_at(at));
    }
}

// The value of a vector without bits.
Events::Step Events::null_vector(const char *&at, const char *code) {
    Reference reference;
    const Step step = read_reference(at, code, reference);
    if (step == Step::done && reference.target.shape != Target::ignored) {
        return fault_in_digits(at, 0);
    }
    at = step == Step::done ? reference.after : at;
    return step;
}

// A string's value has no place in a design; only its code is looked at.
Events::Step Events::text(const char *&at) {
    const char *code = skip_blanks(skip_word(at));
    if (code >= tokens_.end()) {
        return Step::more;
    }
    Reference reference;
    const Step step = read_reference(at, code, reference);
    if (step == Step::done) {
        at = reference.after;
    }
    return step;
}

Events::Step Events::read_time(const char *at, Ticks &value, const char *&after) {
    const auto result = std::from_chars(at + 1, tokens_.end(), value);
    if (result.ptr == tokens_.end()) {
        return Step::more;
    }
    if (result.ec != std::errc() || !is_digit(at[1]) || !is_blank(*result.ptr)) {
        return fault_at_word(at, "a time of 0 to 9223372036854775807");
    }
    if (value < time_) {
        return fault_at_word(at, "a time of at least " + std::to_string(time_));
    }
    after = result.ptr + 1;
    return Step::done;
}

// Sections may be longer than the buffer; they are read by the token.
Events::Step Events::read_section(const char *&at, Ticks &end) {
    tokens_.move_to(at);
    const std::string keyword(tokens_.next());
    Step step = Step::done;
    if (keyword.starts_with("$dump")) {
        block_ = keyword;
        block_timed_ = false;
    } else if (keyword == "$end" && !block_.empty()) {
        block_.clear();
    } else if (keyword == "$end" || keyword == "$var" || keyword == "$scope" ||
               keyword == "$upscope" || keyword == "$enddefinitions" || keyword == "$timescale") {
        error_ = tokens_.fault("a value change or a time");
        step = Step::fault;
    } else if (keyword == "$vcdclose") {
        step = read_closing_time(end);
    } else if (!tokens_.skip_past("$end")) {
        error_ = tokens_.fault("$end of " + keyword);
        step = Step::fault;
    }
    at = tokens_.cursor();
    return step;
}

// The end of the simulation, which may be later than the last change.
Events::Step Events::read_closing_time(Ticks &end) {
    std::string_view token = tokens_.next();
    for (; !token.empty() && token != "$end"; token = tokens_.next()) {
        Ticks value = 0;
        const char *stop = token.data() + token.size();
        const auto result = std::from_chars(token.data() + 1, stop, value);
        if (token[0] == '#' && result.ec == std::errc() && result.ptr == stop) {
            end = std::max(end, value);
        }
    }
    if (token.empty()) {
        error_ = tokens_.fault("$end of $vcdclose");
        return Step::fault;
    }
    return Step::done;
}

bool Events::take_last_line(const char *at) {
    if (at == tokens_.end() || tokens_.input_failed() || !last_line_.empty()) {
        return false;
    }
    last_line_.assign(at, tokens_.end());
    last_place_ = tokens_.place_text(at);
    tokens_.close_last_line();
    return true;
}

// A time that was cut is the end; a change that was cut is damage.
EventsEnd Events::finish_cut_line(const char *at) {
    error_.clear();
    if (last_line_[0] != '#' ||
        last_line_.find_first_not_of("0123456789", 1) != std::string::npos) {
        fault(at, "a complete line", quoted(last_line_) + " and " + tokens_.end_text());
        return EventsEnd::damaged;
    }
    warn_(last_place_ + "the last line has no line end and is left out: " + quoted(last_line_));
    last_line_.clear();
    return finish(tokens_.end());
}

// What is left over when the data has ended.
EventsEnd Events::finish(const char *at) {
    tokens_.move_to(at);
    if (at < tokens_.end() && !last_line_.empty()) {
        return finish_cut_line(at);
    }
    if (!last_line_.empty() && last_line_[0] != '#') {
        warn_(last_place_ +
              "the last line has no line end and is taken as it stands: " + quoted(last_line_));
    }
    if (at < tokens_.end()) {
        const std::string_view rest(at, static_cast<std::size_t>(tokens_.end() - at));
        fault(at, "a complete line", quoted(rest) + " and " + tokens_.end_text());
    } else if (tokens_.input_failed()) {
        fault(at, "more data", tokens_.end_text());
    } else if (!block_.empty() && !block_timed_) {
        fault(at, "$end of " + block_, tokens_.end_text());
    }
    return error_.empty() ? EventsEnd::end_of_data : EventsEnd::damaged;
}

bool Events::fits(uint32_t count, uint32_t width) {
    const uint8_t *digits = first_digit();
    for (uint32_t i = width; i < count; ++i, ++digits) {
        if (digits[0] != extensions[digits[1]]) {
            return false;
        }
    }
    return true;
}

uint32_t Events::widest_of(const Target &target) const {
    uint32_t width = 0;
    const Target *one = ids_.first_of(target, &target);
    for (uint32_t left = target.count(); left > 0; --left, ++one) {
        width = std::max(width, one->is_bits() ? one->shape : 0);
    }
    return width;
}

const char *Events::skip_blanks(const char *text) const {
    while (text < tokens_.end() && is_blank(*text)) {
        ++text;
    }
    return text;
}

const char *Events::skip_word(const char *text) const {
    while (!is_blank(*text)) {
        ++text;
    }
    return text;
}

Events::Step Events::fault(const char *at, std::string_view expected, std::string_view got) {
    error_ = tokens_.fault_at(at, expected, got);
    return Step::fault;
}

Events::Step Events::fault_at_word(const char *at, std::string_view expected) {
    return fault(at, expected, word_at(at));
}

std::string Events::word_at(const char *at) const {
    const char *end = std::max(skip_word(at), at + 1);
    return quoted({at, static_cast<std::size_t>(end - at)});
}

Events::Step Events::fault_in_digits(const char *at, uint32_t count) {
    if (count >= capacity_) {
        return fault(at, "at most " + std::to_string(widest_) + " digits",
                     "more than " + std::to_string(count));
    }
    if (is_blank(at[1])) {
        return fault(at, "the digits of a vector", "a blank");
    }
    return fault(at, "digits 0, 1, x or z", quoted({at + 1 + count, 1}));
}

Events::Step Events::fault_in_width(const char *at, const Reference &reference, uint32_t count) {
    const std::string width = std::to_string(widest_of(reference.target));
    return fault(at, "at most " + width + " digits for " + quoted(reference.code),
                 std::to_string(count));
}

}  // namespace wf::vcd
