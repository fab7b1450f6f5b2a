// SPDX-License-Identifier: Apache-2.0
// What runs at the end of a time step, and in which order.
#include "host/kernel/kernel.h"

#include <algorithm>

namespace wf {

namespace {

// How many slots ahead a process's parameter is fetched.
constexpr uint32_t look_ahead = 4;

}  // namespace

void Kernel::run_step() {
    if (tracer_ == nullptr) [[likely]] {
        run_deltas<false>();
        run_postponed<false>();
    } else {
        run_deltas<true>();
        run_postponed<true>();
    }
}

template <bool traced>
void Kernel::run_deltas() {
    // Slots that a process changes join the end of the queue and make the next delta cycle.
    for (uint32_t from = 0; from < changed_count_;) {
        const uint32_t end = changed_count_;
        const bool is_first = from == 0;
        next_delta();
        if (immediate_count_ != 0) {
            run_immediate<traced>(from, end);
        }
        for (; from < end; ++from) {
            if (from + look_ahead < end) {
                prefetch_parameter(changed_[from + look_ahead]);
            }
            wake_slot<traced>(changed_[from], is_first);
        }
    }
    changed_count_ = 0;
}

void Kernel::prefetch_parameter(Slot slot) const {
    // The last watcher of a slot leads to the first, which is the one to run first.
    const uint32_t last = heads_[slot] & ~queued_mark;
    if ((last & 1U) == 0) {
        const uint32_t first = process_at(last >> 1).next;
        if ((first & 1U) == 0) {
            __builtin_prefetch(process_at(first >> 1).parameter, 1);
        }
    }
}

template <bool traced>
void Kernel::run_immediate(uint32_t from, uint32_t end) {
    for (; from < end; ++from) {
        const uint32_t last = heads_[changed_[from]] & ~queued_mark;
        for (uint32_t link = next_link(last);; link = next_link(link)) {
            Process &process = process_at(process_of(link));
            if (process.priority == Priority::immediate && !already_woken(process)) {
                run<traced>(process);
            }
            if (link == last) {
                break;
            }
        }
    }
}

template <bool traced>
void Kernel::wake_slot(Slot slot, bool is_first_delta) {
    const uint32_t last = heads_[slot] & ~queued_mark;
    heads_[slot] = last;
    for (uint32_t link = next_link(last);; link = next_link(link)) {
        const uint32_t index = process_of(link);
        Process &process = process_at(index);
        if (process.priority == Priority::immediate || already_woken(process)) {
            // It has run in this delta cycle.
        } else if (process.priority == Priority::normal) {
            run<traced>(process);
        } else {
            postpone(index, is_first_delta);
        }
        if (link == last) {
            return;
        }
    }
}

template <bool traced>
void Kernel::run_postponed() {
    // By number, since a process may make further ones and so move the queue.
    for (size_t i = 0; i < postponed_.size(); ++i) {
        run<traced>(process_at(postponed_[i]));
    }
    postponed_.clear();
}

template <bool traced>
void Kernel::run(Process &process) {
    if constexpr (traced) {
        tracer_(tracer_context_, process);
    }
    process.function(process.parameter);
}

void Kernel::postpone(uint32_t index, bool is_first_delta) {
    // A process can be queued twice only by two delta cycles, which no replay has.
    if (is_first_delta ||
        std::find(postponed_.begin(), postponed_.end(), index) == postponed_.end()) {
        postponed_.push_back(index);
    }
}

bool Kernel::already_woken(Process &process) {
    // A process on one slot is met once in a delta cycle and needs no mark.
    if (!process.shared) {
        return false;
    }
    const bool already = process.delta == delta_;
    process.delta = delta_;
    return already;
}

void Kernel::next_delta() {
    if (++delta_ != 0) {
        return;
    }
    // The numbers start again: no mark of the last round may look like one of this.
    for (uint32_t index = first_process; index < next_process_; ++index) {
        process_at(index).delta = UINT32_MAX;
    }
}

}  // namespace wf
