// SPDX-License-Identifier: Apache-2.0
// The sliding buffer and the wording of messages.
#include "host/source/vcd/tokens.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace wf::vcd {
namespace {

using Bytes16 = uint8_t __attribute__((vector_size(16)));

// Sixteen at a time: every byte of a long file passes through here once.
uint64_t count_line_ends(const char *from, const char *to) {
    uint64_t total = 0;
    while (to - from >= 16) {
        Bytes16 counts = {};
        // No count of the sixteen overflows in so many bytes.
        constexpr std::ptrdiff_t longest_run = std::ptrdiff_t{16} * 255;
        const char *stop = from + std::min((to - from) & ~std::ptrdiff_t{15}, longest_run);
        for (; from < stop; from += 16) {
            Bytes16 bytes;
            std::memcpy(&bytes, from, sizeof bytes);
            counts -= static_cast<Bytes16>(bytes == '\n');
        }
        for (int i = 0; i < 16; ++i) {
            total += counts[i];
        }
    }
    return total + static_cast<uint64_t>(std::count(from, to, '\n'));
}

}  // namespace

Tokens::Tokens(std::unique_ptr<Input> input, std::size_t block)
    : input_(std::move(input)), buffer_(block + slack) {
    cursor_ = counted_ = end_ = buffer_.data();
}

// Makes the buffer larger when what is kept fills more than half of it.
void Tokens::make_room(std::size_t kept) {
    if (kept * 2 <= buffer_.size() - slack) {
        return;
    }
    buffer_.resize(buffer_.size() * 2 - slack);
}

bool Tokens::more(const char *&keep) {
    before_.line += count_line_ends(buffer_.data(), keep);
    before_.byte += static_cast<uint64_t>(keep - buffer_.data());
    const auto kept = static_cast<std::size_t>(end_ - keep);
    if (keep != buffer_.data()) {
        std::memmove(buffer_.data(), keep, kept);
    }
    overlong_ = kept > longest;
    ended_ = ended_ || overlong_;
    if (!ended_) {
        make_room(kept);
    }
    keep = cursor_ = counted_ = buffer_.data();
    lines_counted_ = 0;
    char *free = buffer_.data() + kept;
    const std::size_t room = buffer_.size() - slack - kept;
    const std::size_t count = ended_ ? 0 : input_->read(free, room);
    ended_ = count == 0;
    std::memset(free + count, 0, slack);
    end_ = free + count;
    if (count > 0 && listener_) {
        listener_();
    }
    return count > 0;
}

void Tokens::close_last_line() {
    buffer_[static_cast<std::size_t>(end_ - buffer_.data())] = ' ';
    ++end_;
}

std::string_view Tokens::next() {
    std::size_t length = 0;
    do {
        while (cursor_ < end_ && is_blank(*cursor_)) {
            ++cursor_;
        }
        const char *stop = cursor_;
        while (!is_blank(*stop)) {
            ++stop;
        }
        length = static_cast<std::size_t>(stop - cursor_);
    } while (cursor_ + length == end_ && more(cursor_));
    token_ = std::string_view(cursor_, length);
    cursor_ += length;
    return token_;
}

bool Tokens::skip_past(std::string_view mark) {
    for (std::string_view token = next(); !token.empty(); token = next()) {
        if (token == mark) {
            return true;
        }
    }
    return false;
}

Tokens::Place Tokens::place() const {
    return {.byte = before_.byte + static_cast<uint64_t>(cursor_ - buffer_.data()),
            .line = before_.line + count_line_ends(buffer_.data(), cursor_)};
}

bool Tokens::rewind_to(const Place &place) {
    before_ = place;
    cursor_ = counted_ = end_ = buffer_.data();
    lines_counted_ = 0;
    std::memset(buffer_.data(), 0, slack);
    token_ = {};
    ended_ = overlong_ = false;
    return input_->rewind_to(place.byte);
}

std::string Tokens::end_text() const {
    if (overlong_) {
        return "more than " + std::to_string(longest) + " bytes without a blank";
    }
    return input_->failed() ? input_->failure() : "end of file";
}

std::string Tokens::fault(std::string_view expected) const {
    return token_.empty() ? fault_at(end_, expected, end_text())
                          : fault_at(token_.data(), expected, quoted(token_));
}

std::string Tokens::fault(std::string_view expected, std::string_view got) const {
    return fault_at(token_.data(), expected, got);
}

std::string Tokens::fault_at(const char *place, std::string_view expected,
                             std::string_view got) const {
    return place_text(place).append("expected ").append(expected).append(", got ").append(got);
}

std::string Tokens::place_text(const char *place) const {
    const uint64_t line = before_.line + count_line_ends(buffer_.data(), place) + 1;
    return input_->name() + ":" + std::to_string(line) + ": ";
}

uint64_t Tokens::line() {
    lines_counted_ += count_line_ends(counted_, token_.data());
    counted_ = token_.data();
    return before_.line + lines_counted_ + 1;
}

}  // namespace wf::vcd
