// SPDX-License-Identifier: Apache-2.0
// Storage for a design's many small records: they stay where they are, neighbours stay neighbours,
// and any address can be asked whether it is one of them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <type_traits>
#include <vector>

namespace wf {

struct Nothing {};

// Records of one type in blocks that double in size. Nothing is given back before the whole goes.
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

    // `count` value-initialised records side by side.
    T *make(size_t count = 1) {
        if (last_ == nullptr || last_->used + count > last_->size) {
            add_block(count);
        }
        T *first = last_->records.get() + last_->used;
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
    struct Block {
        std::unique_ptr<T[]> records;
        std::unique_ptr<Beside[]> beside;
        size_t size = 0;
        size_t used = 0;
    };
    static constexpr size_t first_size = 64;
    static constexpr size_t largest_size = size_t{1} << 18;

    void add_block(size_t count) {
        const size_t usual =
            last_ == nullptr ? first_size : std::min(last_->size * 2, largest_size);
        const size_t size = std::max(count, usual);
        auto block = std::make_unique<Block>();
        block->records = std::make_unique<T[]>(size);
        if constexpr (!std::is_empty_v<Beside>) {
            block->beside = std::make_unique<Beside[]>(size);
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
