// SPDX-License-Identifier: Apache-2.0
// Simulated time, the values that change in it, and the processes that wake on them. It knows
// slots, not signals' names; it runs what a process holds and asks nothing about it.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/design/design.h"
#include "host/design/name_index.h"
#include "host/kernel/process.h"

namespace wf {

using Ticks = int64_t;

// Who has the values of slots that nobody watches, where they are not sent unasked: a running
// simulator. It sets them with set_byte and its like, at the time that is now.
class ValueSupply {
  public:
    // Somebody is about to read these slots, and one of them at least is not watched.
    virtual void wanted(Slot first, uint32_t count) = 0;
    // The slot is about to get its first watcher; from now on its changes are to be sent.
    virtual void watched(Slot slot) = 0;

  protected:
    ~ValueSupply() = default;
};

// A time step:
//
//     kernel.begin_step(t);          // t is now
//     kernel.set_byte(slot, value);  // any number of these; a value written again is no event
//     kernel.finish_step();          // immediate, normal, then postponed processes
//
// In finish_step the processes sensitive to a slot whose value changed run once each: the immediate
// ones first, then the normal ones in the order in which their slots changed first (those of one
// slot in the order in which they were sensitised), then, when all that has settled, the postponed
// ones. Values that a process sets are a further delta cycle of the same step; those that a
// postponed process sets wait for the next finish_step.
//
// A replayed value has no transactions without an event, so an `active` sensitivity wakes like an
// `event` one.
//
// Cost: a set with an equal value is a compare; a change that nobody watches is that, a store and a
// look at the slot's head; a watched one also enters its slot into a queue. Queues keep their
// capacity, so nothing is allocated in the long run. Memory: 4 bytes a slot, 28 a process.
//
// Most watched slots are bits with a pair of watchers of their own: a normal process and, made
// right after it, a postponed one. A pair is woken without a walk: the head leads to the half line
// that holds both, the normal one is called, and the postponed one, if it is a call like the last
// that was queued, only adds to the number of times that call is to be made.
class Kernel {
  public:
    // Works on the design's storage. The design must outlive the kernel.
    explicit Kernel(Design &design);
    ~Kernel();
    Kernel(const Kernel &) = delete;
    Kernel &operator=(const Kernel &) = delete;

    // Takes in storage that the design has gained: to be called after signals were added and before
    // their values are set. Values set before stay.
    void sync();

    // --- time ---
    Ticks now() const { return now_; }
    // Moves time forward; `time` is not before now(). Setting values without it belongs to the
    // step that is now.
    void begin_step(Ticks time) { now_ = time; }
    // Runs what the step's changes woke.
    void finish_step() {
        if (changed_count_ != 0) {
            run_step();
        }
    }
    // Moves to a later time at which nothing changes.
    void advance(Ticks time) {
        finish_step();
        begin_step(time);
    }

    // --- values ---
    uint8_t byte(Slot slot) const { return values_[slot]; }
    int64_t word(Slot slot) const {
        int64_t value;
        std::memcpy(&value, values_ + slot, sizeof value);
        return value;
    }
    double real(Slot slot) const { return std::bit_cast<double>(word(slot)); }
    const uint8_t *bytes(Slot first) const { return values_ + first; }

    void set_byte(Slot slot, uint8_t value) {
        if (values_[slot] != value) {
            values_[slot] = value;
            touch(slot);
        }
    }
    // Sets neighbouring one-byte slots; compared eight at a time.
    void set_bytes(Slot first, const uint8_t *values, uint32_t count);
    // Sets the eight slots of one scalar, which is watched through the first of them.
    void set_word(Slot slot, int64_t value) {
        if (word(slot) != value) {
            std::memcpy(values_ + slot, &value, sizeof value);
            touch(slot);
        }
    }
    void set_real(Slot slot, double value) { set_word(slot, std::bit_cast<int64_t>(value)); }
    // Asks this supply for values from now on; null: nobody. It outlives the kernel or is taken
    // away.
    void supply_from(ValueSupply *supply) { supply_ = supply; }
    // Has the values of an object's slots brought up to date before they are read.
    void fetch(const Signal &signal) {
        if (supply_ != nullptr && (signal.type->slots != 1 || heads_[signal.slot] == 0)) {
            supply_->wanted(signal.slot, signal.type->slots);
        }
    }

