// SPDX-License-Identifier: Apache-2.0
// What the grammar's actions keep and do while a forward SAIF file is read.
#include "plugin/rtlsaif/reader_state.h"

#include "plugin/rtlsaif/input_stream.h"
#include "plugin/rtlsaif/rtl_table.h"
#include "plugin/rtlsaif/syntax_error.h"
#include "plugin/support/counted_string.h"
#include "plugin/support/hash_table.h"
#include "plugin/support/linked_list.h"
#include "plugin/support/text.h"

#include <cstdlib>

st_table *saifrtl_hash_var = nullptr;
st_table *saifrtl_hash_mpm = nullptr;
dstring *saifrtl_current_path = nullptr;
int32_t see_mpm_cell_info = 0;
int32_t saifrtl_is_port = 0;
saifrtl_message_op saifrtl_error_print = nullptr;
saifrtl_message_op saifrtl_warn_print = nullptr;

void saifrtl_forget_file_state() {
    string_free(saifrtl_current_path);
    saifrtl_current_path = nullptr;
    saifrtl_forget_syntax_error();
}

void saifrtl_set_hierarchy_divider(char divider) {
    saifrtl_expecting_divider_candidate() = 0;
    saifrtl_hierarchy_divider() = divider;
}

static void extend_current_path(const dstring *path) {
    if (saifrtl_current_path != nullptr) {
        string_concat_ch(&saifrtl_current_path, '/');
    }
    string_concat(&saifrtl_current_path, path);
}

void saifrtl_enter_instance(const dstring *path) {
    extend_current_path(path);
    see_mpm_cell_info = 0;
}

static void note_module(const dstring *module) {
    if (saifrtl_hash_mpm == nullptr) {
        return;
    }
    dstring *key = string_alloc(string_to_char(saifrtl_current_path));
    void **slot = nullptr;
    if (st_find_or_add_kptr_vptr(saifrtl_hash_mpm, key, &slot) != 0) {
        string_free(key);
        string_free(static_cast<dstring *>(*slot));
    }
    *slot = string_alloc(string_to_char(module));
}

void saifrtl_enter_mpm_instance(const dstring *path, const dstring *module) {
    extend_current_path(path);
    see_mpm_cell_info = 1;
    if (module != nullptr) {
        note_module(module);
        return;
    }
    if (saifrtl_error_print == nullptr) {
        return;
    }
    dstring *message = string_sprintf("Need to specify the module name for MPM instance %s \n",
                                      string_to_char(saifrtl_current_path));
    saifrtl_error_print(message);
    string_free(message);
}

void saifrtl_leave_instance(const dstring *path) {
    const int64_t kept = int64_t{string_len(saifrtl_current_path)} - string_len(path) - 1;
    dstring *shortened = nullptr;
    if (kept > 0) {
        shortened = string_substr_len(saifrtl_current_path, 0, static_cast<int32_t>(kept));
    }
    string_free(saifrtl_current_path);
    saifrtl_current_path = shortened;
}

static int32_t kind_of(const dstring *kind) {
    if (string_compare_char(kind, "sequential") == 0) {
        return RTL_SEQUENTIAL;
    }
    return string_compare_char(kind, "tri-state") == 0 ? RTL_TRI_STATE : RTL_ORDINARY;
}

static dstring *below_current_path(const dstring *name) {
    dstring *full = string_alloc(string_to_char(saifrtl_current_path));
    string_concat_ch(&full, '/');
    string_concat(&full, name);
    return full;
}

// The list of a full name in the caller's table, made when missing. Takes over the key.
static list *objects_named(char *key) {
    void **slot = nullptr;
    if (st_find_or_add_kptr_vptr(saifrtl_hash_var, key, &slot) != 0) {
        free(key);
    } else {
        *slot = list_alloc();
    }
    return static_cast<list *>(*slot);
}

void saifrtl_store_entry(const dstring *first, const dstring *second, const dstring *kind) {
    if (see_mpm_cell_info == 1) {
        return;
    }
    RtlObject *object = mfli_create_rtl_object();
    object->instance_path = string_alloc(string_to_char(saifrtl_current_path));
    object->object_name = string_alloc(string_to_char(first));
    object->second_full_name = below_current_path(second);
    object->kind = kind_of(kind);
    char *key =
        mfli_add_path_to_name(string_to_char(first), string_to_char(saifrtl_current_path), 1);
    list_append(objects_named(key), object);
}
