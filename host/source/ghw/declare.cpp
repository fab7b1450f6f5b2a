// SPDX-License-Identifier: Apache-2.0
// The giving out of storage.
#include "host/source/ghw/declare.h"

#include <string>

namespace wf::ghw {

void Declarations::open_scope(RegionKind kind, std::string_view name) {
    Region *parent = open_.empty() ? nullptr : open_.back();
    open_.push_back(design_.add_region(parent, name, kind));
}

bool Declarations::signal(const SignalEntry &signal) {
    if (placed_ != signal.type) {
        places_.clear();
        collect_places(signal.type, 0);
        placed_ = signal.type;
    }
    if (!check_leaves(signal)) {
        return false;
    }
    Slot slot = shared_storage(signal);
    if (slot == no_slot) {
        slot = design_.new_storage(signal.type);
        if (slot == no_slot) {
            return tokens_.fault("a design of at most 4294967294 bytes", "a larger one");
        }
        for (std::size_t i = 0; i < places_.size(); ++i) {
            Leaf leaf = places_[i];
            leaf.slot += slot;
            ids_.add(signal.leaves[i], leaf);
        }
    }
    design_.add_signal(open_.back(), signal.name, signal.type, signal.mode, slot);
    return true;
}

bool Declarations::finish(uint32_t leaves) {
    const uint32_t hole = ids_.freeze();
    if (hole != 0) {
        return tokens_.fault("a signal for each scalar up to " + std::to_string(ids_.count()),
                             "none for " + std::to_string(hole));
    }
    // Null arrays make writers count scalars that have no number and no value.
    return ids_.count() <= leaves || tokens_.fault("at most " + std::to_string(leaves) + " scalars",
                                                   std::to_string(ids_.count()));
}

// Every scalar of the type, from the left.
void Declarations::collect_places(const Type *type, Slot offset) {
    if (type->is_composite()) {
        for (uint32_t i = 0; i < type->element_count() && type->slots > 0; ++i) {
            collect_places(type->element_type(i), offset + type->element_offset(i));
        }
        return;
    }
    Leaf leaf{.slot = offset, .form = Leaf::number, .last = 0};
    if (type->is_byte()) {
        leaf.form = Leaf::byte;
        leaf.last = static_cast<uint8_t>(type->right);
    } else if (type->kind == TypeKind::real) {
        leaf.form = Leaf::real;
    }
    places_.push_back(leaf);
}

// What is one and the same has to be written in one way.
bool Declarations::check_leaves(const SignalEntry &signal) {
    for (std::size_t i = 0; i < places_.size(); ++i) {
        const uint32_t number = signal.leaves[i];
        if (!ids_.is_near(number, places_.size())) {
            return tokens_.fault("the numbers of scalars one after the other",
                                 std::to_string(number));
        }
        const Leaf known = ids_.first(number);
        if (known.form != Leaf::none && !known.is_like(places_[i])) {
            return tokens_.fault("one type for scalar " + std::to_string(number), "another one");
        }
    }
    return true;
}

// Where all the signal's scalars lie already, in its order and side by side; else no_slot.
Slot Declarations::shared_storage(const SignalEntry &signal) const {
    if (places_.empty() || ids_.first(signal.leaves[0]).form == Leaf::none) {
        return no_slot;
    }
    const Slot base = ids_.first(signal.leaves[0]).slot - places_[0].slot;
    for (std::size_t i = 0; i < places_.size(); ++i) {
        const Leaf known = ids_.first(signal.leaves[i]);
        if (known.form == Leaf::none || known.slot != base + places_[i].slot) {
            return no_slot;
        }
    }
    return base;
}

}  // namespace wf::ghw
