// SPDX-License-Identifier: Apache-2.0
// What is kept of each object of the simulator: its handle, and where its value goes.
#pragma once

#include <cstdint>
#include <vector>

#include "host/design/type.h"
#include "host/source/vpi/interface.h"

namespace wf::vpi {

// The format of a value. Vectors as texts: Icarus Verilog makes one in fewer steps than the
// words of a vpiVectorVal.
enum class Form : uint8_t {
    scalar,  // vpiScalarVal
    text,    // vpiBinStrVal
    real,    // vpiRealVal
};

// Up to so many bits, a value that comes with the change is cheaper than one that is asked for at
// the end of the step, though a glitch sends several.
constexpr uint32_t narrow = 8;

struct Object {
    vpiHandle handle;
    Slot slot;        // of its leftmost bit
    uint32_t width;   // in bits; of a real, the slots that it takes
    uint32_t memory;  // number of the memory that it is a word of, else no_memory
    Form form;
    bool watched = false;          // its changes are sent
    bool arrives = false;          // and each change with its value
    bool marked = false;           // it has changed in the present step and has not been read since
    uint8_t arrived[narrow] = {};  // the value that came last, where they arrive
};

constexpr uint32_t no_memory = UINT32_MAX;

// A memory sends its changes as a whole, with the index of the word.
struct Memory {
    vpiHandle handle;
    int32_t left;  // its range
    int32_t right;
    uint32_t first_word;  // the number of its first object, that of the index `left`
};

struct Objects {
    std::vector<Object> list;  // in the order of their slots
    std::vector<Memory> memories;
};

// What tells the simulators apart.
struct Traits {
    const char
        *shortcomings;       // what the simulator does not show; null when there is nothing to say
    bool offers_scalars;     // the format vpiScalarVal; else texts
    bool offers_directions;  // of ports
    bool tells_vectors;      // of one bit from bits, by vpiVector
    bool offers_memories;    // as such, with their words
    bool offers_system_tasks;  // further ones, registered by modules
    bool sends_values;         // with changes, in the formats for scalars and texts
    bool offers_net_ids;       // the property by which Icarus tells nets that are one
    bool ends_at_interrupts;   // by itself, at SIGINT, SIGTERM and SIGHUP
    bool finishes_anywhere;    // else only in a cbAfterDelay callback
};

}  // namespace wf::vpi
