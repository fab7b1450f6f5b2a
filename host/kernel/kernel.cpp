// SPDX-License-Identifier: Apache-2.0
// What is set up before time runs: storage, processes, and who watches which slot.
#include "host/kernel/kernel.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace wf {

namespace {

constexpr std::align_val_t cache_line{64};
constexpr uint32_t name_mask = (1U << 29) - 1;  // what a process keeps of its name's number

}  // namespace

void Kernel::BlockFree::operator()(Block *block) const {
    ::operator delete(block, cache_line);
}

void Kernel::HeapFree::operator()(uint32_t *heads) const {
    std::free(heads);
}

Kernel::Kernel(Design &design) : design_(design) {
    sync();
}

Kernel::~Kernel() = default;

void Kernel::sync() {
    values_ = design_.values();
    slots_ = design_.slot_count();
    if (slots_ <= head_capacity_ && heads_ != nullptr) {
        return;
    }
    // calloc leaves the heads of slots that nobody ever watches untouched, and so free of charge.
    const Slot capacity = std::max(slots_, head_capacity_ < no_slot / 2 ? head_capacity_ * 2 : 0);
    auto *heads = static_cast<uint32_t *>(std::calloc(capacity + size_t{1}, sizeof(uint32_t)));
    if (heads == nullptr) {
        throw std::bad_alloc();
    }
    if (heads_ != nullptr) {
        std::copy_n(heads_.get(), head_capacity_, heads);
    }
    heads_.reset(heads);
    head_capacity_ = capacity;
}

Process *Kernel::create_process(std::string_view name, ProcessFunction function, void *parameter,
                                Priority priority) {
    if (next_process_ == process_limit) {
        return nullptr;
    }
    if ((next_process_ >> block_bits) == blocks_.size()) {
        void *block = ::operator new(sizeof(Block), cache_line);
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
                      .name = intern_name(name) & name_mask,
                      .priority = static_cast<uint32_t>(priority) & 3U,
                      .is_shared = 0};
    Process *process = &process_at(index);
    *process = {function, parameter};
    return process;
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
    const auto address = reinterpret_cast<uintptr_t>(process);
    for (size_t block = blocks_.size(); block-- > 0;) {
        const auto distance = address - reinterpret_cast<uintptr_t>(blocks_[block]->processes);
        if (distance < sizeof(Block::processes)) {
            const auto index =
                static_cast<uint32_t>((block << block_bits) + distance / sizeof(Process));
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
    if (supply_ != nullptr && heads_[slot] == 0) {
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
    if (last == 0) {
        next_link(link) = link;
        reserve_changed(++watched_slots_);
        ++watch_version_;
    } else {
        next_link(link) = next_link(last);
        next_link(last) = link;
    }
    const uint32_t pair = make_a_pair(last, link) ? pair_mark : 0;
    heads_[slot] = (head & queued_mark) | pair | link;
}

// Whether these two links, the only ones of a slot, are a pair.
bool Kernel::make_a_pair(uint32_t first, uint32_t second) const {
    if (first == 0 || ((first | second) & 1U) != 0 || (first & 2U) != 0 || second != first + 2) {
        return false;
    }
    const ProcessInfo &one = info_at(first >> 1);
    const ProcessInfo &other = info_at(second >> 1);
    return one.next == second && other.next == first && !one.is_shared && !other.is_shared &&
           one.priority == static_cast<uint32_t>(Priority::normal) &&
           other.priority == static_cast<uint32_t>(Priority::postponed);
}

// A process that gets a second slot: a pair that it was one of is none any more.
void Kernel::share(uint32_t index) {
    ProcessInfo &process = info_at(index);
    if (process.is_shared == 0) {
        heads_[process.mark] &= ~pair_mark;
        process.is_shared = 1;
        process.mark = first_delta_ - 1;
    }
}

void Kernel::reserve_changed(uint32_t count) {
    if (count <= changed_capacity_) {
        return;
    }
    const uint32_t capacity = std::max({count, changed_capacity_ * 2, 64U});
    auto changed = std::make_unique_for_overwrite<Changed[]>(capacity);
    std::copy_n(changed_.get(), changed_count_, changed.get());
    changed_ = std::move(changed);
    changed_capacity_ = capacity;
}

bool Kernel::watched(Slot first, uint32_t count) const {
    return std::any_of(heads_.get() + first, heads_.get() + first + count,
                       [](uint32_t head) { return head != 0; });
}

}  // namespace wf
