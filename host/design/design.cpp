// SPDX-License-Identifier: Apache-2.0
// Building a design: regions, signals, their elements and the storage of their values.
#include "host/design/design.h"

#include <algorithm>
#include <cstring>

namespace wf {

// What lies beside a signal.
static Slot byte_slot(const Signal &signal) {
    return signal.type->is_byte() ? signal.slot : no_slot;
}

Region *Design::add_region(Region *parent, std::string_view name, RegionKind kind) {
    std::vector<Region *> &neighbours = parent == nullptr ? roots_ : parent->children;
    Region *region = regions_.make();
    region->parent = parent;
    region->name = names_.store(name);
    region->position = static_cast<uint32_t>(neighbours.size());
    region->kind = kind;
    neighbours.push_back(region);
    if (name.find('/') != std::string_view::npos) {
        (parent == nullptr ? roots_have_odd_names_ : parent->has_odd_names) = true;
    }
    return region;
}

Slot Design::new_storage(const Type *type) {
    const Slot first = grow_storage(type->slots, 0);
    if (first != no_slot && !type->starts_at_zero) {
        fill_defaults(type, values_.data() + first);
    }
    return first;
}

Slot Design::new_storage(const Type *type, uint8_t fill) {
    return grow_storage(type->slots, fill);
}

Slot Design::grow_storage(Slot slots, uint8_t fill) {
    constexpr size_t read_ahead = 8;
    if (slots >= no_slot - slot_count_) {
        return no_slot;
    }
    const Slot first = slot_count_;
    slot_count_ += slots;
    const size_t needed = slot_count_ + read_ahead;
    if (needed > values_.capacity()) {
        values_.reserve(std::max(needed, values_.capacity() * 2));
    }
    values_.resize(needed);
    std::memset(values_.data() + first, fill, slots);
    return first;
}

void Design::fill_defaults(const Type *type, uint8_t *bytes) {
    if (type->starts_at_zero) {
        return;
    }
    if (!type->is_composite()) {
        const int64_t leftmost = type->left;
        std::memcpy(bytes, &leftmost, sizeof leftmost);
        return;
    }
    for (uint32_t i = 0; i < type->element_count(); ++i) {
        fill_defaults(type->element_type(i), bytes + type->element_offset(i));
    }
}

void Design::reset_values() {
    std::fill(values_.begin(), values_.end(), uint8_t{0});
    std::vector<const Region *> left(roots_.begin(), roots_.end());
    while (!left.empty()) {
        const Region *region = left.back();
        left.pop_back();
        for (const Signal *signal : region->signals) {
            fill_defaults(signal->type, values_.data() + signal->slot);
        }
        left.insert(left.end(), region->children.begin(), region->children.end());
    }
}

Signal *Design::add_signal(Region *region, std::string_view name, const Type *type, Mode mode,
                           Slot slot) {
    Signal *signal = signals_.make();
    signal->type = type;
    signal->slot = slot;
    signal->owner = region;
    signal->index = signal_count() & Signal::index_mask;
    *signals_.beside(signal) = byte_slot(*signal);
    signal_names_.push_back(names_.store(name));
    modes_.push_back(mode);
    list_signal(region, signal, name);
    return signal;
}

void Design::add_alias(Region *region, Signal *signal, std::string_view name) {
    if (!name.empty() && name != name_of(signal)) {
        const auto position = static_cast<uint32_t>(region->signals.size());
        region->alias_names.emplace_back(position, names_.store(name));
    }
    list_signal(region, signal, name.empty() ? name_of(signal) : name);
}

void Design::list_signal(Region *region, Signal *signal, std::string_view name) {
    region->signals.push_back(signal);
    if (name.find('/') != std::string_view::npos) {
        region->has_odd_names = true;
    }
}

Signal *Design::elements(Signal *signal) {
    const Type &type = *signal->type;
    const uint32_t count = type.element_count();
    if (signal->elements != nullptr || count == 0) {
        return signal->elements;
    }
    Signal *elements = signals_.make(count);
    Slot *slots = signals_.beside(elements);
    for (uint32_t i = 0; i < count; ++i) {
        elements[i].type = type.element_type(i);
        elements[i].owner = signal;
        elements[i].is_part = 1;
        elements[i].slot = signal->slot + type.element_offset(i);
        elements[i].index = i & Signal::index_mask;
        slots[i] = byte_slot(elements[i]);
    }
    signal->elements = elements;
    return elements;
}

const Signal *Design::declared(const Signal *signal) {
    while (!signal->is_declared()) {
        signal = signal->parent();
    }
    return signal;
}

Region *Design::top() const {
    const auto found = std::find_if(roots_.begin(), roots_.end(), [](const Region *root) {
        return root->kind != RegionKind::package;
    });
    return found != roots_.end() ? *found : roots_.empty() ? nullptr : roots_.front();
}

bool Design::holds_signals(const Region *region) {
    std::vector<const Region *> left = {region};
    while (!left.empty() && left.back()->signals.empty()) {
        const std::vector<Region *> &children = left.back()->children;
        left.pop_back();
        left.insert(left.end(), children.begin(), children.end());
    }
    return !left.empty();
}

Region *Design::start_of(std::string_view &path) const {
    Region *region = environment();
    while (region != nullptr && (path == ".." || path.starts_with("../"))) {
        path.remove_prefix(std::min<size_t>(path.size(), 3));
        region = region->parent;
    }
    return region;
}

Region *Design::next(const Region *region) const {
    const auto &neighbours = region->parent == nullptr ? roots_ : region->parent->children;
    const size_t following = size_t{region->position} + 1;
    return following < neighbours.size() ? neighbours[following] : nullptr;
}

}  // namespace wf
