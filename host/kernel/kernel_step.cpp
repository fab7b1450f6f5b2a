// SPDX-License-Identifier: Apache-2.0
// What runs at the end of a time step, and in which order.
#include "host/kernel/kernel.h"

#include <algorithm>

namespace wf {

namespace {

// In a design of more than some 10,000 bits a change would wait for memory: a pair of processes
// and, when that has come, what the first works on are fetched so many slots ahead. (The prefetches
// stand in the loop itself: the compiler takes a function of nothing else for one without effect.)
constexpr uint32_t pair_ahead = 24;
constexpr uint32_t parameter_ahead = 12;

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
    first_delta_ = delta_ + 1;
    // Slots that a process changes join the end of the queue and make the next delta cycle.
    for (uint32_t from = 0; from < changed_count_;) {
        const uint32_t end = changed_count_;
        next_delta();
        if (immediate_count_ != 0) {
            run_immediate<traced>(from, end);
        }
        wake_slots<traced>(from, end);
        from = end;
    }
    changed_count_ = 0;
}

template <bool traced>
void Kernel::wake_slots(uint32_t from, uint32_t end) {
    const uint32_t delta_from = from;
    for (; from < end; ++from) {
        if (from + pair_ahead < end) {
            const uint32_t later = changed_[from + pair_ahead].head;
            const uint32_t sooner = changed_[from + parameter_ahead].head;
            __builtin_prefetch(&heads_[changed_[from + pair_ahead].slot], 1);
            // In a list of pairs this is the last of them, which is better than nothing.
            __builtin_prefetch(&pair_of(later));
            if ((sooner & pair_mark) != 0) {
                __builtin_prefetch(pair_of(sooner).parameter, 1);
            }
        }
        const Slot slot = changed_[from].slot;
        const uint32_t head = heads_[slot] & ~queued_mark;
        heads_[slot] = head;
        if ((head & pair_mark) == 0) {
            wake_list<traced>(slot, delta_from);
        } else {
            wake_pair<traced>(slot, head, delta_from);
        }
    }
}

template <bool traced>
void Kernel::wake_pair(Slot slot, uint32_t head, uint32_t delta_from) {
    const Process *pair = &pair_of(head);
    run<traced>(pair[0]);
    if (delta_from == 0 || !was_changed_before(slot, delta_from)) {
        postpone<traced>(pair[1]);
    }
}

// Whether an earlier delta cycle of the step has met that slot, and so has postponed the processes
// that watch no other: no replay has more than one delta cycle.
bool Kernel::was_changed_before(Slot slot, uint32_t delta_from) const {
    const Changed *first = changed_.get();
    return std::any_of(first, first + delta_from,
                       [slot](const Changed &changed) { return changed.slot == slot; });
}

template <bool traced>
void Kernel::run_immediate(uint32_t from, uint32_t end) {
    for (; from < end; ++from) {
        const uint32_t last = heads_[changed_[from].slot] & link_mask;
        for (uint32_t link = next_link(last);; link = next_link(link)) {
            const uint32_t index = process_of(link);
            ProcessInfo &info = info_at(index);
            if (info.priority == static_cast<uint32_t>(Priority::immediate) &&
                !already_woken(info)) {
                run<traced>(process_at(index));
            }
            if (link == last) {
                break;
            }
        }
    }
}

template <bool traced>
void Kernel::wake_list(Slot slot, uint32_t delta_from) {
    const uint32_t last = heads_[slot] & link_mask;
    for (uint32_t link = next_link(last);; link = next_link(link)) {
        const uint32_t index = process_of(link);
        ProcessInfo &info = info_at(index);
        const auto priority = static_cast<Priority>(info.priority);
        if (priority == Priority::normal && !already_woken(info)) {
            run<traced>(process_at(index));
        } else if (priority == Priority::postponed && !already_postponed(info, slot, delta_from)) {
            postpone<traced>(process_at(index));
        }
        if (link == last) {
            return;
        }
    }
}

template <bool traced>
void Kernel::run_postponed() {
    // By number and by copy, since a process may make further ones and so move the queue.
    for (size_t i = 0; i < postponed_.size(); ++i) {
        const PostponedCalls calls = postponed_[i];
        for (uint64_t left = calls.times; left > 0; --left) {
            if constexpr (traced) {
                tracer_(tracer_context_, *calls.process);
            }
            calls.function(calls.parameter);
        }
    }
    postponed_.clear();
}

template <bool traced>
void Kernel::run(const Process &process) {
    if constexpr (traced) {
        tracer_(tracer_context_, process);
    }
    process.function(process.parameter);
}

template <bool traced>
inline void Kernel::postpone(const Process &process) {
    if (!traced && !postponed_.empty()) [[likely]] {
        PostponedCalls &last = postponed_.back();
        if (last.function == process.function && last.parameter == process.parameter) {
            ++last.times;
            return;
        }
    }
    postponed_.push_back({process.function, process.parameter, 1, &process});
}

bool Kernel::already_woken(ProcessInfo &process) {
    // A process on one slot is met once in a delta cycle and needs no mark.
    if (process.is_shared == 0) {
        return false;
    }
    const bool already = process.mark == delta_;
    process.mark = delta_;
    return already;
}

bool Kernel::already_postponed(ProcessInfo &process, Slot slot, uint32_t delta_from) {
    if (process.is_shared == 0) {
        return was_changed_before(slot, delta_from);
    }
    const bool already = process.mark - first_delta_ <= delta_ - first_delta_;
    process.mark = delta_;
    return already;
}

void Kernel::next_delta() {
    if (++delta_ != 0) {
        return;
    }
    // The numbers start again: no mark of the last round may look like one of this.
    for (uint32_t index = first_process; index < next_process_; ++index) {
        ProcessInfo &process = info_at(index);
        process.mark = process.is_shared != 0 ? UINT32_MAX : process.mark;
    }
}

}  // namespace wf
