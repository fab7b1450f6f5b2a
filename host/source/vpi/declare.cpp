// SPDX-License-Identifier: Apache-2.0
// The walk of the scopes, and the giving out of storage.
#include "host/source/vpi/declare.h"

#include <cstdlib>
#include <optional>

#include "host/source/vpi/access.h"

namespace wf::vpi {
namespace {

// A property of Icarus Verilog's own: the same for all nets of one bit that are one; 0 for others.
constexpr PLI_INT32 net_id = 0x1000000;

// The kind that a scope has in the dump; nothing for what is no scope.
std::optional<RegionKind> region_kind(PLI_INT32 kind) {
    switch (kind) {
        case vpiModule:
            return RegionKind::module;
        case vpiGenScope:
        case vpiNamedBegin:
        case vpiNamedFork:
            return RegionKind::named_block;
        case vpiFunction:
            return RegionKind::function;
        case vpiTask:
            return RegionKind::task;
        case vpiPackage:
            return RegionKind::package;
        default:
            return {};
    }
}

bool is_declared(PLI_INT32 kind) {
    switch (kind) {
        case vpiNet:
        case vpiReg:
        case vpiIntegerVar:
        case vpiTimeVar:
        case vpiRealVar:
        case vpiLongIntVar:
        case vpiShortIntVar:
        case vpiIntVar:
        case vpiByteVar:
        case vpiBitVar:
            return true;
        default:
            return false;
    }
}

// A word's kind does not say what it holds; the format in which its value comes unasked does.
bool is_real(vpiHandle word) {
    s_vpi_value value{.format = vpiObjTypeVal, .value = {.integer = 0}};
    vpi_get_value(word, &value);
    return value.format == vpiRealVal;
}

// Before the simulation starts, nothing has been assigned: what is not X has two states only. No
// property tells.
bool starts_known(vpiHandle word) {
    s_vpi_value value{.format = vpiVectorVal, .value = {.integer = 0}};
    vpi_get_value(word, &value);
    return (value.value.vector->bval & 1U) == 0;
}

Mode mode_of(PLI_INT32 direction) {
    switch (direction) {
        case vpiInput:
            return Mode::in;
        case vpiOutput:
            return Mode::out;
        case vpiInout:
            return Mode::inout;
        default:
            return Mode::internal;
    }
}

}  // namespace

bool Declarations::read() {
    for_each(vpiModule, nullptr, [this](vpiHandle root) { declare_scope(nullptr, root); });
    return !is_too_large_;
}

void Declarations::declare_scope(Region *parent, vpiHandle scope) {
    const std::optional<RegionKind> kind = region_kind(vpi_get(vpiType, scope));
    const std::string name = text_of(vpiName, scope);
    // Icarus lists child modules among the inner scopes once more.
    if (!kind || design_.find_child(parent, name) != nullptr) {
        return;
    }
    Region *region = design_.add_region(parent, name, *kind);
    declare_objects(region, scope);
    for (const PLI_INT32 relation : {vpiModule, vpiInternalScope}) {
        for_each(relation, scope,
                 [this, region](vpiHandle child) { declare_scope(region, child); });
    }
}

void Declarations::declare_objects(Region *region, vpiHandle scope) {
    const Modes modes = port_modes(scope);
    for (const PLI_INT32 relation : {vpiNet, vpiReg, vpiVariables}) {
        for_each(relation, scope, [&](vpiHandle handle) { declare(region, handle, modes); });
    }
    if (traits_.offers_memories) {
        for_each(vpiMemory, scope, [&](vpiHandle handle) { declare_memory(region, handle); });
    }
}

void Declarations::declare_memory(Region *region, vpiHandle handle) {
    int32_t left = 0;
    int32_t right = 0;
    if (vpi_get(vpiType, handle) != vpiMemory || !range_of(handle, &left, &right)) {
        return;
    }
    vpiHandle word = vpi_handle_by_index(handle, left);
    if (word == nullptr || is_real(word)) {
        return;
    }
    const std::string name = text_of(vpiName, handle);
    const auto width = static_cast<uint32_t>(vpi_get(vpiSize, word));
    const uint64_t words = static_cast<uint64_t>(std::abs(int64_t{left} - right)) + 1;
    if (starts_known(word) || words * width > memory_limit_) {
        leave_out(region, name, starts_known(word) ? two_state_arrays_ : large_memories_);
        return;
    }
    const Type *element = type_of(word, vpiReg, width);
    const Type *type = design_.types.array(element, left, right);
    const Slot slot = type == nullptr ? no_slot : design_.new_storage(type);
    if (slot == no_slot) {
        is_too_large_ = true;
        return;
    }
    design_.add_signal(region, name, type, Mode::internal, slot);
    declare_words(handle, left, right, slot, width);
}

void Declarations::declare_words(vpiHandle handle, int32_t left, int32_t right, Slot slot,
                                 uint32_t width) {
    const auto number = static_cast<uint32_t>(objects_.memories.size());
    objects_.memories.push_back({.handle = handle,
                                 .left = left,
                                 .right = right,
                                 .first_word = static_cast<uint32_t>(objects_.list.size())});
    const int32_t step = left <= right ? 1 : -1;
    for (int32_t index = left;; index += step, slot += width) {
        objects_.list.push_back({.handle = vpi_handle_by_index(handle, index),
                                 .slot = slot,
                                 .width = width,
                                 .memory = number,
                                 .form = form_of(vpiReg, width)});
        if (index == right) {
            return;
        }
    }
}

void Declarations::leave_out(Region *region, const std::string &name, LeftOut &list) {
    if (list.count++ == 0) {
        list.first = design_.full_name(region) + "/" + name;
    }
}

Declarations::Modes Declarations::port_modes(vpiHandle scope) const {
    Modes modes;
    if (traits_.offers_directions && vpi_get(vpiType, scope) == vpiModule) {
        for_each(vpiPort, scope, [&modes](vpiHandle port) {
            modes.emplace(text_of(vpiName, port), mode_of(vpi_get(vpiDirection, port)));
        });
    }
    return modes;
}

void Declarations::declare(Region *region, vpiHandle handle, const Modes &modes) {
    const PLI_INT32 kind = vpi_get(vpiType, handle);
    const PLI_INT32 width = is_declared(kind) ? vpi_get(vpiSize, handle) : 0;
    if (width <= 0) {
        return;
    }
    const std::string name = text_of(vpiName, handle);
    const auto bits = static_cast<uint32_t>(width);
    const Type *type = type_of(handle, kind, bits);
    if (type == nullptr) {
        return;
    }
    const Slot slot = storage_for(handle, type, bits, form_of(kind, bits));
    if (slot == no_slot) {
        is_too_large_ = true;
        return;
    }
    const auto mode = modes.find(name);
    design_.add_signal(region, name, type, mode == modes.end() ? Mode::internal : mode->second,
                       slot);
}

Form Declarations::form_of(PLI_INT32 kind, uint32_t width) const {
    if (kind == vpiRealVar) {
        return Form::real;
    }
    return width == 1 && traits_.offers_scalars ? Form::scalar : Form::text;
}

bool Declarations::is_bit(vpiHandle handle, uint32_t width, int32_t left) const {
    const bool is_told_vector = traits_.tells_vectors && vpi_get(vpiVector, handle) != 0;
    return width == 1 && left == 0 && !is_told_vector;
}

const Type *Declarations::type_of(vpiHandle handle, PLI_INT32 kind, uint32_t width) {
    if (kind == vpiRealVar) {
        real_ = real_ == nullptr ? design_.types.real() : real_;
        return real_;
    }
    const Type *bit = design_.types.std_logic();
    int32_t left = 0;
    int32_t right = 0;
    const bool has_range = range_of(handle, &left, &right);
    if (has_range && std::abs(int64_t{left} - right) + 1 == width) {
        return is_bit(handle, width, left) ? bit : design_.types.array(bit, left, right);
    }
    // GHDL shows an enumeration as eight bits and an integer as 32, both with the range [0:0].
    constexpr uint32_t enumeration_width = 8;
    if (has_range && width == enumeration_width) {
        return nullptr;
    }
    return width == 1 ? bit : design_.types.array(bit, static_cast<int32_t>(width - 1), 0);
}

Slot Declarations::storage_for(vpiHandle handle, const Type *type, uint32_t width, Form form) {
    const PLI_INT32 id =
        form == Form::scalar && traits_.offers_net_ids ? vpi_get(net_id, handle) : 0;
    if (id != 0) {
        const auto known = nets_.find(id);
        if (known != nets_.end()) {
            return known->second;
        }
    }
    const Slot slot = design_.new_storage(type);
    if (slot != no_slot) {
        objects_.list.push_back(
            {.handle = handle, .slot = slot, .width = width, .memory = no_memory, .form = form});
        if (id != 0) {
            nets_.emplace(id, slot);
        }
    }
    return slot;
}

}  // namespace wf::vpi
