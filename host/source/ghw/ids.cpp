// SPDX-License-Identifier: Apache-2.0
// The lists of those scalars that lie in several places.
#include "host/source/ghw/ids.h"

#include <algorithm>

namespace wf::ghw {

void IdTable::add(uint32_t number, Leaf leaf) {
    if (number > leaves_.size()) {
        leaves_.resize(number);
    }
    Leaf &first = leaves_[number - 1];
    if (first.form == Leaf::none) {
        first = leaf;
    } else {
        more_[number].push_back(leaf.slot);
    }
}

uint32_t IdTable::freeze() {
    for (auto &[number, slots] : more_) {
        Leaf &leaf = leaves_[number - 1];
        const auto start = static_cast<Slot>(extra_.size());
        extra_.push_back(static_cast<Slot>(slots.size()) + 1);
        extra_.push_back(leaf.slot);
        extra_.insert(extra_.end(), slots.begin(), slots.end());
        leaf.slot = start;
        leaf.form = static_cast<uint8_t>(leaf.form + Leaf::several);
    }
    more_.clear();
    const auto hole = std::find_if(leaves_.begin(), leaves_.end(),
                                   [](const Leaf &leaf) { return leaf.form == Leaf::none; });
    return hole == leaves_.end() ? 0 : static_cast<uint32_t>(hole - leaves_.begin()) + 1;
}

}  // namespace wf::ghw
