// SPDX-License-Identifier: Apache-2.0
// A vector of bits, shown as text of '0' and '1', in another radix. Text to text.
#ifndef WATTFORGE_HOST_SHELL_RADIX_H
#define WATTFORGE_HOST_SHELL_RADIX_H

#include <string>
#include <string_view>

namespace wf {

enum class Radix { symbolic, binary, octal, hex, unsigned_decimal, decimal };

// Their names, for Tcl to look them up in; a null ends them. Two may mean the same radix.
inline constexpr const char *radix_names[] = {"binary", "decimal",  "hexadecimal", "octal",
                                              "signed", "symbolic", "unsigned",    nullptr};
// The radix of the name at a position.
Radix radix_at(int position);
// The first name of a radix.
std::string_view name_of(Radix radix);

// "01011010" as "5A", "132" or "90". L and H count as 0 and 1. A hexadecimal or octal digit whose
// bits are not all known is Z when they all are Z, else X; a decimal number is X as a whole. Text
// with other characters than those of std_logic comes back as it is, and any text as symbolic.
std::string in_radix(std::string_view bits, Radix radix);

}  // namespace wf

#endif
