// SPDX-License-Identifier: Apache-2.0
// The account of memory that crosses the wall. The other side knows it as C memory.
#include "host/fli/ledger.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace wf {

void *Ledger::allocate(size_t bytes) {
    void *block = std::malloc(std::max<size_t>(bytes, 1));
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    blocks_.push_back(block);
    return block;
}

bool Ledger::release(void *block) {
    const auto found = std::find(blocks_.rbegin(), blocks_.rend(), block);
    if (found == blocks_.rend()) {
        return false;
    }
    std::free(block);
    *found = blocks_.back();
    blocks_.pop_back();
    return true;
}

void Ledger::release_all() {
    for (void *block : blocks_) {
        std::free(block);
    }
    blocks_.clear();
}

}  // namespace wf