    // --- processes ---
    // A process that wakes when it is sensitised; it never runs by itself. The name is copied. The
    // process lives as long as the kernel. Null when there are 2^29 of them.
    Process *create_process(std::string_view name, ProcessFunction function, void *parameter,
                            Priority priority = Priority::normal);
    // Makes the process wake with the signal: with every leaf of a composite.
    void sensitize(Process *process, const Signal &signal, Trigger trigger = Trigger::event);
    bool is_process(const void *handle) const { return index_of(handle) != 0; }
    const std::string &name_of(const Process &process) const {
        return names_[info_at(index_of(&process)).name];
    }
    uint32_t process_count() const { return next_process_ - first_process; }
    // Whether anybody watches one of these slots. The answer holds while watch_version() stays the
    // same; a source may then leave out the parsing of a value that nobody sees but the slots.
    bool watched(Slot first, uint32_t count) const;
    uint32_t watch_version() const { return watch_version_; }

    // --- tracing ---
    // Calls `tracer(context, process)` before every process that runs; null switches it off.
    using Tracer = void (*)(void *context, const Process &process);
    void trace_wakes(Tracer tracer, void *context) {
        tracer_ = tracer;
        tracer_context_ = context;
    }

  private:
    // A slot's head: bit 31 says that the slot is in the queue, bit 30 that its watchers are a
    // pair, the rest is the link to the last of its watchers, whose own link leads to the first. 0:
    // nobody watches.
    static constexpr uint32_t queued_mark = 0x80000000U;
    static constexpr uint32_t pair_mark = 0x40000000U;
    static constexpr uint32_t link_mask = pair_mark - 1;

    // Queues a changed slot if somebody watches it and it is not queued yet.
    void touch(Slot slot) {
        const uint32_t head = heads_[slot];
        if (head - 1 < queued_mark - 1) {
            enqueue(slot, head);
        }
    }
    void enqueue(Slot slot, uint32_t head) {
        heads_[slot] = head | queued_mark;
        if (changed_count_ == changed_capacity_) [[unlikely]] {
            reserve_changed(changed_count_ + 1);
        }
        changed_[changed_count_++] = {slot, head};
    }
    void touch_differences(Slot first, uint64_t difference);
    void run_step();
    template <bool traced>
    void run_deltas();
    template <bool traced>
    void run_immediate(uint32_t from, uint32_t end);
    template <bool traced>
    void wake_slots(uint32_t from, uint32_t end);
    template <bool traced>
    void wake_pair(Slot slot, uint32_t head, uint32_t delta_from);
    template <bool traced>
    void wake_list(Slot slot, uint32_t delta_from);
    template <bool traced>
    void run_postponed();
    template <bool traced>
    void run(const Process &process);
    template <bool traced>
    void postpone(const Process &process);
    bool was_changed_before(Slot slot, uint32_t delta_from) const;
    bool already_woken(ProcessInfo &process);
    bool already_postponed(ProcessInfo &process, Slot slot, uint32_t delta_from);
    void next_delta();
    void reserve_changed(uint32_t count);

