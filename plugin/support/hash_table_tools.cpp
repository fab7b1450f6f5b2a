// SPDX-License-Identifier: Apache-2.0
// Whole hash tables: copies, lists, release with contents, measures.
#include "plugin/support/hash_table_tools.h"

#include <cstdio>

#include "plugin/support/utilities.h"

// Calls `visit` for each key and value in order of first insertion.
template <class Visit>
static void for_each(st_table *table, Visit visit) {
    st_generator *generator = st_init_gen(table);
    void *key = nullptr;
    void *value = nullptr;
    while (st_gen_kptr_vptr(generator, &key, &value) != 0) {
        visit(key, value);
    }
    st_free_gen(generator);
}

st_table *st_dup(st_table *table, void *(*copy_key)(void *), void *(*copy_value)(void *)) {
    util_assert(table->entries != nullptr, "copy of a hash table of caller-made entries");
    const auto bins = static_cast<int32_t>(table->bins.length);
    const int32_t density = table->max_count < bins ? 1 : table->max_count / bins;
    st_table *copy = st_alloc_params(table->compare, table->hash, bins, density);
    for_each(table, [=](void *key, void *value) {
        st_insert_kptr_vptr(copy, copy_key == nullptr ? key : copy_key(key),
                            copy_value == nullptr ? value : copy_value(value));
    });
    return copy;
}

list *st_keys_to_list(st_table *table) {
    list *keys = list_alloc();
    for_each(table, [keys](void *key, void * /*value*/) { list_append(keys, key); });
    return keys;
}

list *st_values_to_list(st_table *table) {
    list *values = list_alloc();
    for_each(table, [values](void * /*key*/, void *value) { list_append(values, value); });
    return values;
}

void st_free_with_contents(st_table *table, void (*free_key)(void *), void (*free_value)(void *)) {
    if (table == nullptr) {
        return;
    }
    util_assert(table->entries != nullptr, "contents of a hash table of caller-made entries");
    for_each(table, [=](void *key, void *value) {
        if (free_key != nullptr) {
            free_key(key);
        }
        if (free_value != nullptr) {
            free_value(value);
        }
    });
    st_free(table);
}

size_t st_mem_usage(const st_table *table) {
    const size_t entries = table->entries == nullptr ? 0 : st_entries_bytes(table->entries);
    return sizeof(st_table) + st_bins_bytes(&table->bins) + entries;
}

static uint32_t chain_length(const st_table *table, uint32_t index) {
    uint32_t length = 0;
    for (void *entry = *st_bin(&table->bins, index); entry != nullptr;
         entry = *st_link_of(table, entry)) {
        ++length;
    }
    return length;
}

void st_hash_stats(const st_table *table) {
    uint32_t used = 0;
    uint32_t longest = 0;
    for (uint32_t index = 0; index < table->bins.length; ++index) {
        const uint32_t length = chain_length(table, index);
        used += length > 0 ? 1 : 0;
        longest = length > longest ? length : longest;
    }
    printf("entries = %d, bins = %u, empty bins = %u, longest chain = %u, mean chain = %.2f\n",
           table->count, table->bins.length, table->bins.length - used, longest,
           used == 0 ? 0.0 : static_cast<double>(table->count) / used);
}
