// SPDX-License-Identifier: Apache-2.0
// Blocks of handles, and the chain of those that were given back.
#include "plugin/support/linked_list_handles.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

#ifdef __SANITIZE_ADDRESS__

// The sanitizer sees the use of a handle that was given back only when the handle is an allocation
// of its own.
list_handle *list_new_handle() {
    return static_cast<list_handle *>(malloc(sizeof(list_handle)));
}

void list_free_handle(list_handle *handle) {
    free(handle);
}

#else

static constexpr size_t FIRST_BLOCK = 64;  // handles
static constexpr size_t LARGEST_BLOCK = 8192;

struct Block {
    Block *next;
    list_handle handles[1];  // as many as were asked for
};

static Block *blocks;
static size_t block_size;       // handles of the newest block
static list_handle *fresh;      // the first of them that was never given out
static list_handle *fresh_end;  // behind the last of them
static list_handle *returned;   // handles that were given back, chained by `next`
static size_t live;

static void add_block() {
    block_size = blocks == nullptr ? FIRST_BLOCK : std::min(block_size * 2, LARGEST_BLOCK);
    auto *block =
        static_cast<Block *>(malloc(offsetof(Block, handles) + block_size * sizeof(list_handle)));
    block->next = blocks;
    blocks = block;
    fresh = block->handles;
    fresh_end = fresh + block_size;
}

list_handle *list_new_handle() {
    ++live;
    if (returned != nullptr) {
        list_handle *handle = returned;
        returned = handle->next;
        return handle;
    }
    if (fresh == fresh_end) {
        add_block();
    }
    return fresh++;
}

static void release_all() {
    while (blocks != nullptr) {
        Block *block = blocks;
        blocks = block->next;
        free(block);
    }
    fresh = fresh_end = returned = nullptr;
}

void list_free_handle(list_handle *handle) {
    handle->next = returned;
    returned = handle;
    if (--live == 0) {
        release_all();
    }
}

#endif
