// SPDX-License-Identifier: Apache-2.0
// Where monitor elements, their names and their dirty marks lie. Elements fill large chunks from
// front to back, in whole cache lines; a general allocator would put a header before each of them
// and could not align one without a gap. What a value change or a listing needs of an element, but
// not its counting, lies at the front of the chunk, in arrays with a place for each line: the mark
// stage of a step then touches one byte of an element, next to its neighbours', and no line of its
// own. Touches nothing but memory.
#ifndef WATTFORGE_PLUGIN_MONITOR_ELEMENT_STORE_H
#define WATTFORGE_PLUGIN_MONITOR_ELEMENT_STORE_H

#include <cstddef>
#include <cstdint>

inline constexpr size_t MFLI_LINE = 64;
inline constexpr size_t MFLI_CHUNK_LINES = 4096;
inline constexpr size_t MFLI_CHUNK = MFLI_LINE * MFLI_CHUNK_LINES;

// What stands before a chunk's elements. A chunk is aligned to its size, so that an element's
// address says where its chunk begins and which of its lines it is.
struct MfliChunkFront {
    static constexpr size_t LINES = 513;  // that this record takes, by the number of names below

    uint8_t dirty[MFLI_CHUNK_LINES];
    char *names[MFLI_CHUNK_LINES - LINES];  // StoredName each; see element_store.cpp
    // In the first chunk of a block of memory only:
    MfliChunkFront *next_block;  // the block that was taken before
    size_t block_size;           // bytes
};
static_assert(sizeof(MfliChunkFront) <= MfliChunkFront::LINES * MFLI_LINE);

// Memory for one element of `size` bytes, aligned to a cache line and zeroed, its mark clear; it
// gets a copy of `name`. Null when memory has run out, and nothing is taken then. An element is
// smaller than a chunk.
void *mfli_store_element(size_t size, const char *name);

// Gives one element back. The memory of all is released together with the last one: elements live
// and die as a table.
void mfli_unstore_element();

inline MfliChunkFront *mfli_chunk_of(const void *element) {
    return reinterpret_cast<MfliChunkFront *>(reinterpret_cast<uintptr_t>(element) &
                                              ~(MFLI_CHUNK - 1));
}
inline size_t mfli_line_of(const void *element) {
    return reinterpret_cast<uintptr_t>(element) % MFLI_CHUNK / MFLI_LINE;
}

// The element's mark: 1 while it waits in the changed list of the time step, else 0.
inline uint8_t *mfli_dirty_mark(const void *element) {
    return &mfli_chunk_of(element)->dirty[mfli_line_of(element)];
}

// The name that the element was stored with, put together again: the text stays until the next
// call.
const char *mfli_stored_name(const void *element);

#endif
