// SPDX-License-Identifier: Apache-2.0
// What is set up before time runs: storage, processes, and who watches which slot.
#include "host/kernel/kernel.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>

namespace wf {

namespace {

constexpr size_t cache_line = 64;

// Memory at the start of a cache line, with what is to be given back just before it: inside another
// simulator the process's allocator need not have a function for aligned memory.
void *allocate_aligned(size_t size) {
    auto *memory = static_cast<char *>(::operator new(size + cache_line + sizeof(void *)));
    char *start = memory + sizeof(void *);
    start += (cache_line - reinterpret_cast<uintptr_t>(start) % cache_line) % cache_line;
    reinterpret_cast<void **>(start)[-1] = memory;
    return start;
}

}  // namespace

void Kernel::BlockFree::operator()(Block *block) const {
    ::operator delete(reinterpret_cast<void **>(block)[-1]);
}

void Kernel::HeapFree::operator()(void *memory) const {
    std::free(memory);
}

size_t Kernel::KindHash::operator()(const ProcessKind &kind) const {
    const auto function = reinterpret_cast<uintptr_t>(kind.function);
    return (function ^ (size_t{kind.name} << 2 | static_cast<size_t>(kind.priority))) *
           0x9e3779b97f4a7c15U;
}

template <typename T>
void Kernel::grow(Zeroed<T> &array, size_t from, size_t to) {
    auto *grown = static_cast<T *>(std::calloc(to, sizeof(T)));
    if (grown == nullptr) {
        throw std::bad_alloc();
    }
    std::copy_n(array.get(), from, grown);
    array.reset(grown);
}

Kernel::Kernel(Design &design) : design_(design) {
    sync();
}

Kernel::~Kernel() = default;

void Kernel::sync() {
    values_ = design_.values();
    const Slot slots = design_.slot_count();
    if (slots <= slot_capacity_ && heads_ != nullptr) {
        return;
    }
    const Slot capacity = std::max(slots, slot_capacity_ < no_slot / 2 ? slot_capacity_ * 2 : 0);
    const auto groups_of = [](Slot count) { return (count >> group_bits) + size_t{1}; };
    const size_t from = heads_ != nullptr ? groups_of(slot_capacity_) : 0;
    const size_t to = groups_of(capacity);
    grow(heads_, heads_ != nullptr ? slot_capacity_ : 0, capacity + size_t{1});
    grow(groups_, from, to);
    grow(queue_, queue_count_, to);
    grow(taken_, 0, to);
    grow(earlier_, 0, to);
    grow(earlier_groups_, 0, to);
    slot_capacity_ = capacity;
}

void Kernel::restart() {
    for (uint32_t i = 0; i < queue_count_; ++i) {
        groups_[queue_[i]].pending = 0;
    }
    queue_count_ = 0;
    now_ = 0;
}

Process *Kernel::create_process(std::string_view name, ProcessFunction function, void *parameter,
                                Priority priority) {
    if (next_process_ == process_limit) {
        return nullptr;
    }
    if ((next_process_ >> block_bits) == blocks_.size()) {
        void *block = allocate_aligned(sizeof(Block));
        blocks_.emplace_back(static_cast<Block *>(block));
    }
    immediate_count_ += priority == Priority::immediate ? 1 : 0;
    postponed_count_ += priority == Priority::postponed ? 1 : 0;
    if (postponed_.capacity() < postponed_count_) {
        postponed_.reserve(size_t{2} * postponed_count_);
    }
    const uint32_t index = next_process_++;
    info_at(index) = {.next = 0,
                      .mark = no_slot,
                      .kind = intern_kind(name, function, priority) & (UINT32_MAX >> 1),
                      .is_shared = 0};
    Process *process = &process_at(index);
    process->parameter = parameter;
    return process;
}

uint32_t Kernel::intern_kind(std::string_view name, ProcessFunction function, Priority priority) {
    for (const uint32_t number : recent_kinds_) {
        if (number < kinds_.size() && kinds_[number].function == function &&
            kinds_[number].priority == priority && names_[kinds_[number].name] == name) {
            return number;
        }
    }
    const ProcessKind kind{function, intern_name(name), priority};
    const auto [known, is_new] =
        kind_numbers_.try_emplace(kind, static_cast<uint32_t>(kinds_.size()));
    if (is_new) {
        kinds_.push_back(kind);
    }
    recent_kinds_[0] = std::exchange(recent_kinds_[1], known->second);
    return known->second;
}

uint32_t Kernel::intern_name(std::string_view name) {
    const auto name_of = [this](uint32_t number) { return std::string_view(names_[number]); };
    const uint32_t known = name_index_.find(name, name_of);
    if (known != NameIndex::none) {
        return known;
    }
    names_.emplace_back(name);
    name_index_.add_next(name_of);
    return static_cast<uint32_t>(names_.size() - 1);
}

uint32_t Kernel::index_of(const void *process) const {
    constexpr size_t half = size_t{1} << (block_bits - 1);
    const auto address = reinterpret_cast<uintptr_t>(process);
    for (size_t block = blocks_.size(); block-- > 0;) {
        const auto distance = address - reinterpret_cast<uintptr_t>(blocks_[block]->processes);
        if (distance < sizeof(Block::processes)) {
            const size_t place = distance / sizeof(Process);
            const auto index = static_cast<uint32_t>((block << block_bits) + (place % half) * 2 +
                                                     (place >= half ? 1 : 0));
            const bool is_one = distance % sizeof(Process) == 0 && index >= first_process;
            return is_one && index < next_process_ ? index : 0;
        }
    }
    return 0;
}

void Kernel::sensitize(Process *process, const Signal &signal, Trigger /*trigger*/) {
    watch_leaves(index_of(process), *signal.type, signal.slot);
}

void Kernel::watch_leaves(uint32_t process, const Type &type, Slot first) {
    if (!type.is_composite()) {
        watch_slot(process, first);
        return;
    }
    for (uint32_t i = 0; i < type.element_count(); ++i) {
        watch_leaves(process, *type.element_type(i), first + type.element_offset(i));
    }
}

void Kernel::watch_slot(uint32_t index, Slot slot) {
    if (supply_ != nullptr && !is_watched(slot)) {
        supply_->watched(slot);
    }
    uint32_t link = index << 1;
    if (info_at(index).next != 0) {
        share(index);
        link = static_cast<uint32_t>(nodes_.size()) << 1 | 1U;
        nodes_.push_back({index, 0});
    } else {
        info_at(index).mark = slot;
    }
    const uint32_t head = heads_[slot];
    const uint32_t last = head & link_mask;
    const uint32_t marks = marks_with(head, link);
    if (last == 0) {
        next_link(link) = link;
        groups_[slot >> group_bits].watched |= bit_of(slot);
        ++watch_version_;
    } else {
        next_link(link) = next_link(last);
        next_link(last) = link;
    }
    heads_[slot] = marks | link;
}

// What the watchers of a slot are when one more joins them, on a process's own link or a node's.
uint32_t Kernel::marks_with(uint32_t head, uint32_t link) {
    const uint32_t marks = head & ~link_mask;
    if ((link & 1U) != 0 || (head != 0 && marks == 0)) {
        return 0;
    }
    if (marks != open_pair) {
        const bool is_even = (link & 2U) == 0;
        return is_even && kind_of(link >> 1).priority == Priority::normal ? open_pair : 0;
    }
    const uint32_t last = head & link_mask;
    if (link != last + 2 || !is_common_pair(last >> 1, link >> 1)) {
        return 0;
    }
    return next_link(last) == last ? single_pair : several_pairs;
}

// Whether a normal process and another are of the two kinds that all common pairs have. The first
// pair ever says which those are.
bool Kernel::is_common_pair(uint32_t normal, uint32_t postponed) {
    const uint32_t kind = info_at(normal).kind;
    const uint32_t postponed_kind = info_at(postponed).kind;
    void *parameter = process_at(postponed).parameter;
    if (common_.normal == nullptr && kinds_[postponed_kind].priority == Priority::postponed) {
        common_ = {kind, postponed_kind, kinds_[kind].function, kinds_[postponed_kind].function,
                   parameter};
    }
    return common_.normal != nullptr && kind == common_.normal_kind &&
           postponed_kind == common_.postponed_kind && parameter == common_.postponed_parameter;
}

// A process that gets a second slot: a pair that it was one of is none any more.
void Kernel::share(uint32_t index) {
    ProcessInfo &process = info_at(index);
    if (process.is_shared == 0) {
        heads_[process.mark] &= link_mask;
        process.is_shared = 1;
        process.mark = first_delta_ - 1;
    }
}

bool Kernel::watched(Slot first, uint32_t count) const {
    while (count > 0) {
        const uint32_t shift = first & group_mask;
        const uint32_t part = std::min(count, 64 - shift);
        const uint64_t wanted = (~uint64_t{0} >> (64 - part)) << shift;
        if ((groups_[first >> group_bits].watched & wanted) != 0) {
            return true;
        }
        first += part;
        count -= part;
    }
    return false;
}

}  // namespace wf
