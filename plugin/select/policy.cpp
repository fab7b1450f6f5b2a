// SPDX-License-Identifier: Apache-2.0
// Keeps the policies of regions and answers which one governs a region.
#include "plugin/select/policy.h"

#include "plugin/select/names.h"
#include "plugin/support/messages.h"
#include "plugin/support/run_state.h"
#include "plugin/support/text.h"

#include <cstdlib>

st_table *mfli_policy_table;

static int32_t user_gate_level_policy;

void add_to_policy_table(mtiRegionIdT region, int32_t policy) {
    char *full_name = mfli_get_region_full_name(region);
    if (full_name == nullptr) {
        mfli_print_text("Error (KLVA-PWR): Could not get the name of a region; its policy is lost");
        return;
    }
    if (!st_lookup_kptr_vptr(mfli_policy_table, full_name, nullptr)) {
        st_insert_kptr_vptr(mfli_policy_table, mfli_strdup(full_name),
                            reinterpret_cast<void *>(static_cast<intptr_t>(policy)));
    }
    free(full_name);
}

int32_t mfli_get_policy_for_region(const char *full_name) {
    const char *nearest = nullptr;
    int32_t policy = MFLI_POLICY_NONE;
    st_generator *generator = st_init_gen(mfli_policy_table);
    void *key = nullptr;
    void *value = nullptr;
    while (st_gen_kptr_vptr(generator, &key, &value)) {
        const char *region = static_cast<const char *>(key);
        if (mfli_first_in_second_region(full_name, region) &&
            (nearest == nullptr || mfli_first_in_second_region(region, nearest))) {
            nearest = region;
            policy = static_cast<int32_t>(reinterpret_cast<intptr_t>(value));
        }
    }
    st_free_gen(generator);
    return nearest == nullptr ? mfli_get_default_policy() : policy;
}

int32_t mfli_get_default_policy() {
    return mfli_is_rtl_read() ? MFLI_POLICY_OFF : MFLI_POLICY_ON;
}

int32_t mfli_get_user_policy() {
    return user_gate_level_policy;
}

void print_policy_table() {
    mfli_print_text("Information (KLVA-PWR): Region based policy table");
    st_generator *generator = st_init_gen(mfli_policy_table);
    void *key = nullptr;
    void *value = nullptr;
    while (st_gen_kptr_vptr(generator, &key, &value)) {
        mfli_message("%s -- %d", static_cast<const char *>(key),
                     static_cast<int>(reinterpret_cast<intptr_t>(value)));
    }
    st_free_gen(generator);
}

void mfli_free_policy_table() {
    if (mfli_policy_table == nullptr) {
        return;
    }
    st_generator *generator = st_init_gen(mfli_policy_table);
    void *key = nullptr;
    while (st_gen_kptr_vptr(generator, &key, nullptr)) {
        free(key);
    }
    st_free_gen(generator);
    st_free(mfli_policy_table);
    mfli_policy_table = nullptr;
}
