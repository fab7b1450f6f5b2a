// SPDX-License-Identifier: Apache-2.0
// The entries of keyed hash tables and the store that they come from: chunks of many entries, since
// an allocation for each would cost half as much again as the entry. Knows nothing of keys.
#ifndef WATTFORGE_PLUGIN_SUPPORT_HASH_ENTRIES_H
#define WATTFORGE_PLUGIN_SUPPORT_HASH_ENTRIES_H

#include <cstddef>
#include <cstdint>

// A key or a value: a pointer, or an integer in the same place.
union st_word {
    void *pointer;
    intptr_t integer;
};

struct st_entry {
    st_word key;
    st_word value;
    void *next;        // st_entry in the same bin
    int32_t sequence;  // rank by insertion
};

static_assert(sizeof(void *) != 8 || sizeof(st_entry) == 32, "two entries to a cache line");

struct st_chunk {
    st_chunk *older;
    uint32_t capacity;  // entries that follow this head
    uint32_t used;
};

struct st_entries {
    st_chunk *newest;
    st_entry *released;  // chained through next, handed out again first
};

// The entries of a chunk, in the order in which they were handed out first.
inline st_entry *st_chunk_entries(st_chunk *chunk) {
    return reinterpret_cast<st_entry *>(chunk + 1);
}

// Whether every entry in the chunks is in use: then the chunks, from the newest on, are all there
// is to walk, in the order of memory.
inline bool st_entries_have_no_holes(const st_entries *entries) {
    return entries->released == nullptr;
}

// An empty store; st_entries_free releases it with every entry that it ever handed out.
st_entries *st_entries_alloc();
void st_entries_free(st_entries *entries);

// An entry with unset fields, and its return.
st_entry *st_entries_take(st_entries *entries);
void st_entries_give_back(st_entries *entries, st_entry *entry);

// Bytes held, handed out or not.
size_t st_entries_bytes(const st_entries *entries);

#endif
