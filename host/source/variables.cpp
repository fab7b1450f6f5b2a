// SPDX-License-Identifier: Apache-2.0
// Grouping of bits and words, and the giving out of storage.
#include "host/source/variables.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace wf {

void Variables::open_scope(RegionKind kind, std::string_view name) {
    Region *parent = open_.empty() ? nullptr : scopes_[open_.back()].region;
    Region *region = design_.find_child(parent, name);
    if (region != nullptr) {
        const uint32_t scope = scope_of_.at(region);
        scopes_[scope].reopened = true;
        open_.push_back(scope);
        return;
    }
    const auto scope = static_cast<uint32_t>(scopes_.size());
    scopes_.push_back({.region = design_.add_region(parent, name, kind)});
    scope_of_.emplace(scopes_.back().region, scope);
    open_.push_back(scope);
}

void Variables::add(const Variable &variable, uint32_t number) {
    const auto index = static_cast<uint32_t>(held_.size());
    held_.push_back({.name = names_.size(),
                     .name_length = static_cast<uint32_t>(variable.name.size()),
                     .base_length = static_cast<uint32_t>(variable.base.size()),
                     .number = number,
                     .width = variable.width,
                     .left = variable.left,
                     .right = variable.right,
                     .word = variable.word,
                     .next = none,
                     .use = variable.use,
                     .mode = variable.mode,
                     .has_range = variable.has_range,
                     .has_index = variable.has_index});
    names_ += variable.name;
    Scope &scope = scopes_[open_.back()];
    (scope.last == none ? scope.first : held_[scope.last].next) = index;
    scope.last = index;
}

bool Variables::finish(uint32_t numbers) {
    targets_.assign(numbers, {});
    for (const Scope &scope : scopes_) {
        if (!declare_scope(scope)) {
            return false;
        }
    }
    list_extra();
    return true;
}

bool Variables::declare_scope(const Scope &scope) {
    Groups groups = collect_groups(scope);
    for (uint32_t index = scope.first; index != none; index = held_[index].next) {
        const Held &held = held_[index];
        if (held.use == VariableUse::ignored) {
            add_target(held.number, {.slot = 0, .shape = Target::ignored});
            continue;
        }
        if (held.use == VariableUse::real) {
            if (!declare_real(scope, held)) {
                return false;
            }
            continue;
        }
        Group *group = held.is_part() ? &groups.at(base_of(held)) : nullptr;
        if (group == nullptr || !group->is_joined) {
            if (!declare_alone(scope, held)) {
                return false;
            }
        } else if (!group->is_done && !declare_group(scope, *group)) {
            return false;
        }
    }
    return true;
}

// Bits and words by the name that they are parts of, those that can be joined marked.
Variables::Groups Variables::collect_groups(const Scope &scope) {
    Groups groups;
    for (uint32_t index = scope.first; index != none; index = held_[index].next) {
        const Held &held = held_[index];
        if (held.is_part() && held.use != VariableUse::ignored && held.use != VariableUse::real) {
            groups[base_of(held)].members.push_back(index);
        }
    }
    if (groups.empty()) {
        return groups;
    }
    for (auto &[base, group] : groups) {
        group.is_joined = can_join(group);
    }
    for (uint32_t index = scope.first; index != none; index = held_[index].next) {
        const auto same_name =
            held_[index].is_part() ? groups.end() : groups.find(name_of(held_[index]));
        if (same_name != groups.end()) {
            same_name->second.is_joined = false;
        }
    }
    return groups;
}

// Brings the members into the order of the array's elements, each once, and says whether they make
// one array.
bool Variables::can_join(Group &group) {
    std::vector<uint32_t> &members = group.members;
    const auto lower = [&](uint32_t a, uint32_t b) { return held_[a].part() < held_[b].part(); };
    const auto higher = [&](uint32_t a, uint32_t b) { return lower(b, a); };
    const bool rises = std::is_sorted(members.begin(), members.end(), lower);
    const bool falls = std::is_sorted(members.begin(), members.end(), higher);
    std::stable_sort(members.begin(), members.end(), lower);
    const auto repeated = [&](uint32_t a, uint32_t b) {
        return held_[a].part() == held_[b].part() && held_[a].number == held_[b].number;
    };
    members.erase(std::unique(members.begin(), members.end(), repeated), members.end());
    const bool fits = are_alike(members) && are_dense(members);
    if (held_[members.front()].has_index ? !rises : falls) {
        std::reverse(members.begin(), members.end());
    }
    return fits;
}

bool Variables::are_alike(const std::vector<uint32_t> &members) const {
    const Held &first = held_[members.front()];
    return std::all_of(members.begin(), members.end(), [&](uint32_t index) {
        const Held &held = held_[index];
        return held.use == first.use && held.mode == first.mode &&
               held.has_index == first.has_index && held.width == first.width &&
               held.has_range == first.has_range &&
               (held.has_index || (held.left == first.left && held.right == first.right));
    });
}

