// SPDX-License-Identifier: Apache-2.0
// Values as the simulators hand them out, turned into positions of std_logic, from the left. Needs
// no simulator.
#pragma once

#include <cstdint>

#include "host/source/vpi/interface.h"

namespace wf::vpi {

// 0, 1, X and Z have these positions in std_logic.
inline constexpr uint8_t logic_0 = 2;
inline constexpr uint8_t logic_1 = 3;
inline constexpr uint8_t logic_x = 1;
inline constexpr uint8_t logic_z = 4;

// A vpiScalarVal: 0, 1, Z, X in the interface's numbers; anything else is X.
uint8_t decode_scalar(PLI_INT32 scalar);

// The characters of a vpiBinStrVal: 0 1 X Z and the other letters of std_logic, of either case;
// anything else is X. A text that is too short is extended with X on the left; of one that is too
// long, the rightmost characters count. `out` has room for `width` bits.
void decode_text(const char *text, uint32_t width, uint8_t *out);

}  // namespace wf::vpi
