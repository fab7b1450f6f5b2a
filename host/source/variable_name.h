// SPDX-License-Identifier: Apache-2.0
// The names of variables as Verilog's tools write them: escaped or extended, with a range, a bit's
// index or a memory word's index behind them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "host/source/variables.h"

namespace wf {

// Takes `text`, words with one blank between, apart: sets the variable's name, base, word, and what
// is known of its range or index; a range that it has already is not set again. Its use and width
// are set. The names point into `text`, which loses an escaped name's backslash and the blanks
// behind a name. The answer is the group in brackets that was taken for the range or index.
std::string_view split_name(std::string &text, Variable &variable);

// Takes an index in brackets, "[3]", off the end of a name; false: it has none.
bool split_index(std::string_view &name, int32_t &index);

// "[7:0]"
bool read_range(std::string_view group, int32_t &left, int32_t &right);
uint64_t range_width(int32_t left, int32_t right);

// Whether this is an escaped identifier of Verilog; a blank ends it.
bool is_escaped(std::string_view text);

// The length of a VHDL extended identifier at the start of the text, which has a backslash at both
// ends and may have blanks in between; 0 when there is none. A range may follow it at once. (An
// escaped identifier of Verilog that ends in a backslash looks the same, and is taken for one.)
std::size_t extended_length(std::string_view text);

}  // namespace wf
