// SPDX-License-Identifier: Apache-2.0
// The memory that crosses the wall: handed to a plug-in, released by it with mti_VsimFree.
#pragma once

#include <cstddef>
#include <vector>

namespace wf {

// Keeps account of blocks that are out, so that a foreign pointer is told apart and nothing leaks.
// Blocks usually come back soon, so the account is searched from its end.
class Ledger {
  public:
    Ledger() = default;
    ~Ledger() { release_all(); }
    Ledger(const Ledger &) = delete;
    Ledger &operator=(const Ledger &) = delete;

    // A new block; never null (the program ends when memory does).
    void *allocate(size_t bytes);
    // Releases a block; false when it is not one of ours.
    bool release(void *block);
    void release_all();
    size_t outstanding() const { return blocks_.size(); }

  private:
    std::vector<void *> blocks_;
};

}  // namespace wf
