// SPDX-License-Identifier: Apache-2.0
// A hash table from names to positions in somebody else's list. It keeps 11 to 21 bytes for a
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
        return places_.empty() ? none : places_[place_of(name, hash_name(name), name_of)].position;
    }

    // Takes in the list's next position. Of two with one name the first stays the one to be found.
    template <typename NameOf>
    void add_next(NameOf name_of) {
        if ((taken_ + uint64_t{1}) * 4 > uint64_t{places_.size()} * 3) {
            grow();
        }
        const std::string_view name = name_of(size_);
        const uint32_t hash = hash_name(name);
        Place &place = places_[place_of(name, hash, name_of)];
        if (place.position == none) {
            place = {hash, size_};
            ++taken_;
        }
        ++size_;
    }

  private:
    // The hash stands beside the position, so that a name is looked at only when it is likely the
    // one: names lie far apart in memory.
    struct Place {
        uint32_t hash;
        uint32_t position;
    };

    // Where a name stands, or the free place that it would take.
    template <typename NameOf>
    size_t place_of(std::string_view name, uint32_t hash, NameOf name_of) const {
        const size_t mask = places_.size() - 1;
        size_t place = hash & mask;
        while (places_[place].position != none &&
               (places_[place].hash != hash || name_of(places_[place].position) != name)) {
            place = (place + 1) & mask;
        }
        return place;
    }

    void grow();

    std::vector<Place> places_;  // a power of two of them, at most three quarters taken
    uint32_t taken_ = 0;
    uint32_t size_ = 0;
};

}  // namespace wf
