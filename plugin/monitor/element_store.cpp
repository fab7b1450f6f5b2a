// SPDX-License-Identifier: Apache-2.0
// Two bump allocators, one for elements and one for names, emptied together.
#include "plugin/monitor/element_store.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

static constexpr size_t cache_line = 64;
static constexpr size_t small_chunk = 256UL * 1024;
static constexpr size_t huge_page = 2UL * 1024 * 1024;

struct Chunk {
    Chunk *next;
};

struct Store {
    Chunk *chunks;
    char *free;   // first byte not yet taken of the newest chunk
    size_t left;  // bytes from there on
    size_t size;  // of all chunks
};

static Store elements;
static Store names;
static size_t live_elements;

static size_t round_up(size_t size, size_t step) {
    return (size + step - 1) / step * step;
}

// A large table in pages of the usual size has more of them than the processor's translation
// buffers hold, and every changed element would wait for a page walk first. A table that has
// outgrown small chunks therefore goes on in pages of the large size where the system has such.
static Chunk *new_chunk(size_t taken, size_t *size) {
    const bool is_huge = taken >= 2 * huge_page;
    const size_t step = is_huge ? huge_page : cache_line;
    *size = round_up(std::max(small_chunk, *size), step);
    void *memory = aligned_alloc(step, *size);
    if (is_huge && memory != nullptr) {
        madvise(memory, *size, MADV_HUGEPAGE);
    }
    return static_cast<Chunk *>(memory);
}

// The chunk's own link takes a whole line, so that what follows it is aligned.
static bool add_chunk(Store *store, size_t size) {
    size_t whole = size + cache_line;
    Chunk *chunk = new_chunk(store->size, &whole);
    if (chunk == nullptr) {
        return false;
    }
    chunk->next = store->chunks;
    store->chunks = chunk;
    store->free = reinterpret_cast<char *>(chunk) + cache_line;
    store->left = whole - cache_line;
    store->size += whole;
    return true;
}

static char *take(Store *store, size_t size) {
    if (size > store->left && !add_chunk(store, size)) {
        return nullptr;
    }
    char *taken = store->free;
    store->free += size;
    store->left -= size;
    return taken;
}

static void release(Store *store) {
    while (store->chunks != nullptr) {
        Chunk *chunk = store->chunks;
        store->chunks = chunk->next;
        free(chunk);
    }
    *store = Store{};
}

void *mfli_store_element(size_t size, const char *text, char **name) {
    const size_t text_size = strlen(text) + 1;
    char *copy = take(&names, text_size);
    char *element = copy == nullptr ? nullptr : take(&elements, round_up(size, cache_line));
    if (element == nullptr) {
        return nullptr;
    }
    *name = static_cast<char *>(memcpy(copy, text, text_size));
    ++live_elements;
    return memset(element, 0, size);
}

void mfli_unstore_element() {
    if (--live_elements == 0) {
        release(&elements);
        release(&names);
    }
}
