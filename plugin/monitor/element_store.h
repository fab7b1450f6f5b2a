// SPDX-License-Identifier: Apache-2.0
// Where monitor elements and their names lie: large chunks that are filled from front to back. A
// general allocator would put a header before each of them and could not align an element to a
// cache line without a gap. Touches nothing but memory.
#ifndef WATTFORGE_PLUGIN_MONITOR_ELEMENT_STORE_H
#define WATTFORGE_PLUGIN_MONITOR_ELEMENT_STORE_H

#include <cstddef>

// Memory for one element of `size` bytes, aligned to a cache line and zeroed, and a copy of its
// name in `name`. Null when memory has run out, and nothing is taken then.
void *mfli_store_element(size_t size, const char *text, char **name);

// Gives one element back. The memory of all is released together with the last one: elements live
// and die as a table.
void mfli_unstore_element();

#endif
