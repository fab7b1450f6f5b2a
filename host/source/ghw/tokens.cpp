// SPDX-License-Identifier: Apache-2.0
// The sliding buffer and the wording of messages.
#include "host/source/ghw/tokens.h"

#include <utility>

namespace wf::ghw {

Tokens::Tokens(std::unique_ptr<Input> input, std::size_t block)
    : input_(std::move(input)), buffer_(block + 2 * slack) {
    cursor_ = buffer_.data();
    end_ = cursor_;
}

bool Tokens::have(std::size_t wanted) {
    const auto kept = static_cast<std::size_t>(end_ - cursor_);
    if (kept >= slack || ended_) {
        return kept >= wanted;
    }
    bytes_before_ += static_cast<uint64_t>(cursor_ - buffer_.data());
    std::memmove(buffer_.data(), cursor_, kept);
    cursor_ = buffer_.data();
    char *free = buffer_.data() + kept;
    char *stop = buffer_.data() + buffer_.size() - slack;
    while (!ended_ && free < cursor_ + slack) {
        const std::size_t count = input_->read(free, static_cast<std::size_t>(stop - free));
        ended_ = count == 0;
        free += count;
    }
    std::memset(free, 0, slack);
    end_ = free;
    if (listener_) {
        listener_();
    }
    return static_cast<std::size_t>(end_ - cursor_) >= wanted;
}

bool Tokens::rewind_to(uint64_t place) {
    bytes_before_ = item_ = place;
    cursor_ = end_ = buffer_.data();
    std::memset(buffer_.data(), 0, slack);
    ended_ = false;
    error_.clear();
    return input_->rewind_to(place);
}

bool Tokens::take(const char *after, std::string_view expected) {
    item_ = offset_of(cursor_);
    if (after == nullptr || after > end_) {
        return fault_here(expected);
    }
    cursor_ = after;
    return true;
}

bool Tokens::byte(uint8_t &value, std::string_view expected) {
    have(1);
    value = static_cast<uint8_t>(*cursor_);
    return take(cursor_ + 1, expected);
}

bool Tokens::number(uint32_t &value, uint32_t limit, std::string_view expected) {
    have(1);
    uint64_t wide = 0;
    if (!take(read_unsigned(cursor_, wide), expected)) {
        return false;
    }
    value = static_cast<uint32_t>(wide);
    return wide <= limit || fault(std::string(expected) + " of at most " + std::to_string(limit),
                                  std::to_string(wide));
}

bool Tokens::signed_number(int64_t &value, std::string_view expected) {
    have(1);
    return take(read_signed(cursor_, value), expected);
}

bool Tokens::word(uint32_t &value, std::string_view expected) {
    have(sizeof value);
    std::memcpy(&value, cursor_, sizeof value);
    value = is_swapped_ ? __builtin_bswap32(value) : value;
    return take(cursor_ + sizeof value, expected);
}

bool Tokens::long_word(int64_t &value, std::string_view expected) {
    have(sizeof value);
    std::memcpy(&value, cursor_, sizeof value);
    value = swapped(value);
    return take(cursor_ + sizeof value, expected);
}

bool Tokens::mark(std::string_view bytes, std::string_view expected) {
    have(bytes.size());
    if (std::string_view(cursor_, bytes.size()) != bytes) {
        return fault_here(expected, what_is_here());
    }
    return take(cursor_ + bytes.size(), expected);
}

bool Tokens::tag(std::string &value, std::string_view expected) {
    have(4);
    value.assign(cursor_, 4);
    return take(cursor_ + 4, expected);
}

bool Tokens::fault(std::string_view expected, std::string_view got) {
    return complain(item_, expected, got);
}

bool Tokens::fault_here(std::string_view expected, std::string_view got) {
    return fault_at(cursor_, expected, got.empty() ? what_is_here() : got);
}

bool Tokens::fault_at(const char *place, std::string_view expected, std::string_view got) {
    return complain(offset_of(place), expected, got);
}

bool Tokens::complain(uint64_t offset, std::string_view expected, std::string_view got) {
    error_ = input_->name() + ": byte " + std::to_string(offset) + ", section " + section_ +
             ": expected ";
    error_.append(expected).append(", got ").append(got);
    return false;
}

// The next bytes in hexadecimal; less than an item at the end is what the input ends with.
std::string Tokens::what_is_here() const {
    constexpr std::ptrdiff_t shown = 10;
    if (end_ - cursor_ < shown && ended_) {
        const char *what = input_->failed() ? input_->failure().c_str() : "end of file";
        if (cursor_ == end_) {
            return what;
        }
        return std::to_string(end_ - cursor_) + " bytes and " + what;
    }
    return in_hex({cursor_, shown});
}

std::string in_hex(std::string_view bytes) {
    constexpr char digits[] = "0123456789abcdef";
    std::string text = "the bytes";
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        text += {' ', digits[value >> 4], digits[value & 15]};
    }
    return text;
}

}  // namespace wf::ghw
