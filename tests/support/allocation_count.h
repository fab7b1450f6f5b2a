// SPDX-License-Identifier: Apache-2.0
// Counts the allocations of a stretch of a test: operator new, in this program's own code.
#pragma once

#include <cstdint>

namespace wf::test {

// Calls of operator new since the program began.
uint64_t allocation_count();

}  // namespace wf::test
