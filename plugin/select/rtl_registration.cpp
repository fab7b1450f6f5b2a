// SPDX-License-Identifier: Apache-2.0
// Finds the simulator's signals for the RTL objects of forward files and registers those in scope.
#include "plugin/monitor/monitor_table.h"
#include "plugin/rtlsaif/rtl_table.h"
#include "plugin/select/names.h"
#include "plugin/select/registration.h"
#include "plugin/support/messages.h"
#include "plugin/support/text.h"

#include <cstdlib>
#include <cstring>

// The outermost instance's name at the front of every object key ("top/u1/q").
static constexpr size_t key_prefix_length = 3;

static void warn_not_found(const char *name) {
    mfli_message("Warning (KLVA-PWR): could not find signal %s, skipping", name);
}

// A bit of a vector that the simulator holds as one scalar is watched through the whole scalar:
// cuts `name` at its last index if the rest names such a scalar. Null, after a warning, if not.
static mtiSignalIdT find_whole_scalar(char *name) {
    char *last = strrchr(name, '(');
    if (last == nullptr || last < mfli_leaf_of(name)) {
        warn_not_found(name);
        return nullptr;
    }
    *last = '\0';
    const mtiSignalIdT base = mfli_find_signal(name);
    if (base == nullptr) {
        warn_not_found(name);
        return nullptr;
    }
    const mtiTypeKindT kind = mfli_get_signal_kind(base);
    if (kind == MTI_TYPE_SCALAR || kind == MTI_TYPE_ENUM) {
        return base;
    }
    *last = '(';
    warn_not_found(name);
    return nullptr;
}

// Whether the texts are the same up to the end of the second, but for the kinds of their brackets.
static bool begins_alike(const char *text, const char *beginning) {
    const auto round = [](char c) { return c == '[' ? '(' : c == ']' ? ')' : c; };
    while (*beginning != '\0' && round(*text) == round(*beginning)) {
        ++text;
        ++beginning;
    }
    return *beginning == '\0';
}

// The name under which a signal that was found as `name` is registered, as the simulator spells it,
// without what follows the signal's own name, such as the index of a scalar's bit.
static char *name_to_register(mtiSignalIdT signal, const char *name) {
    const char *leaf = mfli_leaf_of(name);
    char *indirect = mti_GetSignalNameIndirect(signal, nullptr, 0);
    const bool is_same = indirect != nullptr && begins_alike(leaf, indirect);
    char *path = mfli_get_region_full_name(mfli_region_of_name(name, signal));
    char *full_name = mfli_add_path_to_name(is_same ? indirect : leaf, path, 1);
    free(path);
    if (indirect != nullptr) {
        mti_VsimFree(indirect);
    }
    return full_name;
}

static bool is_in_scope(const char *name, st_table *scope_list) {
    bool in_scope = false;
    st_generator *generator = st_init_gen(scope_list);
    void *region = nullptr;
    while (!in_scope && st_gen_kptr_vptr(generator, &region, nullptr)) {
        in_scope = mfli_first_in_second_region(name, static_cast<const char *>(region)) != 0;
    }
    st_free_gen(generator);
    return in_scope;
}

static void register_rtl_object(const char *add_path, const char *key, st_table *scope_list) {
    char *name =
        mfli_add_path_to_name(key + strnlen(key, key_prefix_length), add_path, /*separator=*/0);
    if (name == nullptr) {
        mfli_tell_unrecorded(key);
        return;
    }
    mfli_convert_squareb_to_paren(name);
    mtiSignalIdT signal = mfli_find_signal(name);
    if (signal == nullptr) {
        signal = find_whole_scalar(name);
    }
    char *own_name = signal == nullptr ? nullptr : name_to_register(signal, name);
    if (own_name != nullptr) {
        if (is_in_scope(own_name, scope_list)) {
            mfli_register_net(signal, own_name, 0);
        } else {
            mfli_message("Warning (KLVA-PWR): Signal %s not in scope, skipping", own_name);
        }
    } else if (signal != nullptr) {
        mfli_tell_unrecorded(name);
    }
    free(own_name);
    free(name);
}

static void register_rtl_objects(const char *add_path, st_table *objects, st_table *scope_list) {
    if (mfli_debug_level > 0) {
        mfli_message("add_path is %s", add_path);
    }
    st_generator *generator = st_init_gen(objects);
    void *key = nullptr;
    while (st_gen_kptr_vptr(generator, &key, nullptr)) {
        if (key != nullptr) {
            register_rtl_object(add_path, static_cast<const char *>(key), scope_list);
        }
    }
    st_free_gen(generator);
}

void register_rtl_activity(st_table *scope_list) {
    if (mfli_rtl_table == nullptr) {
        return;
    }
    st_generator *generator = st_init_gen(mfli_rtl_table);
    void *add_path = nullptr;
    void *objects = nullptr;
    while (st_gen_kptr_vptr(generator, &add_path, &objects)) {
        if (add_path != nullptr && objects != nullptr) {
            register_rtl_objects(static_cast<const char *>(add_path),
                                 static_cast<st_table *>(objects), scope_list);
        }
    }
    st_free_gen(generator);
}
