// SPDX-License-Identifier: Apache-2.0
// The hash table: allocation, search, insertion, growth, removal.
#include "plugin/support/hash_table.h"

#include <cstdlib>

#include "plugin/support/hash_table_forms.h"
#include "plugin/support/utilities.h"

enum : int32_t { SMALLEST_BINS = 2, DEFAULT_DENSITY = 4 };

const void *st_key_of(const st_table *table, const void *entry) {
    if (table->key_function != nullptr) {
        return table->key_function(entry);
    }
    if (table->key_offset < 0) {
        return entry;
    }
    return *reinterpret_cast<const void *const *>(static_cast<const char *>(entry) +
                                                  table->key_offset);
}

static void **bin_of(const st_table *table, uint32_t hash) {
    return st_bin(&table->bins, hash & (table->bins.length - 1));
}

// The link that leads to the entry of `key`, or the null link at the end of its chain.
static void **find_link(const st_table *table, const void *key, uint32_t hash) {
    void **link = bin_of(table, hash);
    while (*link != nullptr) {
        const void *present = st_key_of(table, *link);
        const bool equal =
            table->compare == nullptr ? key == present : table->compare(key, present) == 0;
        if (equal) {
            break;
        }
        link = st_link_of(table, *link);
    }
    return link;
}

static void push(const st_table *table, void *entry, uint32_t hash) {
    void **bin = bin_of(table, hash);
    *st_link_of(table, entry) = *bin;
    *bin = entry;
}

// Counts a new entry, which is not made or not linked yet, and grows the table for it.
static void make_room(st_table *table) {
    if (++table->count > table->max_count) {
        st_resize(table, table->bins.length * 2);
    }
}

static uint32_t power_of_two(uint32_t at_least) {
    uint32_t power = SMALLEST_BINS;
    while (power < at_least) {
        power *= 2;
    }
    return power;
}

st_table *st_alloc_internal(st_compare_fn compare, st_hash_fn hash, st_key_fn key_function,
                            int16_t key_offset, uint16_t next_offset, int32_t bins,
                            int32_t density) {
    util_assert(density >= 1, "hash table with a density below 1");
    util_assert(key_function == nullptr || compare != nullptr,
                "hash table with a key function and no comparison");
    const int32_t wanted = bins < SMALLEST_BINS ? int32_t{SMALLEST_BINS} : bins;
    auto *table = static_cast<st_table *>(malloc(sizeof(st_table)));
    table->compare = compare == st_ptrcmp || compare == st_numcmp ? nullptr : compare;
    table->hash = hash;
    st_bins_init(&table->bins, power_of_two(static_cast<uint32_t>(wanted)));
    table->count = 0;
    table->max_count = density * wanted;
    table->key_offset = key_offset;
    table->next_offset = next_offset;
    table->key_function = key_function;
    table->last_sequence = -1;
    table->entries = nullptr;
    return table;
}

st_table *st_alloc_params(st_compare_fn compare, st_hash_fn hash, int32_t bins, int32_t density) {
    st_table *table = st_alloc_internal(compare, hash, nullptr, offsetof(st_entry, key),
                                        offsetof(st_entry, next), bins, density);
    table->entries = st_entries_alloc();
    return table;
}

st_table *st_alloc_abo(st_compare_fn compare, st_hash_fn hash) {
    return st_alloc_params(compare, hash, SMALLEST_BINS, DEFAULT_DENSITY);
}

st_table *st_alloc_ordered(st_compare_fn compare, st_hash_fn hash) {
    return st_alloc_abo(compare, hash);
}

static void free_caller_entries(st_table *table) {
    for (uint32_t index = table->bins.length; index-- > 0;) {
        void *entry = *st_bin(&table->bins, index);
        while (entry != nullptr) {
            void *next = *st_link_of(table, entry);
            free(entry);
            entry = next;
        }
    }
}

void st_free(st_table *table) {
    if (table == nullptr) {
        return;
    }
    if (table->entries != nullptr) {
        st_entries_free(table->entries);
    } else {
        free_caller_entries(table);
    }
    st_bins_free(&table->bins);
    free(table);
}

int32_t st_count(const st_table *table) {
    return table->count;
}

// Moves the entries of the first `old_length` bins to the bins where they belong now.
static void rehash_by_bins(const st_table *table, uint32_t old_length) {
    for (uint32_t index = 0; index < old_length; ++index) {
        void **bin = st_bin(&table->bins, index);
        void *entry = *bin;
        *bin = nullptr;
        while (entry != nullptr) {
            void *next = *st_link_of(table, entry);
            push(table, entry, table->hash(st_key_of(table, entry)));
            entry = next;
        }
    }
}

