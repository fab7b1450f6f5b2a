// SPDX-License-Identifier: Apache-2.0
// The record behind a signal's handle. A record serves a declared signal and an element or field of
// one alike; everything else about a signal is asked of its design.
#pragma once

#include <cstdint>

#include "host/design/type.h"

namespace wf {

enum class Mode : uint8_t { internal, in, out, inout };

// One signal, element or field: 32 bytes, so that ten million bits stay affordable.
struct Signal {
    const Type *type;
    void *owner;          // the region of a declared signal; of a part the composite it is part of
    Signal *elements;     // its own parts, side by side; null until they are asked for
    Slot slot;            // where its value starts
    uint32_t index : 31;  // its position in the composite; the declaration's number when declared
    uint32_t is_part : 1;

    // More numbers than signals that fit into any memory.
    static constexpr uint32_t index_mask = 0x7fffffffU;

    bool is_declared() const { return is_part == 0; }
    // Of a part only.
    const Signal *parent() const { return static_cast<Signal *>(owner); }
};
static_assert(sizeof(void *) != 8 || sizeof(Signal) == 32);

}  // namespace wf
