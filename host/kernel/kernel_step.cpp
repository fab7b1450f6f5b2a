// SPDX-License-Identifier: Apache-2.0
// What runs at the end of a time step, and in which order.
#include "host/kernel/kernel.h"

#include <algorithm>

namespace wf {

namespace {

// In a large design the heads of a group would have to be waited for: they are fetched so many
// groups ahead.
constexpr uint32_t heads_ahead = 6;

// The number of the lowest bit that is set.
Slot lowest(uint64_t slots) {
    return static_cast<Slot>(std::countr_zero(slots));
}

}  // namespace

// Normal processes of common pairs whose turn has come. Between finding one and calling it there is
// time for its parameter to come from memory. (The prefetches stand in the loops themselves: the
// compiler takes a function of nothing else for one without effect.)
struct Kernel::Batch {
    static constexpr uint32_t enough = 64;
    uint32_t count = 0;
    const Process *processes[enough + 64];  // a group more than enough
};

void Kernel::run_step() {
    first_delta_ = delta_ + 1;
    // What processes change meanwhile makes the next delta cycle.
    for (;;) {
        next_delta();
        take_changes();
        if (immediate_count_ != 0) {
            run_immediate();
        }
        wake_slots();
        if (queue_count_ == 0) {
            break;
        }
        remember_changes();
    }
    if (earlier_count_ != 0) {
        forget_changes();
    }
    run_postponed();
}

void Kernel::take_changes() {
    taken_count_ = queue_count_;
    for (uint32_t i = 0; i < taken_count_; ++i) {
        Group &group = groups_[queue_[i]];
        taken_[i] = {group.pending, queue_[i] << group_bits};
        group.pending = 0;
    }
    queue_count_ = 0;
}

void Kernel::remember_changes() {
    for (uint32_t i = 0; i < taken_count_; ++i) {
        uint64_t &slots = earlier_[taken_[i].group()];
        if (slots == 0) {
            earlier_groups_[earlier_count_++] = taken_[i].group();
        }
        slots |= taken_[i].slots;
    }
}

void Kernel::forget_changes() {
    for (uint32_t i = 0; i < earlier_count_; ++i) {
        earlier_[earlier_groups_[i]] = 0;
    }
    earlier_count_ = 0;
}

void Kernel::wake_slots() {
    const bool is_plain = tracer_ == nullptr && earlier_count_ == 0;
    const uint32_t count = taken_count_;
    Batch batch;
    for (uint32_t i = 0; i < count; ++i) {
        if (i + heads_ahead < count) {
            const Taken &later = taken_[i + heads_ahead];
            __builtin_prefetch(&heads_[later.first + lowest(later.slots)]);
        }
        const Taken taken = taken_[i];
        if (!is_plain && (tracer_ != nullptr || (earlier_[taken.group()] & taken.slots) != 0)) {
            run_batch(batch);
            wake_one_by_one(taken);
            continue;
        }
        uint64_t left = collect_pairs(taken.first, taken.slots, batch);
        while (left != 0) {
            const Slot slot = taken.first + lowest(left);
            if (heads_[slot] >= several_pairs) {
                collect_list(heads_[slot], batch);
            } else {
                run_batch(batch);
                wake_list(slot);
            }
            left = collect_pairs(taken.first, left & (left - 1), batch);
        }
        if (batch.count >= Batch::enough) {
            run_batch(batch);
        }
    }
    run_batch(batch);
}

// The head of a pair links to the postponed process, whose index is one more than the normal one's.
// Adds the pairs of a group's slots to the batch, up to a slot that has other watchers than one
// pair. Answers the slots from there on.
inline uint64_t Kernel::collect_pairs(Slot first, uint64_t slots, Batch &batch) const {
    const uint32_t *heads = heads_.get() + first;
    const std::unique_ptr<Block, BlockFree> *blocks = blocks_.data();
    const Process **end = batch.processes + batch.count;
    while (slots != 0) {
        const uint32_t head = heads[lowest(slots)];
        if (head < single_pair) [[unlikely]] {
            break;
        }
        const uint32_t half = (head & link_mask) >> 2;
        const Process *process =
            &blocks[half >> (block_bits - 1)]->processes[0][half & (block_mask >> 1)];
        __builtin_prefetch(process);
        *end++ = process;
        slots &= slots - 1;
    }
    batch.count = static_cast<uint32_t>(end - batch.processes);
    return slots;
}

// The same for one slot with several pairs: a clock that goes by its own name in every instance.
void Kernel::collect_list(uint32_t head, Batch &batch) {
    const uint32_t last = head & link_mask;
    for (uint32_t link = last;;) {
        link = info_at(link >> 1).next;
        const Process *process = &process_at(link >> 1);
        __builtin_prefetch(process);
        batch.processes[batch.count++] = process;
        if (batch.count >= Batch::enough) {
            run_batch(batch);
        }
        link += 2;  // the postponed one's
        if (link == last) {
            return;
        }
    }
}

void Kernel::run_batch(Batch &batch) {
    if (batch.count == 0) {
        return;
    }
    const ProcessFunction function = common_.normal;
    const Process *const *end = batch.processes + batch.count;
    for (const Process *const *process = batch.processes; process != end; ++process) {
        function((*process)->parameter);
    }
    postpone(common_.postponed, common_.postponed_parameter, batch.count, nullptr);
    batch.count = 0;
}

void Kernel::wake_one_by_one(const Taken &taken) {
    for (uint64_t left = taken.slots; left != 0; left &= left - 1) {
        wake_list(taken.first + lowest(left));
    }
}

void Kernel::run_immediate() {
    const auto wake = [this](Slot slot) {
        const uint32_t last = heads_[slot] & link_mask;
        for (uint32_t link = next_link(last);; link = next_link(link)) {
            const uint32_t index = process_of(link);
            if (kind_of(index).priority == Priority::immediate && !already_woken(info_at(index))) {
                run(index);
            }
            if (link == last) {
                return;
            }
        }
    };
    for (uint32_t i = 0; i < taken_count_; ++i) {
        for (uint64_t left = taken_[i].slots; left != 0; left &= left - 1) {
            wake(taken_[i].first + lowest(left));
        }
    }
}

void Kernel::wake_list(Slot slot) {
    const uint32_t last = heads_[slot] & link_mask;
    for (uint32_t link = next_link(last);; link = next_link(link)) {
        const uint32_t index = process_of(link);
        const ProcessKind kind = kind_of(index);
        ProcessInfo &info = info_at(index);
        if (kind.priority == Priority::normal && !already_woken(info)) {
            run(index);
        } else if (kind.priority == Priority::postponed && !already_postponed(info, slot)) {
            const Process &process = process_at(index);
            postpone(kind.function, process.parameter, 1, &process);
        }
        if (link == last) {
            return;
        }
    }
}

void Kernel::run_postponed() {
    // By number and by copy, since a process may make further ones and so move the queue.
    for (size_t i = 0; i < postponed_.size(); ++i) {
        const PostponedCalls calls = postponed_[i];
        if (tracer_ != nullptr && calls.traced != nullptr) [[unlikely]] {
            tracer_(tracer_context_, *calls.traced);
        }
        for (uint64_t left = calls.times; left > 0; --left) {
            calls.function(calls.parameter);
        }
    }
    postponed_.clear();
}

void Kernel::run(uint32_t index) {
    const Process &process = process_at(index);
    if (tracer_ != nullptr) [[unlikely]] {
        tracer_(tracer_context_, process);
    }
    kind_of(index).function(process.parameter);
}

void Kernel::postpone(ProcessFunction function, void *parameter, uint64_t times,
                      const Process *traced) {
    if (tracer_ == nullptr && !postponed_.empty()) [[likely]] {
        PostponedCalls &last = postponed_.back();
        if (last.function == function && last.parameter == parameter) {
            last.times += times;
            return;
        }
    }
    postponed_.push_back({function, parameter, times, traced});
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

bool Kernel::already_postponed(ProcessInfo &process, Slot slot) {
    if (process.is_shared == 0) {
        return was_changed_before(slot);
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
