// SPDX-License-Identifier: Apache-2.0
// The program's operator new, which counts its calls.
#include "tests/support/allocation_count.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<uint64_t> count{0};

}  // namespace

uint64_t wf::test::allocation_count() {
    return count;
}

void *operator new(size_t bytes) {
    ++count;
    if (void *block = std::malloc(bytes == 0 ? 1 : bytes)) {
        return block;
    }
    throw std::bad_alloc();
}

// The sanitizer has one of its own, which does not go with the operator delete below.
void *operator new(size_t bytes, const std::nothrow_t &) noexcept {
    ++count;
    return std::malloc(bytes == 0 ? 1 : bytes);
}

void operator delete(void *block) noexcept {
    std::free(block);
}

void operator delete(void *block, size_t) noexcept {
    std::free(block);
}
