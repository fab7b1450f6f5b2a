// SPDX-License-Identifier: Apache-2.0
// Classifies scalar types by what the simulator says of them.
#include "plugin/select/types.h"

#include "plugin/support/messages.h"

#include <bit>
#include <cstring>

const uint32_t mfli_bit_masks[32] = {
    1U << 0,  1U << 1,  1U << 2,  1U << 3,  1U << 4,  1U << 5,  1U << 6,  1U << 7,
    1U << 8,  1U << 9,  1U << 10, 1U << 11, 1U << 12, 1U << 13, 1U << 14, 1U << 15,
    1U << 16, 1U << 17, 1U << 18, 1U << 19, 1U << 20, 1U << 21, 1U << 22, 1U << 23,
    1U << 24, 1U << 25, 1U << 26, 1U << 27, 1U << 28, 1U << 29, 1U << 30, 1U << 31};

static const char *const bit_literals[] = {"'0'", "'1'"};
static const char *const logic9_literals[] = {"'U'", "'X'", "'0'", "'1'", "'Z'",
                                              "'W'", "'L'", "'H'", "'-'"};

template <int32_t N>
static bool literals_are(mtiTypeIdT type, const char *const (&expected)[N]) {
    if (mti_TickLength(type) != N) {
        return false;
    }
    char **literals = mti_GetEnumValues(type);
    if (literals == nullptr) {
        return false;
    }
    for (int32_t i = 0; i < N; ++i) {
        if (strcmp(literals[i], expected[i]) != 0) {
            return false;
        }
    }
    return true;
}

int32_t mfli_get_scalar_signal_type(mtiTypeIdT type) {
    const mtiTypeKindT kind = type == nullptr ? MTI_TYPE_ACCESS : mti_GetTypeKind(type);
    if (kind == MTI_TYPE_SCALAR) {
        return MFLI_TYPE_INTEGER;
    }
    if (kind != MTI_TYPE_ENUM) {
        mfli_print_text("Error (KLVA-PWR): Invalid scalar type");
        return MFLI_TYPE_INVALID;
    }
    if (literals_are(type, bit_literals)) {
        return MFLI_TYPE_BIT;
    }
    return literals_are(type, logic9_literals) ? MFLI_TYPE_LOGIC9 : MFLI_TYPE_ENUM;
}

// The number of bits up to the highest one set in the type's right bound.
static int32_t width_of_right_bound(mtiTypeIdT type) {
    const auto right_bound = static_cast<uint32_t>(mti_TickRight(type));
    const auto width = static_cast<int32_t>(std::bit_width(right_bound));
    if (width == 0) {
        mfli_print_text("Error (KLVA-PWR): Could not determine bitwidth");
        return 1;
    }
    return width;
}

int32_t mfli_get_scalar_signal_width(mtiTypeIdT type, int32_t code) {
    switch (code) {
        case MFLI_TYPE_LOGIC9:
        case MFLI_TYPE_BIT:
            return 1;
        case MFLI_TYPE_INTEGER:
        case MFLI_TYPE_ENUM:
            return width_of_right_bound(type);
        default:
            mfli_print_text("Error (KLVA-PWR): Could not determine bitwidth: Unsupported type");
            return 1;
    }
}

int32_t mfli_map_unmapped_type() {
    mfli_print_text(mfli_msg_buf);
    return MFLI_LOGIC_X;
}
