// SPDX-License-Identifier: Apache-2.0
// Grouping of bits and words, and the giving out of storage.
#include "host/source/variables.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "host/source/variable_name.h"

namespace wf {

void Variables::open_scope(RegionKind kind, std::string_view name) {
    Region *parent = open_.empty() ? nullptr : scopes_[open_.back()].region;
    Region *region = design_.find_child(parent, name);
    if (region != nullptr) {
        open_.push_back(scope_of_.at(region));
        return;
    }
    const auto scope = static_cast<uint32_t>(scopes_.size());
    scopes_.push_back({.region = design_.add_region(parent, name, kind)});
    scope_of_.emplace(scopes_.back().region, scope);
    open_.push_back(scope);
}

void Variables::add(const Variable &variable, uint32_t number) {
    if (open_.empty()) {
        remarks_.add(Oddity::outside, variable.line, variable.name);
        outside_.push_back(number);
        return;
    }
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
                     .line = variable.line,
                     .use = variable.use,
                     .mode = variable.mode,
                     .has_range = variable.has_range,
                     .has_index = variable.has_index});
    names_ += variable.name;
    Scope &scope = scopes_[open_.back()];
    (scope.last == none ? scope.first : held_[scope.last].next) = index;
    scope.last = index;
}

void Variables::set_modes(const std::vector<Mode> &modes) {
    for (Held &held : held_) {
        if (held.use == VariableUse::port) {
            held.mode = modes[held.number];
        }
    }
}

bool Variables::finish(uint32_t numbers) {
    targets_.assign(numbers, {});
    for (const uint32_t number : outside_) {
        targets_[number].shape = Target::ignored;
    }
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
        if (!declare(scope, held_[index], groups)) {
            return false;
        }
    }
    return true;
}

bool Variables::declare(const Scope &scope, const Held &held, Groups &groups) {
    if (held.use == VariableUse::ignored) {
        add_target(held, {.slot = 0, .shape = Target::ignored});
        return true;
    }
    if (held.use == VariableUse::real) {
        return declare_real(scope, held);
    }
    Group *group = held.is_part() ? &groups.at(base_of(held)) : nullptr;
    if (group != nullptr && group->is_joined) {
        return group->is_done || declare_group(scope, *group);
    }
    if (is_called_like_a_bit(held, groups)) {
        pass_over(held);
        return true;
    }
    return declare_alone(scope, held);
}

void Variables::pass_over(const Held &held) {
    std::string name(name_of(held));
    name += held.has_index ? "[" + std::to_string(held.left) + "]" : "";
    remarks_.add(Oddity::repeated_name, held.line, name);
    add_target(held, {.slot = 0, .shape = Target::ignored});
}

// Bits and words by the name that they are parts of, those that can be joined marked.
Variables::Groups Variables::collect_groups(const Scope &scope) {
    Groups groups;
    for (uint32_t index = scope.first; index != none; index = held_[index].next) {
        const Held &held = held_[index];
        if (!held.is_bits()) {
            continue;
        }
        std::string_view base = base_of(held);
        int32_t bit = 0;
        if (held.is_part()) {
            groups[base].members.push_back(index);
        } else if (held.width == 1 && split_index(base, bit)) {
            groups[base];
        }
    }
    if (groups.empty()) {
        return groups;
    }
    for (auto &[base, group] : groups) {
        group.is_joined = !group.members.empty() && can_join(group);
    }
    find_whole_names(scope, groups);
    return groups;
}

// Where the plain name is declared, too, nothing is joined.
void Variables::find_whole_names(const Scope &scope, Groups &groups) const {
    for (uint32_t index = scope.first; index != none; index = held_[index].next) {
        const Held &held = held_[index];
        const auto same_name = held.is_part() ? groups.end() : groups.find(name_of(held));
        if (same_name != groups.end()) {
            Group &group = same_name->second;
            group.is_joined = false;
            group.whole = held.is_bits() && group.whole == none ? index : group.whole;
        }
    }
}

// A bit beside a vector that has a bit of this name. (A report writes an index and brackets that
// belong to the name alike.)
bool Variables::is_called_like_a_bit(const Held &held, const Groups &groups) {
    std::string_view base = base_of(held);
    int32_t bit = held.left;
    if (held.width != 1 || held.has_range || (!held.has_index && !split_index(base, bit))) {
        return false;
    }
    const auto found = groups.find(base);
    if (found == groups.end()) {
        return false;
    }
    const Group &group = found->second;
    if (group.is_joined) {
        const auto [low, high] =
            std::minmax({held_[group.members.front()].part(), held_[group.members.back()].part()});
        return low <= bit && bit <= high;
    }
    const Type *whole = group.whole == none ? nullptr : vector_type(held_[group.whole]);
    return whole != nullptr && whole->is_composite() && whole->position_of(bit) >= 0;
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
        const bool same_way = held.mode == first.mode || held.use == VariableUse::port;
        return held.use == first.use && same_way && held.has_index == first.has_index &&
               held.width == first.width && held.has_range == first.has_range &&
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
            add_target(held_[index], {slot + place * element->slots, element->slots});
        }
    }
    const bool all_one_way = std::all_of(members.begin(), members.end(), [&](uint32_t index) {
        return held_[index].mode == first.mode;
    });
    return add_signal(scope, base_of(first), type, all_one_way ? first.mode : Mode::inout, slot);
}

bool Variables::declare_alone(const Scope &scope, const Held &held) {
    const Type *type = vector_type(held);
    if (!held.has_index) {
        return declare_once(scope, held, name_of(held), held.width, type);
    }
    const std::string name = std::string(name_of(held)) + "[" + std::to_string(held.left) + "]";
    return declare_once(scope, held, name, held.width, type);
}

bool Variables::declare_real(const Scope &scope, const Held &held) {
    real_ = real_ == nullptr ? design_.types.real() : real_;
    return declare_once(scope, held, name_of(held), Target::real, real_);
}

// Unless the scope has a signal of that name: then it is the same, declared again, or passed over.
bool Variables::declare_once(const Scope &scope, const Held &held, std::string_view name,
                             uint32_t shape, const Type *type) {
    const Signal *before = design_.find_local(scope.region, name);
    if (before == nullptr) {
        return add_signal(scope, name, type, held.mode, storage_for(held, shape, type));
    }
    const Target *target = find_target(held.number, shape);
    if (target == nullptr || target->slot != before->slot || before->type != type) {
        pass_over(held);
    }
    return true;
}

bool Variables::add_signal(const Scope &scope, std::string_view name, const Type *type, Mode mode,
                           Slot slot) {
    if (slot == no_slot) {
        return false;
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

void Variables::add_target(const Held &held, Target target) {
    Target &first = targets_[held.number];
    if (first.shape == Target::undeclared || first.shape == Target::ignored) {
        first = target;
    } else if (target.shape != Target::ignored) {
        if (target.shape != first.shape) {
            remarks_.add(Oddity::several_widths, held.line, name_of(held));
        }
        more_[held.number].push_back(target);
    }
}

// The storage that this number has for this shape, made when it has none yet.
Slot Variables::storage_for(const Held &held, uint32_t shape, const Type *type) {
    const Target *known = find_target(held.number, shape);
    if (known != nullptr) {
        return known->slot;
    }
    const Slot slot = design_.new_storage(type);
    add_target(held, {slot, shape});
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
