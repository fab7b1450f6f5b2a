// SPDX-License-Identifier: Apache-2.0
// From the number of a scalar in a GHW file to the slots of the design that hold its value, and to
// how the value is written. Filled by the declarations, read by the event loop.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "host/design/type.h"

namespace wf::ghw {

// One scalar of the file.
struct Leaf {
    enum Form : uint8_t {
        none,    // no signal has it
        byte,    // the position of an enumeration
        number,  // a signed LEB128 number
        real,    // eight bytes
        several  // added to the others: `slot` is where the table's list of slots begins
    };
    Slot slot = 0;
    uint8_t form = none;
    uint8_t last = 0;  // the last position of an enumeration

    bool is_like(const Leaf &other) const {
        return form % several == other.form % several && last == other.last;
    }
};
static_assert(sizeof(Leaf) == 8);

class IdTable {
  public:
    // --- while the declarations are read ---
    // How many numbers beyond those known, and beyond the `own` ones of the signal at hand, may be
    // left out; they have to follow sooner or later.
    static constexpr uint32_t furthest = 1U << 20;
    bool is_near(uint32_t number, std::size_t own) const {
        return number <= leaves_.size() + own + furthest;
    }
    // The first place of a number; its form is none when it has no place yet.
    Leaf first(uint32_t number) const {
        return number <= leaves_.size() ? leaves_[number - 1] : Leaf{};
    }
    // Gives a number a place, or another place.
    void add(uint32_t number, Leaf leaf);

    // --- once they have been read ---
    // Prepares at(). The number that has no place though a higher one has, or 0.
    uint32_t freeze();
    uint32_t count() const { return static_cast<uint32_t>(leaves_.size()); }
    Leaf at(uint32_t number) const { return leaves_[number - 1]; }
    // The slots of a leaf in several places: their number and they themselves.
    const Slot *slots_of(Leaf leaf) const { return extra_.data() + leaf.slot; }

  private:
    std::vector<Leaf> leaves_;  // number 1 first
    std::unordered_map<uint32_t, std::vector<Slot>> more_;
    std::vector<Slot> extra_;
};

}  // namespace wf::ghw