    void watch_slot(uint32_t index, Slot slot);
    void watch_leaves(uint32_t process, const Type &type, Slot first);
    uint32_t intern_name(std::string_view name);
    uint32_t index_of(const void *process) const;
    void share(uint32_t index);
    bool make_a_pair(uint32_t first, uint32_t second) const;
    Process &process_at(uint32_t index) const {
        return blocks_[index >> block_bits]->processes[index & block_mask];
    }
    ProcessInfo &info_at(uint32_t index) const {
        return blocks_[index >> block_bits]->infos[index & block_mask];
    }
    // The first of a pair; the second follows it.
    const Process &pair_of(uint32_t head) const {
        return process_at(((head & link_mask) >> 1) - 1);
    }
    uint32_t &next_link(uint32_t link) {
        return (link & 1U) != 0 ? nodes_[link >> 1].next : info_at(link >> 1).next;
    }
    uint32_t process_of(uint32_t link) const {
        return (link & 1U) != 0 ? nodes_[link >> 1].process : link >> 1;
    }

    static constexpr uint32_t block_bits = 16;
    static constexpr uint32_t block_mask = (1U << block_bits) - 1;
    // An even number, so that two processes made one after the other share a cache line.
    static constexpr uint32_t first_process = 2;
    static constexpr uint32_t process_limit = 1U << 29;
    struct Block {
        Process processes[size_t{1} << block_bits];
        ProcessInfo infos[size_t{1} << block_bits];
    };
    struct BlockFree {
        void operator()(Block *block) const;
    };
    // A changed slot, and its head as it was: good for fetching what is soon to be looked at.
    struct Changed {
        Slot slot;
        uint32_t head;
    };
    // Calls of a postponed process that wait for the step's end. Neighbours that are the same call
    // are one entry: all of a recorder's, as a rule. While tracing every process has its own entry.
    struct PostponedCalls {
        ProcessFunction function;
        void *parameter;
        uint64_t times;
        const Process *process;  // the first of them
    };
    struct HeapFree {
        void operator()(uint32_t *heads) const;
    };

    // The hot ones first.
    uint8_t *values_ = nullptr;
    std::unique_ptr<uint32_t[], HeapFree> heads_;
    std::unique_ptr<Changed[]> changed_;  // the queue of changed slots
    uint32_t changed_count_ = 0;
    uint32_t changed_capacity_ = 0;  // at least as many as slots that are watched
    uint32_t delta_ = 0;             // numbers the delta cycles
    uint32_t first_delta_ = 0;       // of this step
    Ticks now_ = 0;
    std::vector<PostponedCalls> postponed_;
    std::vector<std::unique_ptr<Block, BlockFree>> blocks_;
    std::vector<WatchNode> nodes_{1};
    uint32_t next_process_ = first_process;
    uint32_t immediate_count_ = 0;
    uint32_t postponed_count_ = 0;
    uint32_t watched_slots_ = 0;
    uint32_t watch_version_ = 0;
    Slot head_capacity_ = 0;
    Slot slots_ = 0;
    ValueSupply *supply_ = nullptr;
    Tracer tracer_ = nullptr;
    void *tracer_context_ = nullptr;
    std::vector<std::string> names_;
    NameIndex name_index_;
    Design &design_;
};

inline void Kernel::touch_differences(Slot first, uint64_t difference) {
    static_assert(std::endian::native == std::endian::little);
    while (difference != 0) {
        const unsigned byte_number = static_cast<unsigned>(std::countr_zero(difference)) / 8;
        touch(first + byte_number);
        difference &= ~(uint64_t{0xff} << (byte_number * 8));
    }
}

inline void Kernel::set_bytes(Slot first, const uint8_t *values, uint32_t count) {
    if (count < 8) {
        for (uint32_t i = 0; i < count; ++i) {
            set_byte(first + i, values[i]);
        }
        return;
    }
    // The last word reaches back over bytes that are equal by then.
    for (uint32_t i = 0;; i = i + 16 <= count ? i + 8 : count - 8) {
        uint64_t before;
        uint64_t after;
        std::memcpy(&before, values_ + first + i, 8);
        std::memcpy(&after, values + i, 8);
        if (before != after) {
            std::memcpy(values_ + first + i, &after, 8);
            touch_differences(first + i, before ^ after);
        }
        if (i + 8 == count) {
            return;
        }
    }
}

}  // namespace wf
