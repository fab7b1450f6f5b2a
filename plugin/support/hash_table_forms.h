// SPDX-License-Identifier: Apache-2.0
// The keyed operations of st_table for keys or values that are signed integers. They differ from
// the forms on pointers (hash_table.h, where each is described) in the declared types alone.
#ifndef WATTFORGE_PLUGIN_SUPPORT_HASH_TABLE_FORMS_H
#define WATTFORGE_PLUGIN_SUPPORT_HASH_TABLE_FORMS_H

#include "plugin/support/hash_table.h"

inline const void *st_key_word(const void *key) {
    return key;
}
inline const void *st_key_word(intptr_t key) {
    return reinterpret_cast<const void *>(key);
}

// The address of a word, and the word itself, as either type.
inline void **st_place(st_word *word, void ** /*type*/) {
    return &word->pointer;
}
inline intptr_t *st_place(st_word *word, intptr_t * /*type*/) {
    return &word->integer;
}
inline void st_hand_out(st_word word, void **out) {
    if (out != nullptr) {
        *out = word.pointer;
    }
}
inline void st_hand_out(st_word word, intptr_t *out) {
    if (out != nullptr) {
        *out = word.integer;
    }
}

template <class Key, class Value>
int st_find_or_add(st_table *table, Key key, Value **slot) {
    int present = 0;
    st_entry *entry = st_obtain_entry(table, st_key_word(key), &present);
    if (slot != nullptr) {
        *slot = st_place(&entry->value, static_cast<Value *>(nullptr));
    }
    return present;
}

template <class Key, class Value>
int st_insert(st_table *table, Key key, Value value) {
    Value *slot = nullptr;
    const int present = st_find_or_add<Key, Value>(table, key, &slot);
    *slot = value;
    return present;
}

template <class Key, class Value>
int st_find(const st_table *table, Key key, Value **slot) {
    st_entry *entry = st_entry_of(table, st_key_word(key));
    if (entry != nullptr && slot != nullptr) {
        *slot = st_place(&entry->value, static_cast<Value *>(nullptr));
    }
    return entry != nullptr;
}

template <class Key, class Value>
int st_lookup(const st_table *table, Key key, Value *value) {
    const st_entry *entry = st_entry_of(table, st_key_word(key));
    if (entry != nullptr) {
        st_hand_out(entry->value, value);
    }
    return entry != nullptr;
}

template <class Key>
int st_is_member(const st_table *table, Key key) {
    return st_entry_of(table, st_key_word(key)) != nullptr;
}

// `Stored` is the key's type as it is handed out (without const).
template <class Key, class Stored, class Value>
int st_delete(st_table *table, Key key, Stored *stored_key, Value *value) {
    st_entry removed;
    if (st_remove_entry(table, st_key_word(key), &removed) == 0) {
        return 0;
    }
    st_hand_out(removed.key, stored_key);
    st_hand_out(removed.value, value);
    return 1;
}

template <class Stored, class Value>
int st_gen(st_generator *generator, Stored *key, Value *value) {
    st_word key_word;
    st_word value_word;
    if (st_next_words(generator, &key_word, &value_word) == 0) {
        return 0;
    }
    st_hand_out(key_word, key);
    st_hand_out(value_word, value);
    return 1;
}

inline constexpr auto st_insert_kptr_vint = st_insert<const void *, intptr_t>;
inline constexpr auto st_insert_kint_vptr = st_insert<intptr_t, void *>;
inline constexpr auto st_insert_kint_vint = st_insert<intptr_t, intptr_t>;

inline constexpr auto st_lookup_kptr_vint = st_lookup<const void *, intptr_t>;
inline constexpr auto st_lookup_kint_vptr = st_lookup<intptr_t, void *>;
inline constexpr auto st_lookup_kint_vint = st_lookup<intptr_t, intptr_t>;

inline constexpr auto st_find_kptr_vint = st_find<const void *, intptr_t>;
inline constexpr auto st_find_kint_vptr = st_find<intptr_t, void *>;
inline constexpr auto st_find_kint_vint = st_find<intptr_t, intptr_t>;

inline constexpr auto st_find_or_add_kptr_vint = st_find_or_add<const void *, intptr_t>;
inline constexpr auto st_find_or_add_kint_vptr = st_find_or_add<intptr_t, void *>;
inline constexpr auto st_find_or_add_kint_vint = st_find_or_add<intptr_t, intptr_t>;

inline constexpr auto st_is_member_kint = st_is_member<intptr_t>;

inline constexpr auto st_delete_kptr_vint = st_delete<const void *, void *, intptr_t>;
inline constexpr auto st_delete_kint_vptr = st_delete<intptr_t, intptr_t, void *>;
inline constexpr auto st_delete_kint_vint = st_delete<intptr_t, intptr_t, intptr_t>;

inline constexpr auto st_gen_kptr_vint = st_gen<void *, intptr_t>;
inline constexpr auto st_gen_kint_vptr = st_gen<intptr_t, void *>;
inline constexpr auto st_gen_kint_vint = st_gen<intptr_t, intptr_t>;

#endif
