// SPDX-License-Identifier: Apache-2.0
// What is kept of each object of the simulator: its handle, and where its value goes.
#pragma once

#include <cstdint>
#include <vector>

#include "host/design/type.h"
#include "host/source/vpi/interface.h"

namespace wf::vpi {

// How a value is asked for.
enum class Form : uint8_t {
    scalar,  // vpiScalarVal
    vector,  // vpiVectorVal
    text,    // vpiBinStrVal
    real,    // vpiRealVal
};

struct Object {
    vpiHandle handle;
    Slot slot;       // of its leftmost bit
    uint32_t width;  // in bits; of a real, the slots that it takes
    Form form;
    bool watched = false;  // its changes are sent
    bool marked = false;   // it has changed in the present step and has not been read since
};

// In the order of their slots.
using Objects = std::vector<Object>;

// What tells the simulators apart.
struct Traits {
    const char
        *shortcomings;       // what the simulator does not show; null when there is nothing to say
    bool offers_vectors;     // the formats vpiScalarVal and vpiVectorVal; else texts
    bool offers_directions;  // of ports
    bool offers_system_tasks;  // further ones, registered by modules
    bool offers_net_ids;       // the property by which Icarus tells nets that are one
    bool finishes_anywhere;    // else only in a cbAfterDelay callback
};

}  // namespace wf::vpi
