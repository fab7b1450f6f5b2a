// SPDX-License-Identifier: Apache-2.0
// The store of entries of a keyed hash table.
#include "plugin/support/hash_entries.h"

#include <cstdlib>

// With its head, a chunk of each is just below a power of two in bytes. Small tables stay small.
enum : uint32_t { SMALLEST_CHUNK = 7, LARGEST_CHUNK = 2047 };

static size_t chunk_bytes(uint32_t capacity) {
    return sizeof(st_chunk) + capacity * sizeof(st_entry);
}

st_entries *st_entries_alloc() {
    auto *entries = static_cast<st_entries *>(malloc(sizeof(st_entries)));
    entries->newest = nullptr;
    entries->released = nullptr;
    return entries;
}

void st_entries_free(st_entries *entries) {
    st_chunk *chunk = entries->newest;
    while (chunk != nullptr) {
        st_chunk *older = chunk->older;
        free(chunk);
        chunk = older;
    }
    free(entries);
}

// Puts a chunk of twice the size of the newest in front of it.
static void add_chunk(st_entries *entries) {
    uint32_t capacity = SMALLEST_CHUNK;
    if (entries->newest != nullptr) {
        capacity = entries->newest->capacity * 2 + 1;
    }
    if (capacity > LARGEST_CHUNK) {
        capacity = LARGEST_CHUNK;
    }
    auto *chunk = static_cast<st_chunk *>(malloc(chunk_bytes(capacity)));
    chunk->older = entries->newest;
    chunk->capacity = capacity;
    chunk->used = 0;
    entries->newest = chunk;
}

st_entry *st_entries_take(st_entries *entries) {
    if (entries->released != nullptr) {
        st_entry *entry = entries->released;
        entries->released = static_cast<st_entry *>(entry->next);
        return entry;
    }
    if (entries->newest == nullptr || entries->newest->used == entries->newest->capacity) {
        add_chunk(entries);
    }
    return st_chunk_entries(entries->newest) + entries->newest->used++;
}

void st_entries_give_back(st_entries *entries, st_entry *entry) {
    entry->next = entries->released;
    entries->released = entry;
}

size_t st_entries_bytes(const st_entries *entries) {
    size_t bytes = sizeof(st_entries);
    for (const st_chunk *chunk = entries->newest; chunk != nullptr; chunk = chunk->older) {
        bytes += chunk_bytes(chunk->capacity);
    }
    return bytes;
}
