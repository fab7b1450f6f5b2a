// SPDX-License-Identifier: Apache-2.0
// From the hierarchy inside a simulator to a design: every net and variable gets a signal, as the
// reader of the waveform that this simulator dumps would give it.
//
// - An object of one bit is a std_logic, one of several bits an array of it with its own range,
//   [width-1:0] when the simulator tells none. Two-state variables look the same.
// - A vector of one bit whose index is 0 is taken for a bit, since the dump does not tell them
// apart.
// - Nets of one bit that the simulator says are one share storage, and are asked for once.
// - A port's direction is that of the module's port of the same name.
// - Named events, parameters, strings and memories are no signals: the dump has none of them unless
//   asked for by name.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>

#include "host/design/design.h"
#include "host/source/vpi/object.h"

namespace wf::vpi {

class Declarations {
  public:
    // Fills `design` and `objects`, which outlive this.
    Declarations(Design &design, Objects &objects, const Traits &traits)
        : design_(design), objects_(objects), traits_(traits) {}

    // Reads all of the hierarchy. False: the design is too large for its storage.
    bool read();

  private:
    using Modes = std::unordered_map<std::string, Mode>;

    void declare_scope(Region *parent, vpiHandle scope);
    void declare_objects(Region *region, vpiHandle scope);
    void declare(Region *region, vpiHandle handle, const Modes &modes);
    Modes port_modes(vpiHandle scope) const;
    // Null for what the dump does not have.
    const Type *type_of(vpiHandle handle, PLI_INT32 kind, uint32_t width);
    Slot storage_for(vpiHandle handle, const Type *type, uint32_t width, Form form);
    Form form_of(PLI_INT32 kind, uint32_t width) const;

    Design &design_;
    Objects &objects_;
    Traits traits_;
    std::unordered_map<PLI_INT32, Slot> nets_;  // one-bit nets by the simulator's number
    const Type *real_ = nullptr;
    bool is_too_large_ = false;
};

}  // namespace wf::vpi
