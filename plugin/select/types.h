// SPDX-License-Identifier: Apache-2.0
// What a watched scalar's type means: its scalar type code, the number of bits that are watched of
// it, and the logic state of each bit of a value. Asks the simulator for types only.
//
// Classification happens once, at registration; the mapping runs for every changed bit.
#ifndef WATTFORGE_PLUGIN_SELECT_TYPES_H
#define WATTFORGE_PLUGIN_SELECT_TYPES_H

#include <mti.h>

#include <cstdint>

// Scalar type codes.
enum : int32_t {
    MFLI_TYPE_INVALID = -1,  // no integer and no enumeration: one bit that always reads X
    MFLI_TYPE_LOGIC9 = 0,    // the nine values 'U' 'X' '0' '1' 'Z' 'W' 'L' 'H' '-' in this order
    MFLI_TYPE_BIT = 1,       // the two values '0' '1'
    MFLI_TYPE_INTEGER = 2,
    MFLI_TYPE_ENUM = 3  // every other enumeration, BOOLEAN included
};

// Where the nine values have '0'; '1' follows.
inline constexpr int32_t MFLI_LOGIC9_0 = 2;

// Logic states that a value maps to. Bit states (monitor/monitor_table.h) begin with the same
// three.
enum : int32_t { MFLI_LOGIC_0 = 0, MFLI_LOGIC_1 = 1, MFLI_LOGIC_X = 2 };

// The scalar type code of a type; an error line for an invalid one. Literals are compared exactly,
// quotes and case included.
int32_t mfli_get_scalar_signal_type(mtiTypeIdT type);

// The number of watched bits, at least 1: for integers and enumerations (`code` 2 and 3) the bits
// that the type's right bound needs. Only the right bound counts: a range that descends to 0 has
// one watched bit, after an error line; a negative right bound has 32.
int32_t mfli_get_scalar_signal_width(mtiTypeIdT type, int32_t code);

// Entry i is the mask of bit i; bit 0 is the least significant one.
extern const uint32_t mfli_bit_masks[32];

// Non-zero when bit `i` (0 to 31) of `value` is set.
inline uint32_t mfli_mask_ith_bit(int32_t value, int32_t i) {
    return static_cast<uint32_t>(value) & mfli_bit_masks[i];
}

// The answer of map_value_to_01x for a code that has no mapping: X, after printing whatever text
// mfli_msg_buf holds.
int32_t mfli_map_unmapped_type();

// The logic state (MFLI_LOGIC_*) of bit number `bit` of a value that mti_GetSignalValue gave for a
// scalar of this code. Defined here because it runs once for every changed bit.
inline int32_t map_value_to_01x(int32_t code, int32_t value, int32_t bit) {
    switch (code) {
        case MFLI_TYPE_LOGIC9:
            // The weak levels 'L' and 'H' count as unknown.
            return value == MFLI_LOGIC9_0       ? MFLI_LOGIC_0
                   : value == MFLI_LOGIC9_0 + 1 ? MFLI_LOGIC_1
                                                : MFLI_LOGIC_X;
        case MFLI_TYPE_BIT:
            return value != 0 ? MFLI_LOGIC_1 : MFLI_LOGIC_0;
        case MFLI_TYPE_INTEGER:
        case MFLI_TYPE_ENUM:
            return mfli_mask_ith_bit(value, bit) != 0 ? MFLI_LOGIC_1 : MFLI_LOGIC_0;
        default:
            return mfli_map_unmapped_type();
    }
}

#endif
