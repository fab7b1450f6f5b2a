// SPDX-License-Identifier: Apache-2.0
// The text of a VCD file in a sliding block buffer: whitespace-separated tokens for the header, a
// bare cursor for the event loop, line numbers for messages. Knows nothing of what the tokens mean.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/source/input.h"
#include "host/source/quoted.h"

namespace wf::vcd {

// The bytes between cursor() and end() are in memory, and the `slack` bytes from end() on are zero,
// which counts as a blank, so that a scan needs no check against the end until it has stopped.
// When it stops at end(), call more() and scan the same thing again from its start.
//
// Lines are counted block by block as the buffer moves on, never token by token.
class Tokens {
  public:
    static constexpr std::size_t default_block = std::size_t{1} << 17;
    // The longest token, or value with its identifier code, that is accepted. Bytes.
    static constexpr std::size_t longest = std::size_t{17} << 20;
    static constexpr std::size_t slack = 24;

    explicit Tokens(std::unique_ptr<Input> input, std::size_t block = default_block);

    // --- token by token ---
    // The next token, good until the following call; empty at the end of the data.
    std::string_view next();
    // Takes tokens up to and including one that is `mark`; false: the data ended first.
    bool skip_past(std::string_view mark);

    // --- by the cursor ---
    const char *cursor() const { return cursor_; }
    const char *end() const { return end_; }
    void move_to(const char *place) { cursor_ = place; }
    // Brings more data behind that from `keep` on, which may move; `keep` is set to its new place
    // and becomes the cursor. False: there is no more; input_failed() tells whether that is an
    // error.
    bool more(const char *&keep);
    bool input_failed() const { return overlong_ || input_->failed(); }
    // Once there is no more: puts a blank there in place of the line end that the last line lacks.
    void close_last_line();

    // --- places ---
    struct Place {
        uint64_t byte = 0;
        uint64_t line = 0;  // line ends before it
    };
    // Where the cursor stands.
    Place place() const;
    // Goes back to a place; false: the input failed on the way.
    bool rewind_to(const Place &place);

    // --- messages ---
    // `file:line: ` of a place in the buffer.
    std::string place_text(const char *place) const;
    // The line of the token that next() gave last, counted from 1. Cheap when asked for in order.
    uint64_t line();
    // `file:line: expected X, got Y` about the token that next() gave last (or the end).
    std::string fault(std::string_view expected) const;
    // The same about `got`, a text that ended with that token.
    std::string fault(std::string_view expected, std::string_view got) const;
    // The same about `got`, which stands at `place` in the buffer.
    std::string fault_at(const char *place, std::string_view expected, std::string_view got) const;
    // What stands in the place of more data: "end of file", or why the input failed.
    std::string end_text() const;

    const Input &input() const { return *input_; }
    // Called after every block that was read.
    void on_block(std::function<void()> listener) { listener_ = std::move(listener); }

  private:
    void make_room(std::size_t kept);

    std::unique_ptr<Input> input_;
    std::vector<char> buffer_;
    const char *cursor_;
    const char *end_;
    std::string_view token_;
    Place before_;                // what has left the buffer
    const char *counted_;         // how far line() has counted in the buffer,
    uint64_t lines_counted_ = 0;  // and how many it has met there
    bool ended_ = false;          // the input has nothing more to give
    bool overlong_ = false;
    std::function<void()> listener_;
};

inline bool is_blank(char character) {
    return static_cast<unsigned char>(character) <= ' ';
}

}  // namespace wf::vcd
