// SPDX-License-Identifier: Apache-2.0
// Two bump allocators, one for elements and one for names, emptied together.
#include "plugin/monitor/element_store.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

static constexpr size_t HUGE_PAGE = 2UL * 1024 * 1024;
static constexpr size_t NAME_BLOCK = 64UL * 1024;

// A block of names begins with its link to the one before.
struct NameBlock {
    NameBlock *next;
};

struct ElementSpace {
    MfliChunkFront *chunk;  // the one that is being filled
    size_t line;            // its first line not yet taken
    size_t spare_chunks;    // behind it in its block
    void *blocks;           // all that were taken, the newest first
    size_t taken;           // bytes
};

struct NameSpace {
    NameBlock *blocks;
    char *free;   // first byte not yet taken of the newest block
    size_t left;  // bytes from there on
};

static ElementSpace elements;
static NameSpace names;
static size_t live_elements;

// A large table in pages of the usual size has more of them than the processor's translation
// buffers hold, and every changed element would wait for a page walk first. A table that has
// outgrown small blocks therefore goes on in pages of the large size where the system has such.
static bool add_block() {
    const bool is_huge = elements.taken >= 2 * HUGE_PAGE;
    const size_t size = is_huge ? HUGE_PAGE : MFLI_CHUNK;
    void *memory = aligned_alloc(size, size);
    if (memory == nullptr) {
        return false;
    }
    if (is_huge) {
        madvise(memory, size, MADV_HUGEPAGE);
    }
    elements.chunk = static_cast<MfliChunkFront *>(memory);
    elements.chunk->next_block = elements.blocks;
    elements.blocks = memory;
    elements.spare_chunks = size / MFLI_CHUNK - 1;
    elements.taken += size;
    return true;
}

static bool begin_chunk() {
    if (elements.spare_chunks > 0) {
        --elements.spare_chunks;
        elements.chunk = reinterpret_cast<MfliChunkFront *>(
            reinterpret_cast<char *>(elements.chunk) + MFLI_CHUNK);
    } else if (!add_block()) {
        return false;
    }
    elements.line = MfliChunkFront::LINES;
    return true;
}

static char *take_lines(size_t lines) {
    const bool fits = elements.chunk != nullptr && elements.line + lines <= MFLI_CHUNK_LINES;
    if (!fits && !begin_chunk()) {
        return nullptr;
    }
    char *taken = reinterpret_cast<char *>(elements.chunk) + elements.line * MFLI_LINE;
    elements.line += lines;
    return taken;
}

static char *take_text(size_t size) {
    if (size > names.left) {
        const size_t room = std::max(NAME_BLOCK, size + sizeof(NameBlock));
        auto *block = static_cast<NameBlock *>(malloc(room));
        if (block == nullptr) {
            return nullptr;
        }
        block->next = names.blocks;
        names.blocks = block;
        names.free = reinterpret_cast<char *>(block + 1);
        names.left = room - sizeof(NameBlock);
    }
    char *taken = names.free;
    names.free += size;
    names.left -= size;
    return taken;
}

static void release_all() {
    while (elements.blocks != nullptr) {
        void *block = elements.blocks;
        elements.blocks = static_cast<MfliChunkFront *>(block)->next_block;
        free(block);
    }
    while (names.blocks != nullptr) {
        NameBlock *block = names.blocks;
        names.blocks = block->next;
        free(block);
    }
    elements = ElementSpace{};
    names = NameSpace{};
}

void *mfli_store_element(size_t size, const char *name) {
    const size_t text_size = strlen(name) + 1;
    char *copy = take_text(text_size);
    char *element = copy == nullptr ? nullptr : take_lines((size + MFLI_LINE - 1) / MFLI_LINE);
    if (element == nullptr) {
        return nullptr;
    }
    memcpy(copy, name, text_size);
    mfli_chunk_of(element)->names[mfli_line_of(element) - MfliChunkFront::LINES] = copy;
    *mfli_dirty_mark(element) = 0;
    ++live_elements;
    return memset(element, 0, size);
}

void mfli_unstore_element() {
    if (--live_elements == 0) {
        release_all();
    }
}
