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
#include <unordered_map>
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
// ones first, then the normal ones, then, when all that has settled, the postponed ones. Slots go
// in groups of 64 neighbours: the groups in the order in which one of their slots changed first,
// within a group from the lowest slot up, and the processes of one slot in the order in which they
// were sensitised. Values that a process sets are a further delta cycle of the same step; those
// that a postponed process sets wait for the next finish_step.
//
// A replayed value has no transactions without an event, so an `active` sensitivity wakes like an
// `event` one.
//
// Cost: a set with an equal value is a compare; a change is that, a store, and a look at two bits
// of the slot's group: watched, and pending already. The first change in a group enters the group
// into the queue; those of a vector enter together. Nothing is allocated in the long run. Memory: 4
// bytes a slot, 48 a group, 20 a process.
//
// Most watched slots are bits with a pair of watchers of their own: a normal process and, made
// right after it, a postponed one, every pair of the same two kinds and all the postponed ones the
// same call. Such pairs are woken without a walk, in batches: the heads lead to the parameters,
// which lie side by side, the one function is called with each, and the one postponed call gets a
// number of times that it is to be made.
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
        if (queue_count_ != 0) {
            run_step();
        }
    }
    // Moves to a later time at which nothing changes.
    void advance(Ticks time) {
        finish_step();
        begin_step(time);
    }

    // Goes back to time 0 between two steps: changes that wait for the next step are forgotten, who
    // watches what stays. The storage's values are the caller's to set, and no event.
    void restart();

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
        if (signal.type->slots == 1 ? !is_current(signal.slot) : supply_ != nullptr) {
            supply_->wanted(signal.slot, signal.type->slots);
        }
    }
    // Whether the slot's value is up to date without a fetch.
    bool is_current(Slot slot) const { return supply_ == nullptr || is_watched(slot); }

    // --- processes ---
    // A process that wakes when it is sensitised; it never runs by itself. The name is copied. The
    // process lives as long as the kernel. Null when there are 2^29 of them.
    Process *create_process(std::string_view name, ProcessFunction function, void *parameter,
                            Priority priority = Priority::normal);
    // Makes the process wake with the signal: with every leaf of a composite.
    void sensitize(Process *process, const Signal &signal, Trigger trigger = Trigger::event);
    bool is_process(const void *handle) const { return index_of(handle) != 0; }
    const std::string &name_of(const Process &process) const {
        return names_[kind_of(index_of(&process)).name];
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
    // A slot's head: in the two upper bits what its watchers are, in the rest the link to the last
    // of them, whose own link leads to the first. 0: nobody watches; only a link: any watchers.
    static constexpr uint32_t open_pair = 0x40000000U;  // common pairs or nobody, then a normal one
    static constexpr uint32_t several_pairs = 0x80000000U;  // common pairs
    static constexpr uint32_t single_pair = 0xc0000000U;
    static constexpr uint32_t link_mask = open_pair - 1;

    // 64 neighbouring slots, a bit for each.
    static constexpr uint32_t group_bits = 6;
    static constexpr uint32_t group_mask = (1U << group_bits) - 1;
    struct Group {
        uint64_t watched;
        uint64_t pending;  // changed since the last delta cycle began; not 0: in the queue
    };
    // What a delta cycle has taken from the queue.
    struct Taken {
        uint64_t slots;
        Slot first;
        uint32_t group() const { return first >> group_bits; }
    };
    struct Batch;

    static uint64_t bit_of(Slot slot) { return uint64_t{1} << (slot & group_mask); }
    bool is_watched(Slot slot) const {
        return (groups_[slot >> group_bits].watched & bit_of(slot)) != 0;
    }
    // Queues changed slots of a group as far as somebody watches them.
    void enqueue(uint32_t number, uint64_t slots) {
        Group &group = groups_[number];
        slots &= group.watched;
        if (slots != 0) {
            if (group.pending == 0) {
                queue_[queue_count_++] = number;
            }
            group.pending |= slots;
        }
    }
    void touch(Slot slot) { enqueue(slot >> group_bits, bit_of(slot)); }
    // Bit i of `changed` stands for the slot first + i.
    void touch_run(Slot first, uint64_t changed) {
        const uint32_t shift = first & group_mask;
        enqueue(first >> group_bits, changed << shift);
        const uint64_t beyond = changed >> 1 >> (group_mask - shift);
        if (beyond != 0) {
            enqueue((first >> group_bits) + 1, beyond);
        }
    }
    static uint64_t store_word(uint8_t *place, const uint8_t *values);
    static uint64_t store_run(uint8_t *place, const uint8_t *values, uint32_t count);

    void run_step();
    void take_changes();
    void remember_changes();
    void forget_changes();
    void run_immediate();
    void wake_slots();
    void wake_one_by_one(const Taken &taken);
    uint64_t collect_pairs(Slot first, uint64_t slots, Batch &batch) const;
    void collect_list(uint32_t head, Batch &batch);
    void run_batch(Batch &batch);
    void wake_list(Slot slot);
    void run_postponed();
    void run(uint32_t index);
    void postpone(ProcessFunction function, void *parameter, uint64_t times, const Process *traced);
    // Whether an earlier delta cycle of the step has met that slot, and so has postponed the
    // processes that watch no other.
    bool was_changed_before(Slot slot) const {
        return earlier_count_ != 0 && (earlier_[slot >> group_bits] & bit_of(slot)) != 0;
    }
    bool already_woken(ProcessInfo &process);
    bool already_postponed(ProcessInfo &process, Slot slot);
    void next_delta();

    void watch_slot(uint32_t index, Slot slot);
    void watch_leaves(uint32_t process, const Type &type, Slot first);
    uint32_t intern_name(std::string_view name);
    uint32_t intern_kind(std::string_view name, ProcessFunction function, Priority priority);
    uint32_t index_of(const void *process) const;
    void share(uint32_t index);
    uint32_t marks_with(uint32_t head, uint32_t link);
    bool is_common_pair(uint32_t normal, uint32_t postponed);
    Process &process_at(uint32_t index) const {
        return blocks_[index >> block_bits]->processes[index & 1U][(index & block_mask) >> 1];
    }
    ProcessInfo &info_at(uint32_t index) const {
        return blocks_[index >> block_bits]->infos[index & block_mask];
    }
    const ProcessKind &kind_of(uint32_t index) const { return kinds_[info_at(index).kind]; }
    uint32_t &next_link(uint32_t link) {
        return (link & 1U) != 0 ? nodes_[link >> 1].next : info_at(link >> 1).next;
    }
    uint32_t process_of(uint32_t link) const {
        return (link & 1U) != 0 ? nodes_[link >> 1].process : link >> 1;
    }

    static constexpr uint32_t block_bits = 16;
    static constexpr uint32_t block_mask = (1U << block_bits) - 1;
    static constexpr uint32_t first_process = 2;
    static constexpr uint32_t process_limit = 1U << 29;
    // The even processes lie together, and so do the odd ones: of a pair, waking reads one only.
    struct Block {
        Process processes[2][size_t{1} << (block_bits - 1)];
        ProcessInfo infos[size_t{1} << block_bits];
    };
    struct BlockFree {
        void operator()(Block *block) const;
    };
    // The two kinds and the postponed call of all common pairs: those of the first pair there was.
    struct CommonPair {
        uint32_t normal_kind;
        uint32_t postponed_kind;
        ProcessFunction normal;  // null: there is no pair yet
        ProcessFunction postponed;
        void *postponed_parameter;
    };
    // Calls of a postponed process that wait for the step's end. Neighbours that are the same call
    // are one entry: all of a recorder's, as a rule. While tracing every process has its own entry.
    struct PostponedCalls {
        ProcessFunction function;
        void *parameter;
        uint64_t times;
        const Process *traced;  // whom to show to the tracer
    };
    struct KindHash {
        size_t operator()(const ProcessKind &kind) const;
    };
    // Memory from calloc: what nobody ever touches is free of charge.
    struct HeapFree {
        void operator()(void *memory) const;
    };
    template <typename T>
    using Zeroed = std::unique_ptr<T[], HeapFree>;
    template <typename T>
    static void grow(Zeroed<T> &array, size_t from, size_t to);

    // The hot ones first.
    uint8_t *values_ = nullptr;
    Zeroed<Group> groups_;
    Zeroed<uint32_t> queue_;  // groups with a pending slot; as long as all groups
    uint32_t queue_count_ = 0;
    uint32_t taken_count_ = 0;
    Zeroed<Taken> taken_;  // the delta cycle's
    Zeroed<uint32_t> heads_;
    ValueSupply *supply_ = nullptr;
    Ticks now_ = 0;
    std::vector<std::unique_ptr<Block, BlockFree>> blocks_;
    CommonPair common_{};
    std::vector<PostponedCalls> postponed_;
    uint32_t delta_ = 0;        // numbers the delta cycles
    uint32_t first_delta_ = 0;  // of this step
    // What the step's earlier delta cycles have met, by group, and which groups those are. No
    // replay has more than one delta cycle.
    Zeroed<uint64_t> earlier_;
    Zeroed<uint32_t> earlier_groups_;
    uint32_t earlier_count_ = 0;
    uint32_t immediate_count_ = 0;
    uint32_t postponed_count_ = 0;
    uint32_t next_process_ = first_process;
    uint32_t watch_version_ = 0;
    Slot slot_capacity_ = 0;
    Tracer tracer_ = nullptr;
    void *tracer_context_ = nullptr;
    std::vector<WatchNode> nodes_{1};
    std::vector<ProcessKind> kinds_;
    std::unordered_map<ProcessKind, uint32_t, KindHash> kind_numbers_;
    uint32_t recent_kinds_[2] = {0, 0};  // a recorder makes processes of two kinds in turn
    std::vector<std::string> names_;
    NameIndex name_index_;
    Design &design_;
};

