// SPDX-License-Identifier: Apache-2.0
// The short way to the value of a signal that is one byte: from the handle over a dense array of
// slots to the value, without the signal's record. A recorder goes it for every bit that changes.
#pragma once

#include <bit>
#include <cstdint>

#include "host/design/design.h"
#include "host/kernel/kernel.h"

namespace wf {

// Knows one block of a design's signals at a time, or none. All it cannot answer it leaves to the
// long way: other handles, valid or not, other types, values that have to be fetched first.
class ByteValues {
  public:
    // From now on, this block. The design and the kernel outlive it, or close() comes first.
    void open(const Design::Signals::View &signals, const Kernel &kernel) {
        signals_ = signals;
        kernel_ = &kernel;
    }
    void close() { signals_ = {}; }

    // Whether it knows the signal's value.
    bool find(const void *handle, int32_t *value) const {
        const auto distance =
            reinterpret_cast<uintptr_t>(handle) - reinterpret_cast<uintptr_t>(signals_.records);
        const uintptr_t number = record_number(distance);
        if (number >= signals_.count) {
            return false;
        }
        const Slot slot = signals_.beside[number];
        if (slot == no_slot || !kernel_->is_current(slot)) {
            return false;
        }
        *value = kernel_->byte(slot);
        return true;
    }

  private:
    // Which record begins at that distance from the first; a huge number when none does.
    static uintptr_t record_number(uintptr_t distance) {
        constexpr size_t size = sizeof(Signal);
        if constexpr (std::has_single_bit(size)) {
            return std::rotr(distance, std::countr_zero(size));
        } else {
            return distance % size == 0 ? distance / size : UINTPTR_MAX;
        }
    }

    Design::Signals::View signals_;
    const Kernel *kernel_ = nullptr;
};

}  // namespace wf
