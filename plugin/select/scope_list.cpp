// SPDX-License-Identifier: Apache-2.0
// Gathers regions and keeps nested ones out.
#include "plugin/select/scope_list.h"

#include "plugin/select/names.h"
#include "plugin/support/messages.h"
#include "plugin/support/text.h"

#include <cstdlib>

st_table *create_scope_list() {
    return st_alloc_abo(st_strcmp, st_strhash);
}

void free_scope_list(st_table *scope_list) {
    st_generator *generator = st_init_gen(scope_list);
    void *name = nullptr;
    while (st_gen_kptr_vptr(generator, &name, nullptr)) {
        free(name);
    }
    st_free_gen(generator);
    st_free(scope_list);
}

// Whether the region of that name lies in a listed one or around it.
static bool overlaps(const char *full_name, st_table *scope_list) {
    bool overlap = false;
    st_generator *generator = st_init_gen(scope_list);
    void *key = nullptr;
    while (!overlap && st_gen_kptr_vptr(generator, &key, nullptr)) {
        const char *listed = static_cast<const char *>(key);
        overlap = mfli_first_in_second_region(full_name, listed) ||
                  mfli_first_in_second_region(listed, full_name);
    }
    st_free_gen(generator);
    return overlap;
}

void add_region_to_scope_list(mtiRegionIdT region, st_table *scope_list) {
    if (scope_list == nullptr) {
        mfli_print_text("Error, scope_list not initialized");
        return;
    }
    char *full_name = mfli_get_region_full_name(region);
    if (full_name == nullptr) {
        mfli_print_text("Error (KLVA-PWR): Could not get the name of a region; it is not watched");
        return;
    }
    if (!overlaps(full_name, scope_list)) {
        st_insert_kptr_vptr(scope_list, mfli_strdup(full_name), region);
    }
    free(full_name);
}
