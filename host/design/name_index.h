// SPDX-License-Identifier: Apache-2.0
// A hash table from names to positions in somebody else's list. It keeps four to eleven bytes for a
// position and no names: the owner of the list says what a position is called.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace wf {

// A hash of a name's bytes, the same in every run.
uint32_t hash_name(std::string_view name);

// Indexes the positions 0, 1, 2, ... of a list that only grows at its end. `name_of(position)`
// gives the name of a position.
class NameIndex {
  public:
    static constexpr uint32_t none = UINT32_MAX;

    // How many positions it has taken in.
    uint32_t size() const { return size_; }

    // The first position of that name, or none.
    template <typename NameOf>
    uint32_t find(std::string_view name, NameOf name_of) const {
        return places_.empty() ? none : places_[place_of(name, name_of)];
    }

    // Takes in the list's next position. Of two with one name the first stays the one to be found.
    template <typename NameOf>
    void add_next(NameOf name_of) {
        if ((size_ + uint64_t{1}) * 4 > uint64_t{places_.size()} * 3) {
            places_.assign(places_.empty() ? 16 : places_.size() * 2, none);
            for (uint32_t position = 0; position < size_; ++position) {
                put(position, name_of);
            }
        }
        put(size_++, name_of);
    }

  private:
    // Where a name stands, or the free place that it would take.
    template <typename NameOf>
    size_t place_of(std::string_view name, NameOf name_of) const {
        const size_t mask = places_.size() - 1;
        size_t place = hash_name(name) & mask;
        while (places_[place] != none && name_of(places_[place]) != name) {
            place = (place + 1) & mask;
        }
        return place;
    }

    template <typename NameOf>
    void put(uint32_t position, NameOf name_of) {
        uint32_t &place = places_[place_of(name_of(position), name_of)];
        place = place == none ? position : place;
    }

    std::vector<uint32_t> places_;  // a power of two of them, at most three quarters taken
    uint32_t size_ = 0;
};

}  // namespace wf
