// SPDX-License-Identifier: Apache-2.0
// Storage for a design's many small records: they stay where they are, neighbours stay neighbours,
// and any address can be asked whether it is one of them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <type_traits>
#include <vector>

namespace wf {

struct Nothing {};

// Records of one type in few large blocks: an address is found the sooner the fewer there are. A
// block costs address space; memory only as far as it has been filled. Nothing is given back before
// the whole goes.
// Beside every record lies, in an array of the block's own, a Beside: what is asked for so often
// that the record itself should not have to come from memory for it.
template <typename T, typename Beside = Nothing>
class Arena {
  public:
    // The records of one block, and what lies beside them.
    struct View {
        const T *records = nullptr;
        size_t count = 0;
        const Beside *beside = nullptr;
    };

    Arena() = default;
    ~Arena() {
        for (const auto &block : blocks_) {
            std::destroy_n(block->records.get(), block->used);
        }
    }
    Arena(const Arena &) = delete;
    Arena &operator=(const Arena &) = delete;

    // `count` value-initialised records side by side.
    T *make(size_t count = 1) {
        if (last_ == nullptr || last_->used + count > last_->size) {
            add_block(count);
        }
        T *first = last_->records.get() + last_->used;
        std::uninitialized_value_construct_n(first, count);
        last_->used += count;
        return first;
    }

    // Whether this is the address of a record that was made here. Neighbours are asked for one
    // after the other as a rule: the block that held the last one is looked at first.
    bool contains(const void *address) const {
        return (found_ != nullptr && holds(*found_, address)) || search(address);
    }

    // What lies beside the records that were made last.
    Beside *beside(const T *first_of_last) {
        return last_->beside.get() + (first_of_last - last_->records.get());
    }

    // The block of a record; an empty one when the address is none of a record.
    View view(const void *address) const {
        return contains(address) ? View{found_->records.get(), found_->used, found_->beside.get()}
                                 : View{};
    }

  private:
    struct Free {
        void operator()(void *memory) const { std::free(memory); }
    };
    struct Block {
        std::unique_ptr<T[], Free> records;
        std::unique_ptr<Beside[], Free> beside;
        size_t size = 0;
        size_t used = 0;
    };
    static constexpr size_t first_size = (size_t{32} << 20) / sizeof(T);

    // Zeroed, and not there before it is touched.
    template <typename Item>
    static std::unique_ptr<Item[], Free> room_for(size_t count) {
        static_assert(alignof(Item) <= alignof(std::max_align_t));
        std::unique_ptr<Item[], Free> room(static_cast<Item *>(std::calloc(count, sizeof(Item))));
        if (room == nullptr) {
            throw std::bad_alloc();
        }
        return room;
    }

    void add_block(size_t count) {
        const size_t size = std::max(count, last_ == nullptr ? first_size : last_->size * 2);
        auto block = std::make_unique<Block>();
        block->records = room_for<T>(size);
        if constexpr (!std::is_empty_v<Beside>) {
            block->beside = room_for<Beside>(size);
        }
        block->size = size;
        last_ = block.get();
        const auto after = std::upper_bound(
            blocks_.begin(), blocks_.end(), block,
            [](const auto &a, const auto &b) { return a->records.get() < b->records.get(); });
        blocks_.insert(after, std::move(block));
    }

    static bool holds(const Block &block, const void *address) {
        const auto distance =
            reinterpret_cast<uintptr_t>(address) - reinterpret_cast<uintptr_t>(block.records.get());
        return distance < block.used * sizeof(T) && distance % sizeof(T) == 0;
    }

    __attribute__((noinline)) bool search(const void *address) const {
        const auto after = std::upper_bound(
            blocks_.begin(), blocks_.end(), address, [](const void *wanted, const auto &block) {
                return wanted < static_cast<const void *>(block->records.get());
            });
        if (after == blocks_.begin() || !holds(**(after - 1), address)) {
            return false;
        }
        found_ = (after - 1)->get();
        return true;
    }

    std::vector<std::unique_ptr<Block>> blocks_;  // by address
    Block *last_ = nullptr;                       // the one that is being filled
    mutable const Block *found_ = nullptr;        // the one that held what was asked for last
};

// NUL-terminated texts, one after the other in large blocks.
class TextArena {
  public:
    // A copy of the text that lives as long as the arena.
    char *store(std::string_view text) {
        if (left_ < text.size() + 1) {
            left_ = std::max(text.size() + 1, block_size);
            blocks_.push_back(std::make_unique<char[]>(left_));
            next_ = blocks_.back().get();
        }
        char *copy = next_;
        std::memcpy(copy, text.data(), text.size());
        next_ += text.size() + 1;
        left_ -= text.size() + 1;
        return copy;
    }

  private:
    static constexpr size_t block_size = 16384;
    std::vector<std::unique_ptr<char[]>> blocks_;
    char *next_ = nullptr;
    size_t left_ = 0;
};

}  // namespace wf
