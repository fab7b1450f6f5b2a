// SPDX-License-Identifier: Apache-2.0
// Two bump allocators, one for elements and one for names, emptied together.
//
// A name is kept in two parts: what leads to its region, which it has in common with its neighbours
// and which is most of it deep in a hierarchy, and the rest. Registration goes region by region, so
// only the path of the last name is tried for the next one; a path may be there twice.
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
    MfliChunkFront *chunk;   // the one that is being filled
    size_t line;             // its first line not yet taken
    size_t spare_chunks;     // behind it in its block
    MfliChunkFront *blocks;  // the first chunks of all that were taken, the newest first
    size_t taken;            // bytes
};

// How a name is stored: the number of its path, then, without a gap, its leaf and a NUL.
typedef uint32_t PathNumber;

// The text up to and with the last '/'.
struct Path {
    const char *text;
    size_t length;
};

struct NameSpace {
    NameBlock *blocks;
    char *free;   // first byte not yet taken of the newest block
    size_t left;  // bytes from there on
    Path *paths;  // owned
    PathNumber path_count;
    PathNumber path_capacity;
    char *whole;  // the name that was put together last; owned
    size_t whole_size;
};

static ElementSpace elements;
static NameSpace names;
static size_t live_elements;

// `size` zeroed bytes, aligned to their number, or null. Not from the process's allocator: that is
// the simulator's, and need not have a function for aligned memory, nor pages of the large size.
static char *map_aligned(size_t size) {
    void *mapped =
        mmap(nullptr, 2 * size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) {
        return nullptr;
    }
    char *start = static_cast<char *>(mapped);
    const size_t before = (size - reinterpret_cast<uintptr_t>(start) % size) % size;
    if (before > 0) {
        munmap(start, before);
    }
    munmap(start + before + size, size - before);
    return start + before;
}

// A large table in pages of the usual size has more of them than the processor's translation
// buffers hold, and every changed element would wait for a page walk first. A table that has
// outgrown small blocks therefore goes on in pages of the large size where the system has such.
static bool add_block() {
    const bool is_huge = elements.taken >= 2 * HUGE_PAGE;
    const size_t size = is_huge ? HUGE_PAGE : MFLI_CHUNK;
    char *memory = map_aligned(size);
    if (memory == nullptr) {
        return false;
    }
    if (is_huge) {
        madvise(memory, size, MADV_HUGEPAGE);
    }
    elements.chunk = reinterpret_cast<MfliChunkFront *>(memory);
    elements.chunk->next_block = elements.blocks;
    elements.chunk->block_size = size;
    elements.blocks = elements.chunk;
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

// The number of a path, a new one unless the last name had the same. False when memory has run out.
static bool number_of_path(const char *text, size_t length, PathNumber *number) {
    if (names.path_count > 0) {
        *number = names.path_count - 1;
        const Path &last = names.paths[*number];
        if (last.length == length && memcmp(last.text, text, length) == 0) {
            return true;
        }
    }
    if (names.path_count == names.path_capacity) {
        const PathNumber capacity = std::max<PathNumber>(16, names.path_capacity * 2);
        void *grown = realloc(names.paths, capacity * sizeof(Path));
        if (grown == nullptr) {
            return false;
        }
        names.paths = static_cast<Path *>(grown);
        names.path_capacity = capacity;
    }
    char *copy = take_text(length + 1);
    if (copy == nullptr) {
        return false;
    }
    memcpy(copy, text, length);
    copy[length] = '\0';
    *number = names.path_count++;
    names.paths[*number] = {copy, length};
    return true;
}

// Null when memory has run out.
static char *store_name(const char *name) {
    const char *slash = strrchr(name, '/');
    const char *leaf = slash == nullptr ? name : slash + 1;
    const size_t leaf_size = strlen(leaf) + 1;
    PathNumber path = 0;
    if (!number_of_path(name, static_cast<size_t>(leaf - name), &path)) {
        return nullptr;
    }
    char *stored = take_text(sizeof path + leaf_size);
    if (stored != nullptr) {
        memcpy(stored, &path, sizeof path);
        memcpy(stored + sizeof path, leaf, leaf_size);
    }
    return stored;
}

// False when memory has run out.
static bool make_room_for_whole(size_t size) {
    if (size > names.whole_size) {
        auto *grown = static_cast<char *>(realloc(names.whole, size));
        if (grown == nullptr) {
            return false;
        }
        names.whole = grown;
        names.whole_size = size;
    }
    return true;
}

const char *mfli_stored_name(const void *element) {
    const char *stored =
        mfli_chunk_of(element)->names[mfli_line_of(element) - MfliChunkFront::LINES];
    PathNumber number = 0;
    memcpy(&number, stored, sizeof number);
    const char *leaf = stored + sizeof number;
    const size_t leaf_size = strlen(leaf) + 1;
    const Path &path = names.paths[number];
    memcpy(names.whole, path.text, path.length);
    memcpy(names.whole + path.length, leaf, leaf_size);
    return names.whole;
}

static void release_all() {
    while (elements.blocks != nullptr) {
        MfliChunkFront *block = elements.blocks;
        elements.blocks = block->next_block;
        munmap(block, block->block_size);
    }
    while (names.blocks != nullptr) {
        NameBlock *block = names.blocks;
        names.blocks = block->next;
        free(block);
    }
    free(names.paths);
    free(names.whole);
    elements = ElementSpace{};
    names = NameSpace{};
}

void *mfli_store_element(size_t size, const char *name) {
    // Here, so that reading a name can not fail: a report would lack a bit and not know it.
    char *stored = make_room_for_whole(strlen(name) + 1) ? store_name(name) : nullptr;
    char *element = stored == nullptr ? nullptr : take_lines((size + MFLI_LINE - 1) / MFLI_LINE);
    if (element == nullptr) {
        return nullptr;
    }
    mfli_chunk_of(element)->names[mfli_line_of(element) - MfliChunkFront::LINES] = stored;
    *mfli_dirty_mark(element) = 0;
    ++live_elements;
    return memset(element, 0, size);
}

void mfli_unstore_element() {
    if (--live_elements == 0) {
        release_all();
    }
}