// Pushes a run of neighbouring entries. The bins that they go to lie anywhere, so a group of them
// is asked for before the first is needed.
static void push_run(const st_table *table, st_entry *entries, uint32_t count) {
    enum : uint32_t { GROUP = 16 };
    uint32_t hashes[GROUP];
    for (uint32_t first = 0; first < count; first += GROUP) {
        const uint32_t size = count - first < GROUP ? count - first : uint32_t{GROUP};
        for (uint32_t i = 0; i < size; ++i) {
            hashes[i] = table->hash(st_key_of(table, &entries[first + i]));
            __builtin_prefetch(bin_of(table, hashes[i]), 1);
        }
        for (uint32_t i = 0; i < size; ++i) {
            push(table, &entries[first + i], hashes[i]);
        }
    }
}

// The same by memory instead of by bins: along its chains a table of millions of entries waits for
// memory at every one.
static void rehash_by_chunks(const st_table *table, uint32_t old_length) {
    for (uint32_t index = 0; index < old_length; ++index) {
        *st_bin(&table->bins, index) = nullptr;
    }
    for (st_chunk *chunk = table->entries->newest; chunk != nullptr; chunk = chunk->older) {
        push_run(table, st_chunk_entries(chunk), chunk->used);
    }
}

static void rehash(const st_table *table, uint32_t old_length) {
    if (table->entries != nullptr && st_entries_have_no_holes(table->entries)) {
        rehash_by_chunks(table, old_length);
    } else {
        rehash_by_bins(table, old_length);
    }
}

void st_resize(st_table *table, uint32_t bins) {
    const uint32_t old_length = table->bins.length;
    const uint32_t new_length = power_of_two(bins);
    // Multiplied first: a count below the bins must not round to 0, or every insertion would grow.
    table->max_count =
        static_cast<int32_t>(static_cast<int64_t>(table->max_count) * new_length / old_length);
    if (new_length > old_length) {
        st_bins_set_length(&table->bins, new_length);
        rehash(table, old_length);
    } else {
        table->bins.length = new_length;
        rehash(table, old_length);
        table->bins.length = old_length;
        st_bins_set_length(&table->bins, new_length);
    }
}

void st_add_internal(st_table *table, void *entry) {
    make_room(table);
    push(table, entry, table->hash(st_key_of(table, entry)));
}

void *st_find_internal(const st_table *table, const void *key) {
    return *find_link(table, key, table->hash(key));
}

void *st_delete_internal(st_table *table, const void *key) {
    void **link = find_link(table, key, table->hash(key));
    void *entry = *link;
    if (entry != nullptr) {
        *link = *st_link_of(table, entry);
        --table->count;
    }
    return entry;
}

st_entry *st_entry_of(const st_table *table, const void *key) {
    return static_cast<st_entry *>(st_find_internal(table, key));
}

st_entry *st_obtain_entry(st_table *table, const void *key, int *present) {
    const uint32_t hash = table->hash(key);
    auto *entry = static_cast<st_entry *>(*find_link(table, key, hash));
    *present = entry != nullptr;
    if (entry == nullptr) {
        if (table->last_sequence == INT32_MAX) {
            st_renumber(table);
        }
        make_room(table);
        entry = st_entries_take(table->entries);
        entry->key = st_word{const_cast<void *>(key)};
        entry->value = st_word{nullptr};
        entry->sequence = ++table->last_sequence;
        push(table, entry, hash);
    }
    return entry;
}

int st_remove_entry(st_table *table, const void *key, st_entry *removed) {
    auto *entry = static_cast<st_entry *>(st_delete_internal(table, key));
    if (entry == nullptr) {
        return 0;
    }
    *removed = *entry;
    st_entries_give_back(table->entries, entry);
    return 1;
}

int st_insert_kptr_vptr(st_table *table, const void *key, void *value) {
    return st_insert<const void *, void *>(table, key, value);
}

int st_lookup_kptr_vptr(const st_table *table, const void *key, void **value) {
    return st_lookup<const void *, void *>(table, key, value);
}

int st_find_kptr_vptr(const st_table *table, const void *key, void ***slot) {
    return st_find<const void *, void *>(table, key, slot);
}

int st_find_or_add_kptr_vptr(st_table *table, const void *key, void ***slot) {
    return st_find_or_add<const void *, void *>(table, key, slot);
}

int st_is_member_kptr(const st_table *table, const void *key) {
    return st_is_member<const void *>(table, key);
}

int st_delete_kptr_vptr(st_table *table, const void *key, void **stored_key, void **value) {
    return st_delete<const void *, void *, void *>(table, key, stored_key, value);
}