// `members` rise.
bool Variables::are_dense(const std::vector<uint32_t> &members) const {
    for (std::size_t i = 1; i < members.size(); ++i) {
        if (held_[members[i]].part() == held_[members[i - 1]].part()) {
            return false;
        }
    }
    const Held &first = held_[members.front()];
    const auto span =
        static_cast<uint64_t>(int64_t{held_[members.back()].part()} - first.part()) + 1;
    // A hole in a vector is a bit that was not recorded; very many are a misunderstanding.
    return first.has_index ? span <= 4 * members.size() + 64
                           : span == members.size() && members.size() > 1;
}

const Type *Variables::vector_type(const Held &held) {
    const Type *bit = design_.types.std_logic();
    if (held.has_range) {
        return design_.types.array(bit, held.left, held.right);
    }
    return held.width == 1 ? bit
                           : design_.types.array(bit, static_cast<int32_t>(held.width - 1), 0);
}

bool Variables::declare_group(const Scope &scope, Group &group) {
    group.is_done = true;
    const std::vector<uint32_t> &members = group.members;
    const Held &first = held_[members.front()];
    const int32_t left = first.part();
    const int32_t right = held_[members.back()].part();
    const Type *element = first.has_index ? design_.types.std_logic() : vector_type(first);
    const Type *type =
        design_.types.array(element, left, right, left < right ? Direction::to : Direction::downto);
    if (type == nullptr) {
        return false;
    }
    Slot slot = shared_storage(members, type);
    if (slot == no_slot) {
        slot = design_.new_storage(type);
        for (const uint32_t index : members) {
            const auto place = static_cast<uint32_t>(std::abs(int64_t{held_[index].part()} - left));
            add_target(held_[index].number, {slot + place * element->slots, element->slots});
        }
    }
    return add_signal(scope, base_of(first), type, first.mode, slot);
}

bool Variables::declare_alone(const Scope &scope, const Held &held) {
    const Type *type = vector_type(held);
    const Slot slot = storage_for(held.number, held.width, type);
    if (!held.has_index) {
        return add_signal(scope, name_of(held), type, held.mode, slot);
    }
    const std::string name = std::string(name_of(held)) + "[" + std::to_string(held.left) + "]";
    return add_signal(scope, name, type, held.mode, slot);
}

bool Variables::declare_real(const Scope &scope, const Held &held) {
    real_ = real_ == nullptr ? design_.types.real() : real_;
    const Slot slot = storage_for(held.number, Target::real, real_);
    return add_signal(scope, name_of(held), real_, held.mode, slot);
}

bool Variables::add_signal(const Scope &scope, std::string_view name, const Type *type, Mode mode,
                           Slot slot) {
    if (slot == no_slot) {
        return false;
    }
    if (scope.reopened) {
        const Signal *before = design_.find_local(scope.region, name);
        if (before != nullptr && before->slot == slot && before->type == type) {
            return true;
        }
    }
    design_.add_signal(scope.region, name, type, mode, slot);
    return true;
}

const Target *Variables::find_target(uint32_t number, uint32_t shape) const {
    if (targets_[number].shape == shape) {
        return &targets_[number];
    }
    const auto more = more_.find(number);
    if (more == more_.end()) {
        return nullptr;
    }
    const auto same = std::find_if(more->second.begin(), more->second.end(),
                                   [&](const Target &target) { return target.shape == shape; });
    return same == more->second.end() ? nullptr : &*same;
}

void Variables::add_target(uint32_t number, Target target) {
    Target &first = targets_[number];
    if (first.shape == Target::undeclared || first.shape == Target::ignored) {
        first = target;
    } else if (target.shape != Target::ignored) {
        more_[number].push_back(target);
    }
}

// The storage that this number has for this shape, made when it has none yet.
Slot Variables::storage_for(uint32_t number, uint32_t shape, const Type *type) {
    const Target *known = find_target(number, shape);
    if (known != nullptr) {
        return known->slot;
    }
    const Slot slot = design_.new_storage(type);
    add_target(number, {slot, shape});
    return slot;
}

// Where the members' bits lie side by side already, as in a port of the same bits; else no_slot.
Slot Variables::shared_storage(const std::vector<uint32_t> &members, const Type *type) const {
    const uint32_t step = type->element->slots;
    if (members.size() != static_cast<uint64_t>(type->length)) {
        return no_slot;
    }
    const Target *first = find_target(held_[members.front()].number, step);
    for (uint32_t i = 0; i < members.size(); ++i) {
        const Target *target = find_target(held_[members[i]].number, step);
        if (target == nullptr || target->slot != first->slot + i * step) {
            return no_slot;
        }
    }
    return first->slot;
}

void Variables::list_extra() {
    for (auto &[number, more] : more_) {
        const auto start = static_cast<Slot>(extra_.size());
        extra_.push_back(targets_[number]);
        extra_.insert(extra_.end(), more.begin(), more.end());
        targets_[number] = {start, Target::several + static_cast<uint32_t>(more.size()) + 1};
    }
}

}  // namespace wf
