// SPDX-License-Identifier: Apache-2.0
// The hash of a name, and the growth of the table.
#include "host/design/name_index.h"

#include <utility>

namespace wf {

uint32_t hash_name(std::string_view name) {
    // FNV-1a, then a mix, since the table takes the low bits and names often differ at their end.
    uint32_t hash = 2166136261U;
    for (const char character : name) {
        hash = (hash ^ static_cast<unsigned char>(character)) * 16777619U;
    }
    hash ^= hash >> 15;
    hash *= 0x2c1b3c6dU;
    return hash ^ (hash >> 13);
}

void NameIndex::grow() {
    std::vector<Place> larger(places_.empty() ? 16 : places_.size() * 2, Place{0, none});
    const size_t mask = larger.size() - 1;
    for (const Place &old : places_) {
        if (old.position == none) {
            continue;
        }
        size_t place = old.hash & mask;
        while (larger[place].position != none) {
            place = (place + 1) & mask;
        }
        larger[place] = old;
    }
    places_ = std::move(larger);
}

}  // namespace wf
