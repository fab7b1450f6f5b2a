// SPDX-License-Identifier: Apache-2.0
// A vector of bits, shown as text of '0' and '1', in another radix. Text to text.
#ifndef WATTFORGE_HOST_SHELL_RADIX_H
#define WATTFORGE_HOST_SHELL_RADIX_H

#include <string>
#include <string_view>

namespace wf {

enum class Radix { binary, hex, unsigned_decimal, decimal };

// False when there is no radix of that name: binary, bin, b, hex, hexadecimal, h, unsigned, u,
// decimal, dec, d, signed.
bool parse_radix(std::string_view name, Radix *radix);

// "01011010" as "5A", "90" or "90". L and H count as 0 and 1. A hexadecimal digit whose bits are
// not all known is Z when they all are Z, else X; a decimal number is X as a whole. Text with
// other characters than those of std_logic comes back as it is.
std::string in_radix(std::string_view bits, Radix radix);

}  // namespace wf

#endif