// Stores eight values; bit i of the answer says that the i-th differs from what was there.
inline uint64_t Kernel::store_word(uint8_t *place, const uint8_t *values) {
    static_assert(std::endian::native == std::endian::little);
    constexpr uint64_t low_bits = 0x7f7f7f7f7f7f7f7fU;
    uint64_t before;
    uint64_t after;
    std::memcpy(&before, place, 8);
    std::memcpy(&after, values, 8);
    const uint64_t difference = before ^ after;
    if (difference == 0) {
        return 0;
    }
    std::memcpy(place, &after, 8);
    // The top bit of every byte that is not 0; the product brings the eight together at the top.
    const uint64_t marks = (((difference & low_bits) + low_bits) | difference) & ~low_bits;
    return ((marks >> 7) * 0x0102040810204080U) >> 56;
}

// The same for 1 to 64 values.
inline uint64_t Kernel::store_run(uint8_t *place, const uint8_t *values, uint32_t count) {
    uint64_t changed = 0;
    if (count < 8) {
        for (uint32_t i = 0; i < count; ++i) {
            changed |= uint64_t{place[i] != values[i]} << i;
            place[i] = values[i];
        }
        return changed;
    }
    // The last word reaches back over bytes that are equal by then.
    for (uint32_t i = 0;; i = i + 16 <= count ? i + 8 : count - 8) {
        changed |= store_word(place + i, values + i) << i;
        if (i + 8 == count) {
            return changed;
        }
    }
}

inline void Kernel::set_bytes(Slot first, const uint8_t *values, uint32_t count) {
    for (;;) {
        const uint32_t part = count < 64 ? count : 64;
        const uint64_t changed = store_run(values_ + first, values, part);
        if (changed != 0) {
            touch_run(first, changed);
        }
        if (part == count) {
            return;
        }
        first += part;
        values += part;
        count -= part;
    }
}

}  // namespace wf
