// SPDX-License-Identifier: Apache-2.0
// From the hierarchy inside a simulator to a design: every net and variable gets a signal, as the
// reader of the waveform that this simulator dumps would give it.
//
// - An object of one bit is a std_logic, one of several bits an array of it with its own range,
//   [width-1:0] when the simulator tells none. Two-state variables look the same.
// - A vector of one bit whose index is 0 is taken for a bit in Icarus Verilog, since its dump does
//   not tell them apart.
// - Nets of one bit that the simulator says are one share storage, and are asked for once.
// - A port's direction is that of the module's port of the same name.
// - A memory is an array of its words, each of which is read by itself; one that is too large is
//   left out, and so are arrays of two-state variables: Icarus Verilog 11 crashes when it is asked
//   to send their changes. A dump has words only when they are named in it.
// - Named events, parameters, strings and arrays of nets and of reals are no signals, nor are they
//   in a dump.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>

#include "host/design/design.h"
#include "host/source/vpi/object.h"

namespace wf::vpi {

class Declarations {
  public:
    // Fills `design` and `objects`, which outlive this. Memories of more bits than `memory_limit`
    // are left out.
    Declarations(Design &design, Objects &objects, const Traits &traits, uint64_t memory_limit)
        : design_(design), objects_(objects), traits_(traits), memory_limit_(memory_limit) {}

    // Reads all of the hierarchy. False: the design is too large for its storage.
    bool read();

    // Objects of one kind that were left out though a dump can have them: how many, and the first.
    struct LeftOut {
        uint32_t count = 0;
        std::string first;
    };
    const LeftOut &large_memories() const { return large_memories_; }
    const LeftOut &two_state_arrays() const { return two_state_arrays_; }

  private:
    using Modes = std::unordered_map<std::string, Mode>;

    void declare_scope(Region *parent, vpiHandle scope);
    void declare_objects(Region *region, vpiHandle scope);
    void declare(Region *region, vpiHandle handle, const Modes &modes);
    void declare_memory(Region *region, vpiHandle handle);
    void declare_words(vpiHandle handle, int32_t left, int32_t right, Slot slot, uint32_t width);
    void leave_out(Region *region, const std::string &name, LeftOut &list);
    Modes port_modes(vpiHandle scope) const;
    // Null for what the dump does not have.
    const Type *type_of(vpiHandle handle, PLI_INT32 kind, uint32_t width);
    // An object of that width whose range begins at `left`.
    bool is_bit(vpiHandle handle, uint32_t width, int32_t left) const;
    Slot storage_for(vpiHandle handle, const Type *type, uint32_t width, Form form);
    Form form_of(PLI_INT32 kind, uint32_t width) const;

    Design &design_;
    Objects &objects_;
    Traits traits_;
    uint64_t memory_limit_;
    LeftOut large_memories_;
    LeftOut two_state_arrays_;
    std::unordered_map<PLI_INT32, Slot> nets_;  // one-bit nets by the simulator's number
    const Type *real_ = nullptr;
    bool is_too_large_ = false;
};

}  // namespace wf::vpi
