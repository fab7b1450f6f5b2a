// SPDX-License-Identifier: Apache-2.0
// What of a waveform's declarations cannot be shown as it stands: one warning for each kind of it,
// with the place of the first and the number of all, however many a generator has written.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace wf {

enum class Oddity : uint8_t {
    outside,        // a variable before the first scope or behind the last
    no_bits,        // a vector without elements
    odd_range,      // a range that is not as long as the variable is wide
    unknown_kind,   // a variable of a kind that nobody knows
    repeated_name,  // another signal of a name that its scope has already
    several_widths  // one code for variables of different widths
};
inline constexpr std::size_t oddity_count = 6;

class Remarks {
  public:
    // `line` of the file, 0 where it has none; `name` as it stands there.
    void add(Oddity oddity, uint64_t line, std::string_view name);
    // A text for each kind that was met, `file:line: a vector of no bits is passed over: 'n'`.
    void tell(const std::string &file, const std::function<void(const std::string &)> &listener);

  private:
    struct Remark {
        uint64_t count = 0;
        uint64_t line = 0;  // of the first
        std::string name;
    };
    std::array<Remark, oddity_count> remarks_;
};

}  // namespace wf
