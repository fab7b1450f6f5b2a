// SPDX-License-Identifier: Apache-2.0
// A look at the words that follow the declarations.
#include "host/source/vcd/directions.h"

#include <algorithm>
#include <string_view>

namespace wf::vcd {
namespace {

constexpr std::size_t furthest = std::size_t{1} << 20;

// Words one by one; none is taken from the tokens.
class Lookahead {
  public:
    explicit Lookahead(Tokens &tokens) : tokens_(tokens), start_(tokens.cursor()) {}
    ~Lookahead() { tokens_.move_to(start_); }
    Lookahead(const Lookahead &) = delete;
    Lookahead &operator=(const Lookahead &) = delete;

    // Good until the following call; empty at the end of what is looked at.
    std::string_view next() {
        std::string_view word = word_at_offset();
        while (word.end() == tokens_.end()) {
            const bool wanted = static_cast<std::size_t>(tokens_.end() - start_) < furthest;
            if (!wanted || !tokens_.more(start_)) {
                return {};
            }
            word = word_at_offset();
        }
        offset_ = static_cast<std::size_t>(word.end() - start_);
        return word;
    }

  private:
    // Up to the end of the buffer at most.
    std::string_view word_at_offset() const {
        const char *from = std::find_if_not(start_ + offset_, tokens_.end(), is_blank);
        return {from, std::find_if(from, tokens_.end(), is_blank)};
    }

    Tokens &tokens_;
    const char *start_;
    std::size_t offset_ = 0;
};

Mode mode_of(std::string_view states) {
    const auto all_of = [&](std::string_view letters) {
        return !states.empty() && states.find_first_not_of(letters) == std::string_view::npos;
    };
    return all_of("DUNZdu") ? Mode::in : all_of("LHXTlh") ? Mode::out : Mode::inout;
}

}  // namespace

std::vector<Mode> read_port_modes(Tokens &tokens, IdTable &ids) {
    std::vector<Mode> modes(ids.count(), Mode::inout);
    std::vector<bool> known(ids.count());
    Lookahead words(tokens);
    int times = 0;
    for (std::string_view word = words.next(); !word.empty(); word = words.next()) {
        if (word[0] == '#' && ++times == 2) {
            break;
        }
        if (word[0] == '$' && !word.starts_with("$dump")) {
            while (!word.empty() && word != "$end") {
                word = words.next();
            }
        } else if (word[0] == 'p') {
            const Mode mode = mode_of(word.substr(1));
            words.next();  // the strengths of 0 and of 1
            words.next();
            word = words.next();
            const uint32_t number = word.empty() ? IdTable::none : ids.number(word);
            if (number < known.size() && !known[number]) {
                known[number] = true;
                modes[number] = mode;
            }
        }
    }
    return modes;
}

}  // namespace wf::vcd
