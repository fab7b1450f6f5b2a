// SPDX-License-Identifier: Apache-2.0
// Formats doubles as printf's "%f" does, byte for byte, at a fraction of its cost: five numbers for
// each watched bit are most of the work of a report. Touches nothing.
#ifndef WATTFORGE_PLUGIN_SAIF_FIXED_TEXT_H
#define WATTFORGE_PLUGIN_SAIF_FIXED_TEXT_H

#include <cstddef>

// Room for any double: a sign, 309 digits, a point, six digits, the terminating zero.
constexpr size_t FIXED_TEXT_SIZE = 320;

// Writes the value with six decimals, rounded to nearest and ties to even from its exact binary
// value, and a terminating zero. The decimal point is '.' in every locale. Returns the length.
size_t saif_format_fixed(char *text, double value);

#endif
