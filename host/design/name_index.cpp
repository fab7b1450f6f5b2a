// SPDX-License-Identifier: Apache-2.0
// The hash of a name.
#include "host/design/name_index.h"

namespace wf {

uint32_t hash_name(std::string_view name) {
    // FNV-1a, then a mix, since the table takes the low bits and names often differ at their end.
    uint32_t hash = 2166136261U;
    for (const char character : name) {
        hash = (hash ^ static_cast<unsigned char>(character)) * 16777619U;
    }
    hash ^= hash >> 15;
    hash *= 0x2c1b3c6dU;
    return hash ^ (hash >> 13);
}

}  // namespace wf
