// SPDX-License-Identifier: Apache-2.0
// The RTL objects that forward SAIF files name, grouped by testbench path.
#include "plugin/rtlsaif/rtl_table.h"

#include "plugin/support/counted_string.h"
#include "plugin/support/hash_table.h"
#include "plugin/support/linked_list.h"
#include "plugin/support/messages.h"
#include "plugin/support/text.h"

#include <cstdlib>

st_table *mfli_rtl_table = nullptr;

RtlObject *mfli_create_rtl_object() {
    return static_cast<RtlObject *>(calloc(1, sizeof(RtlObject)));
}

void mfli_free_rtl_object(void *object) {
    RtlObject *freed = static_cast<RtlObject *>(object);
    if (freed == nullptr) {
        return;
    }
    string_free(freed->instance_path);
    string_free(freed->object_name);
    string_free(freed->second_full_name);
    string_free(freed->further_name);
    free(freed);
}

static char square(char c) {
    return c == '(' ? '[' : c == ')' ? ']' : c;
}

static int compare_names(const void *first, const void *second) {
    const auto *a = static_cast<const char *>(first);
    const auto *b = static_cast<const char *>(second);
    while (*a != '\0' && square(*a) == square(*b)) {
        ++a;
        ++b;
    }
    return square(*a) - square(*b);
}

static uint32_t hash_name(const void *name) {
    uint32_t hash = 2166136261U;
    for (const auto *c = static_cast<const char *>(name); *c != '\0'; ++c) {
        hash = (hash ^ static_cast<unsigned char>(square(*c))) * 16777619U;
    }
    return hash ^ (hash >> 15);
}

st_table *get_rtl_hash(st_table *table, const char *testbench) {
    const char *path = testbench != nullptr ? testbench : "";
    void *known = nullptr;
    if (st_lookup_kptr_vptr(table, path, &known) != 0) {
        return static_cast<st_table *>(known);
    }
    st_table *objects = st_alloc_abo(compare_names, hash_name);
    st_insert_kptr_vptr(table, mfli_strdup(path), objects);
    return objects;
}

// Calls the operation with each key and value, in order of insertion.
template <typename Operation>
static void for_each(st_table *table, Operation operation) {
    st_generator *generator = st_init_gen(table);
    void *key = nullptr;
    void *value = nullptr;
    while (st_gen_kptr_vptr(generator, &key, &value) != 0) {
        operation(static_cast<char *>(key), value);
    }
    st_free_gen(generator);
}

void mfli_free_rtl_hash(st_table *objects) {
    if (objects == nullptr) {
        return;
    }
    for_each(objects, [](char *name, void *records) {
        free(name);
        list_free(static_cast<list *>(records), mfli_free_rtl_object);
    });
    st_free(objects);
}

static void print_objects(const char *name, list *records) {
    for (list_walk walk(records); walk; walk.step()) {
        const RtlObject *object = static_cast<const RtlObject *>(walk.item());
        if (object->second_full_name != nullptr) {
            mfli_message("%s:   %s", name, string_to_char(object->second_full_name));
        }
    }
}

void mfli_print_rtl_table() {
    if (mfli_rtl_table == nullptr) {
        return;
    }
    for_each(mfli_rtl_table, [](const char *testbench, void *objects) {
        mfli_message("-------- addpath: %s", testbench);
        for_each(static_cast<st_table *>(objects), [](const char *name, void *records) {
            print_objects(name, static_cast<list *>(records));
        });
    });
}

void mfli_free_rtl_table() {
    if (mfli_rtl_table == nullptr) {
        return;
    }
    for_each(mfli_rtl_table, [](char *testbench, void *objects) {
        free(testbench);
        mfli_free_rtl_hash(static_cast<st_table *>(objects));
    });
    st_free(mfli_rtl_table);
    mfli_rtl_table = nullptr;
}
