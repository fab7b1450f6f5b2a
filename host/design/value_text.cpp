// SPDX-License-Identifier: Apache-2.0
// Values as people read and write them.
#include "host/design/value_text.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstring>

namespace wf {

namespace {

int64_t read_word(const uint8_t *bytes) {
    int64_t value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

// The shortest text that reads back as the same number.
template <typename Number>
void append_number(Number number, std::string &text) {
    char digits[32];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

bool is_character(const std::string &literal) {
    return literal.size() == 3 && literal.front() == '\'' && literal.back() == '\'';
}

bool all_characters(const Type &type) {
    return type.is_byte() && std::all_of(type.literals.begin(), type.literals.end(), is_character);
}

void append_literal(const Type &type, int64_t position, std::string &text) {
    if (position < 0 || position >= type.length) {
        text += '?';
        return;
    }
    const std::string &literal = type.literals[static_cast<size_t>(position)];
    text += is_character(literal) ? literal.substr(1, 1) : literal;
}

void append_scalar(const Type &type, const uint8_t *bytes, std::string &text) {
    if (type.kind == TypeKind::enumeration) {
        append_literal(type, type.is_byte() ? *bytes : read_word(bytes), text);
    } else if (type.kind == TypeKind::real) {
        append_number(std::bit_cast<double>(read_word(bytes)), text);
    } else {
        append_number(read_word(bytes), text);
    }
}

void append_value(const Type &type, const uint8_t *bytes, std::string &text) {
    if (!type.is_composite()) {
        append_scalar(type, bytes, text);
        return;
    }
    const bool is_plain = type.kind == TypeKind::array && all_characters(*type.element);
    text += is_plain ? "" : "{";
    for (uint32_t i = 0; i < type.element_count(); ++i) {
        text += i != 0 && !is_plain ? " " : "";
        append_value(*type.element_type(i), bytes + type.element_offset(i), text);
    }
    text += is_plain ? "" : "}";
}

template <typename Number>
std::optional<Number> parse_number(std::string_view text) {
    Number number{};
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

}  // namespace

std::string value_text(const Type &type, const uint8_t *bytes) {
    std::string text;
    append_value(type, bytes, text);
    return text;
}

std::optional<int64_t> parse_scalar(const Type &type, std::string_view text) {
    if (type.kind == TypeKind::enumeration) {
        int64_t position = type.literal_position(text);
        if (position < 0 && text.size() == 1) {
            position = type.literal_position(std::string{'\'', text.front(), '\''});
        }
        return position < 0 ? std::nullopt : std::optional(position);
    }
    if (type.kind == TypeKind::real) {
        const auto number = parse_number<double>(text);
        return number ? std::optional(std::bit_cast<int64_t>(*number)) : std::nullopt;
    }
    return type.is_composite() ? std::nullopt : parse_number<int64_t>(text);
}

}  // namespace wf
