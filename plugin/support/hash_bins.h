// SPDX-License-Identifier: Apache-2.0
// The growable array of chain heads of a hash table, in pages of 2048, so that growing a large
// table never copies what it has.
#ifndef WATTFORGE_PLUGIN_SUPPORT_HASH_BINS_H
#define WATTFORGE_PLUGIN_SUPPORT_HASH_BINS_H

#include <cstddef>
#include <cstdint>

enum : uint32_t { ST_BINS_PER_PAGE = 2048 };

struct st_bins {
    void ***pages;    // owned; a single page is only as long as the bins
    uint32_t length;  // bins; a power of two
};

// The head of chain `index`, for reading and setting.
inline void **st_bin(const st_bins *bins, uint32_t index) {
    return &bins->pages[index / ST_BINS_PER_PAGE][index % ST_BINS_PER_PAGE];
}

// `length` empty chains; st_bins_free releases them.
void st_bins_init(st_bins *bins, uint32_t length);

// Appends empty chains or cuts chains off at the end, which must be empty. Both lengths are powers
// of two.
void st_bins_set_length(st_bins *bins, uint32_t length);

void st_bins_free(st_bins *bins);

// Bytes held.
size_t st_bins_bytes(const st_bins *bins);

#endif
