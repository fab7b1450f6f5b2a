// SPDX-License-Identifier: Apache-2.0
// st_table: a chained hash table whose generators give the entries in the order of their first
// insertion. Rests on its bins (hash_bins.h) and its entries (hash_entries.h).
//
// Two kinds. A keyed table maps a word to a word and owns its entries, not the keys and values. An
// object table chains entries that the caller makes with malloc and that hold key and link
// (a void *) themselves. All memory is assumed to be had.
#ifndef WATTFORGE_PLUGIN_SUPPORT_HASH_TABLE_H
#define WATTFORGE_PLUGIN_SUPPORT_HASH_TABLE_H

#include <cstddef>
#include <cstdint>

#include "plugin/support/hash_bins.h"
#include "plugin/support/hash_entries.h"
#include "plugin/support/hash_functions.h"

// Yields the key of a caller-made entry.
typedef const void *(*st_key_fn)(const void *entry);

struct st_table {
    st_compare_fn compare;  // null: keys are compared by identity, without a call
    st_hash_fn hash;
    st_bins bins;
    int32_t count;           // entries
    int32_t max_count;       // above this the table grows: density x bins
    int16_t key_offset;      // of the key in an entry; -1: the entry itself is the key
    uint16_t next_offset;    // of the chain link in an entry
    st_key_fn key_function;  // null: the offset tells
    int32_t last_sequence;   // number of the entry added last; -1: none
    st_entries *entries;     // where a keyed table's entries come from; null in an object table
};

// A walk over a table.
struct st_generator {
    st_table *table;
    void *next_entry;     // in the chain on which a walk by bins stands
    uint32_t next_index;  // next bin, or next slot of the ordered array
    uint32_t slots;
    st_entry **ordered;  // the entries by sequence number, owned; null in a walk by bins
};

// A keyed table of 2 bins that grows above 4 entries a bin. st_free releases it.
st_table *st_alloc_abo(st_compare_fn compare, st_hash_fn hash);
st_table *st_alloc_ordered(st_compare_fn compare, st_hash_fn hash);

// The same with `bins` (raised to 2, rounded up to a power of two) and `density`, which stops the
// process when it is below 1.
st_table *st_alloc_params(st_compare_fn compare, st_hash_fn hash, int32_t bins, int32_t density);

// An object table. A key function with no comparison stops the process, as does a low density.
st_table *st_alloc_internal(st_compare_fn compare, st_hash_fn hash, st_key_fn key_function,
                            int16_t key_offset, uint16_t next_offset, int32_t bins,
                            int32_t density);

// Frees every entry and the table; keys and values stay. In an object table the entries are the
// caller's own, freed with the C library's free. A null table is ignored.
void st_free(st_table *table);

int32_t st_count(const st_table *table);

// Rehashes into `bins` bins (rounded up to a power of two), at the same density.
void st_resize(st_table *table, uint32_t bins);

// Keyed operations on pointers; the forms with integers are in hash_table_forms.h. Every out
// address may be null.
//
// Sets the value of `key`, which is added when absent. Returns 1 when it was present, else 0.
int st_insert_kptr_vptr(st_table *table, const void *key, void *value);

// Returns 1 and the value of `key`, or 0 when it is absent.
int st_lookup_kptr_vptr(const st_table *table, const void *key, void **value);

// Returns 1 and the address of the value of `key`, or 0 when it is absent. The address holds until
// the key is deleted.
int st_find_kptr_vptr(const st_table *table, const void *key, void ***slot);

// The same, but an absent key is added with the value null (and 0 returned).
int st_find_or_add_kptr_vptr(st_table *table, const void *key, void ***slot);

int st_is_member_kptr(const st_table *table, const void *key);

// Takes the entry of `key` out: returns 1, the key as it was stored and its value, which the caller
// may now release, or 0 when it is absent.
int st_delete_kptr_vptr(st_table *table, const void *key, void **stored_key, void **value);

// Walks in the order of first insertion (object tables: by bins). The table must not be changed in
// between. st_gen_kptr_vptr returns 1 and the next key and value, or 0 when none is left; the
// value of an object table's entry is the entry.
st_generator *st_init_gen(st_table *table);
int st_gen_kptr_vptr(st_generator *generator, void **key, void **value);
void st_free_gen(st_generator *generator);

// Object tables. st_find_internal returns the entry with an equal key, or null. st_add_internal
// enters an entry without looking for an equal one. st_delete_internal takes the entry with an
// equal key out and returns it, or null; it is the caller's again.
void *st_find_internal(const st_table *table, const void *key);
void st_add_internal(st_table *table, void *entry);
void *st_delete_internal(st_table *table, const void *key);

// The mechanism under the forms. The entry of a key, or null; the entry of a key, added when
// absent; removal into `removed`; the next key and value of a walk (0: none is left).
st_entry *st_entry_of(const st_table *table, const void *key);
st_entry *st_obtain_entry(st_table *table, const void *key, int *present);
int st_remove_entry(st_table *table, const void *key, st_entry *removed);
int st_next_words(st_generator *generator, st_word *key, st_word *value);

// Numbers the entries of a keyed table anew, in order and without holes.
void st_renumber(st_table *table);

// The key and the chain link of an entry.
const void *st_key_of(const st_table *table, const void *entry);
inline void **st_link_of(const st_table *table, void *entry) {
    return reinterpret_cast<void **>(static_cast<char *>(entry) + table->next_offset);
}

#endif
