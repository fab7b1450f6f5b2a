// SPDX-License-Identifier: Apache-2.0
// Walks over a hash table: in the order of first insertion, or by bins for caller-made entries.
#include "plugin/support/hash_table.h"

#include <cstdlib>

#include "plugin/support/hash_table_forms.h"

// Calls `visit` for each entry of a keyed table: in the order of memory where that is possible,
// which is several times faster in a large table; else by bins.
template <class Visit>
static void for_each_entry(const st_table *table, Visit visit) {
    if (st_entries_have_no_holes(table->entries)) {
        for (st_chunk *chunk = table->entries->newest; chunk != nullptr; chunk = chunk->older) {
            for (uint32_t i = 0; i < chunk->used; ++i) {
                visit(st_chunk_entries(chunk) + i);
            }
        }
        return;
    }
    for (uint32_t index = 0; index < table->bins.length; ++index) {
        auto *entry = static_cast<st_entry *>(*st_bin(&table->bins, index));
        for (; entry != nullptr; entry = static_cast<st_entry *>(entry->next)) {
            visit(entry);
        }
    }
}

static int compare_sequences(const void *a, const void *b) {
    const int32_t sequence_a = (*static_cast<st_entry *const *>(a))->sequence;
    const int32_t sequence_b = (*static_cast<st_entry *const *>(b))->sequence;
    return (sequence_a > sequence_b ? 1 : 0) - (sequence_a < sequence_b ? 1 : 0);
}

static st_entry **entry_array(size_t length) {
    return static_cast<st_entry **>(calloc(length, sizeof(void *)));
}

// Few holes: every entry to the slot of its number, then those behind a hole moved up.
static st_entry **place_entries(const st_table *table) {
    const int64_t slots = int64_t{table->last_sequence} + 1;
    st_entry **ordered = entry_array(static_cast<size_t>(slots));
    for_each_entry(table, [ordered](st_entry *entry) { ordered[entry->sequence] = entry; });
    int32_t used = 0;
    for (int64_t slot = 0; slot < slots; ++slot) {
        st_entry *entry = ordered[slot];
        if (entry == nullptr) {
            continue;
        }
        if (used != slot) {
            entry->sequence = used;
            ordered[used] = entry;
        }
        ++used;
    }
    return ordered;
}

// Many holes: all entries, sorted by their numbers.
static st_entry **sort_entries(const st_table *table) {
    const auto count = static_cast<size_t>(table->count);
    st_entry **ordered = entry_array(count + 1);
    size_t used = 0;
    for_each_entry(table, [ordered, &used](st_entry *entry) { ordered[used++] = entry; });
    qsort(ordered, count, sizeof(void *), compare_sequences);
    for (size_t i = 0; i < used; ++i) {
        ordered[i]->sequence = static_cast<int32_t>(i);
    }
    return ordered;
}

// The entries in order of insertion. Where deletions left holes, they are renumbered without.
static st_entry **entries_in_order(st_table *table) {
    const bool few_holes = table->last_sequence <= int64_t{table->count} * 2;
    st_entry **ordered = few_holes ? place_entries(table) : sort_entries(table);
    table->last_sequence = table->count - 1;
    return ordered;
}

void st_renumber(st_table *table) {
    free(entries_in_order(table));
}

st_generator *st_init_gen(st_table *table) {
    auto *generator = static_cast<st_generator *>(malloc(sizeof(st_generator)));
    generator->table = table;
    generator->next_entry = nullptr;
    generator->next_index = 0;
    generator->slots = 0;
    generator->ordered = nullptr;
    if (table->last_sequence >= 0) {
        generator->slots = static_cast<uint32_t>(table->count);
        generator->ordered = entries_in_order(table);
    }
    return generator;
}

// The next entry in a walk by bins.
static void *next_chained(st_generator *generator) {
    const st_table *table = generator->table;
    while (generator->next_entry == nullptr && generator->next_index < table->bins.length) {
        generator->next_entry = *st_bin(&table->bins, generator->next_index++);
    }
    void *entry = generator->next_entry;
    if (entry != nullptr) {
        generator->next_entry = *st_link_of(table, entry);
    }
    return entry;
}

int st_next_words(st_generator *generator, st_word *key, st_word *value) {
    if (generator->ordered != nullptr) {
        if (generator->next_index == generator->slots) {
            return 0;
        }
        const st_entry *entry = generator->ordered[generator->next_index++];
        *key = entry->key;
        *value = entry->value;
        return 1;
    }
    void *entry = next_chained(generator);
    if (entry == nullptr) {
        return 0;
    }
    *key = st_word{const_cast<void *>(st_key_of(generator->table, entry))};
    *value = st_word{entry};
    return 1;
}

int st_gen_kptr_vptr(st_generator *generator, void **key, void **value) {
    return st_gen<void *, void *>(generator, key, value);
}

void st_free_gen(st_generator *generator) {
    free(generator->ordered);
    free(generator);
}
