// SPDX-License-Identifier: Apache-2.0
// What can be done with a whole hash table: copy it, turn it into lists, free it with its contents,
// measure it. Rests on the table's public side and on the linked list.
#ifndef WATTFORGE_PLUGIN_SUPPORT_HASH_TABLE_TOOLS_H
#define WATTFORGE_PLUGIN_SUPPORT_HASH_TABLE_TOOLS_H

#include <cstddef>

#include "plugin/support/hash_table.h"
#include "plugin/support/linked_list.h"

// A new keyed table with the same entries in the same order, each key and value passed through its
// copy function when there is one. st_free releases it.
st_table *st_dup(st_table *table, void *(*copy_key)(void *), void *(*copy_value)(void *));

// New lists of all keys or values in order of first insertion; list_free_container releases them.
list *st_keys_to_list(st_table *table);
list *st_values_to_list(st_table *table);

// st_free, after handing each key and value to its release function when there is one.
void st_free_with_contents(st_table *table, void (*free_key)(void *), void (*free_value)(void *));

// Bytes held by the table itself, caller-made entries, keys and values not counted.
size_t st_mem_usage(const st_table *table);

// Prints to standard output how the entries are spread over the bins.
void st_hash_stats(const st_table *table);

#endif
