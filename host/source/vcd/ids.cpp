// SPDX-License-Identifier: Apache-2.0
// The table of identifier codes: filled through a hash while declarations are read, then turned
// into what suits the codes that were met.
#include "host/source/vcd/ids.h"

#include <algorithm>
#include <utility>

namespace wf::vcd {
namespace {

constexpr uint64_t ones = 0x0101010101010101U;
constexpr std::size_t longest_key = 8;

bool is_odd(std::string_view code) {
    return code.size() > longest_key || std::any_of(code.begin(), code.end(), [](char character) {
               return static_cast<unsigned char>(character) >= 0x80;
           });
}

// The number that index_of() takes: every character less 0x20, places without one at 0.
uint64_t digits_of(uint64_t key) {
    const auto spare = static_cast<uint32_t>(std::countl_zero(key)) & 56U;
    return key - ((ones * 0x20 << spare) >> spare);
}

}  // namespace

uint64_t IdTable::swapped(uint64_t key) {
    const auto spare = static_cast<uint32_t>(std::countl_zero(key)) & 56U;
    return __builtin_bswap64(key) >> spare;
}

void IdTable::grow_places() {
    std::vector<Place> old = std::exchange(places_, {});
    places_.resize(std::max<std::size_t>(1024, old.size() * 2));
    for (const Place &place : old) {
        std::size_t at = hash(place.key) & (places_.size() - 1);
        while (place.key != 0 && places_[at].key != 0) {
            at = (at + 1) & (places_.size() - 1);
        }
        if (place.key != 0) {
            places_[at] = place;
        }
    }
}

uint32_t IdTable::number(std::string_view code) {
    if (is_odd(code)) {
        const auto [place, added] = long_codes_.try_emplace(std::string(code), count_);
        count_ += added ? 1 : 0;
        return place->second;
    }
    if (places_.size() * 2 <= (uint64_t{count_} + 1) * 3) {
        grow_places();
    }
    uint64_t key = 0;
    std::memcpy(&key, code.data(), code.size());
    std::size_t at = hash(key) & (places_.size() - 1);
    while (places_[at].key != 0 && places_[at].key != key) {
        at = (at + 1) & (places_.size() - 1);
    }
    if (places_[at].key == 0) {
        places_[at] = {key, count_++};
    }
    return places_[at].number;
}

void IdTable::fill_array(const std::vector<Target> &targets, uint64_t largest) {
    array_.resize(largest + 1);
    for (const Place &place : places_) {
        if (place.key != 0) {
            const uint64_t key = order_ == Order::last_lowest ? swapped(place.key) : place.key;
            array_[index_of(digits_of(key))] = targets[place.number];
        }
    }
}

void IdTable::fill_hash(const std::vector<Target> &targets) {
    hashed_.resize(places_.size());
    for (std::size_t at = 0; at < places_.size(); ++at) {
        if (places_[at].key != 0) {
            hashed_[at] = {places_[at].key, targets[places_[at].number]};
        }
    }
}

void IdTable::freeze(const std::vector<Target> &targets, std::vector<Target> extra) {
    uint64_t largest_first = 0;
    uint64_t largest_last = 0;
    for (const Place &place : places_) {
        if (place.key != 0) {
            largest_first = std::max(largest_first, index_of(digits_of(place.key)));
            largest_last = std::max(largest_last, index_of(digits_of(swapped(place.key))));
        }
    }
    const uint64_t largest = std::min(largest_first, largest_last);
    const uint64_t affordable = 65536 + uint64_t{4} * count_;
    if (largest > affordable) {
        order_ = Order::hashed;
        fill_hash(targets);
    } else {
        order_ = largest_first <= largest_last ? Order::first_lowest : Order::last_lowest;
        fill_array(targets, largest);
    }
    places_ = std::vector<Place>();  // an empty list would leave the memory with it
    long_targets_ = long_codes_.empty() ? std::vector<Target>{} : targets;
    extra_ = std::move(extra);
    for (const std::vector<Target> *list : {&targets, &std::as_const(extra_)}) {
        for (const Target &target : *list) {
            widest_ = std::max(widest_, target.is_bits() ? target.shape : 1);
        }
    }
}

Target IdTable::find_hashed(uint64_t key) const {
    std::size_t at = hash(key) & (hashed_.size() - 1);
    while (hashed_[at].key != 0 && hashed_[at].key != key) {
        at = (at + 1) & (hashed_.size() - 1);
    }
    return hashed_[at].target;
}

Target IdTable::find_text(std::string_view code) const {
    if (!is_odd(code)) {
        char text[longest_key + 1] = {};
        std::memcpy(text, code.data(), code.size());
        return find(Code::at(text));
    }
    const auto found = long_codes_.find(code);
    return found == long_codes_.end() ? Target{} : long_targets_[found->second];
}

}  // namespace wf::vcd
