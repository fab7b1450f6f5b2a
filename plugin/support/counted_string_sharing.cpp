// SPDX-License-Identifier: Apache-2.0
// The sharing table of counted strings, which holds the interned values while they have owners.
#include "plugin/support/counted_string.h"

#include <cstdio>
#include <cstdlib>

#include "plugin/support/counted_string_block.h"
#include "plugin/support/hash_table.h"

// An entry of the table is its own key: the address of its first field.
struct string_entry {
    dstring *text;
    void *next;
};

// From the first interning until the last interned value is released, so nothing is left at quit.
static st_table *string_table;

int string_compare_container(const void *a, const void *b) {
    return string_compare(*static_cast<const dstring *const *>(a),
                          *static_cast<const dstring *const *>(b));
}

uint32_t string_hash_container(const void *key) {
    return string_hash(*static_cast<const dstring *const *>(key));
}

void string_add_owner(dstring *s) {
    if (s->refcnt != STRING_OWNERS_MAX) {
        ++s->refcnt;
    }
}

uint16_t string_drop_owner(dstring *s) {
    if (s->refcnt != STRING_OWNERS_MAX) {
        --s->refcnt;
    }
    return s->refcnt;
}

static void enter_table(dstring *s) {
    auto *entry = static_cast<string_entry *>(malloc(sizeof(string_entry)));
    entry->text = s;
    st_add_internal(string_table, entry);
}

void string_leave_table(dstring *s) {
    if (string_table == nullptr) {
        return;
    }
    const auto *found = static_cast<string_entry *>(st_find_internal(string_table, &s));
    if (found == nullptr || found->text != s) {
        return;
    }
    free(st_delete_internal(string_table, &s));
    if (st_count(string_table) == 0) {
        st_free(string_table);
        string_table = nullptr;
    }
}

void string_memorize(dstring **s) {
    if (*s == nullptr || (*s)->refcnt != 0) {
        return;
    }
    if (string_table == nullptr) {
        string_table = st_alloc_internal(string_compare_container, string_hash_container, nullptr,
                                         -1, offsetof(string_entry, next), 2, 4);
    }
    const auto *found = static_cast<string_entry *>(st_find_internal(string_table, s));
    if (found != nullptr) {
        string_free(*s);
        *s = found->text;
        string_add_owner(*s);
    } else {
        (*s)->refcnt = 1;
        enter_table(*s);
    }
}

void string_unmemorize(dstring *s) {
    if (s == nullptr || s->refcnt == 0) {
        return;
    }
    string_leave_table(s);
    if (s->refcnt == 1) {
        s->refcnt = 0;
    }
}

void string_memo_info() {
    uint32_t values = 0;
    uint32_t owners = 0;
    uint64_t characters = 0;
    if (string_table != nullptr) {
        st_generator *generator = st_init_gen(string_table);
        void *entry = nullptr;
        while (st_gen_kptr_vptr(generator, nullptr, &entry) != 0) {
            const dstring *text = static_cast<string_entry *>(entry)->text;
            ++values;
            owners += text->refcnt;
            characters += text->len;
        }
        st_free_gen(generator);
    }
    printf("shared strings: %u values, %u owners, %llu characters\n", values, owners,
           static_cast<unsigned long long>(characters));
}
