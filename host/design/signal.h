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
    const Signal *parent;  // the composite it is part of; null for a declared signal
    Signal *elements;      // its own parts, side by side; null until they are asked for
    Slot slot;             // where its value starts
    uint32_t index;        // its position in the parent; the declaration's number when declared

    bool is_declared() const { return parent == nullptr; }
};
static_assert(sizeof(void *) != 8 || sizeof(Signal) == 32);

}  // namespace wf
