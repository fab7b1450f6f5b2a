// SPDX-License-Identifier: Apache-2.0
// Walks regions and composites down to scalars and has the simulator report their events.
#include "plugin/select/registration.h"

#include "plugin/monitor/monitor_table.h"
#include "plugin/monitor/value_change.h"
#include "plugin/select/names.h"
#include "plugin/select/policy.h"
#include "plugin/support/linked_list.h"
#include "plugin/support/messages.h"
#include "plugin/support/run_state.h"
#include "plugin/support/text.h"

#include <acc_user.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

// Regions that hold nothing to watch. The interface's headers give these codes no names: full types
// of scopes without nets of their own; packages, subprograms and the scopes inside them.
static constexpr int skipped_full_types[] = {1011, 1012, 1013};
static constexpr int skipped_region_kinds[] = {1040, 1080, 1090, 1100};

static bool is_skipped(mtiRegionIdT region) {
    const auto holds = [](const auto &codes, int code) {
        return std::find(std::begin(codes), std::end(codes), code) != std::end(codes);
    };
    return holds(skipped_full_types, acc_fetch_fulltype(reinterpret_cast<handle>(region))) ||
           holds(skipped_region_kinds, mti_GetRegionKind(region));
}

static bool is_scalar_kind(mtiTypeKindT kind) {
    return kind == MTI_TYPE_SCALAR || kind == MTI_TYPE_ENUM;
}

static void wake_on_events(mtiProcessIdT process, mtiSignalIdT signal) {
    mti_Sensitize(process, signal, MTI_EVENT);
}

static void create_processes(mtiSignalIdT signal, MonitorElement *element) {
    wake_on_events(
        mti_CreateProcess(const_cast<char *>("klva_track_toggles"), mfli_process_event, element),
        signal);
    wake_on_events(
        mti_CreateProcessWithPriority(const_cast<char *>("klva_count_toggles"),
                                      mfli_update_event_count, nullptr, MTI_PROC_POSTPONED),
        signal);
}

void register_single_net(mtiSignalIdT signal, const char *name) {
    if (name == nullptr) {
        mfli_tell_unrecorded(name);
        return;
    }
    void *known = nullptr;
    if (st_lookup_kptr_vptr(mfli_monitor_table, signal, &known)) {
        mfli_add_name_to_monitor(name, static_cast<MonitorElement *>(known));
        return;
    }
    MonitorElement *element = mfli_init_monitor_element(signal, name);
    if (element == nullptr) {
        mfli_tell_unrecorded(name);
        return;
    }
    st_insert_kptr_vptr(mfli_monitor_table, signal, element);
    if (mfli_debug_level > 2) {
        mfli_message("Registered signal %s", name);
    }
    create_processes(signal, element);
}

static void trace_registration(const char *name, const char *kind) {
    if (mfli_debug_level > 1) {
        mfli_message("Registering = %s; %s", name, kind);
    }
}

// The same in a region that may not be the signal's own.
static void register_net_in(mtiSignalIdT signal, mtiRegionIdT region, const char *name, int flag) {
    const mtiTypeIdT type = mti_GetSignalType(signal);
    if (type == nullptr) {
        // The message is formatted, but what is printed is the name of its buffer.
        snprintf(mfli_msg_buf, sizeof mfli_msg_buf,
                 "Warning (KLVA-PWR): could not determine type for signal %s, skipping", name);
        mfli_print_text("mfli_msg_buf");
        return;
    }
    switch (mti_GetTypeKind(type)) {
        case MTI_TYPE_ARRAY:
            trace_registration(name, "ARRAY");
            register_array(signal, region, flag);
            break;
        case MTI_TYPE_RECORD:
            trace_registration(name, "RECORD");
            register_record(signal, region, flag);
            break;
        case MTI_TYPE_SCALAR:
        case MTI_TYPE_ENUM:
            trace_registration(name, "Scalar/Enum");
            register_single_net(signal, name);
            break;
        default:
            mfli_message("Warning (KLVA-PWR): Not registered signal = %s; INVALID_TYPE", name);
            break;
    }
}

void mfli_register_net(mtiSignalIdT signal, const char *name, int flag) {
    register_net_in(signal, mfli_region_of_name(name, signal), name, flag);
}

static void refuse(mtiSignalIdT signal, mtiRegionIdT region) {
    char *name = mfli_get_signal_full_name_indirect(signal, region);
    if (name == nullptr) {
        name = mfli_get_signal_full_name(signal);
    }
    if (name == nullptr) {
        mfli_print_text("Error (KLVA-PWR): Unable to register signal");
    } else {
        mfli_message("Error (KLVA-PWR): Unable to register %s", name);
    }
    free(name);
}

// The elements of a composite and their number. Several without indirect names would all have the
// name of the composite: those, and a composite whose elements the simulator does not give, are
// refused. Null then.
static mtiSignalIdT *elements_of(mtiSignalIdT signal, mtiRegionIdT region, int32_t *count) {
    const mtiTypeIdT type = mti_GetSignalType(signal);
    *count = type == nullptr ? 0 : mti_TickLength(type);
    mtiSignalIdT *elements = type == nullptr ? nullptr : mti_GetSignalSubelements(signal, nullptr);
    if (elements == nullptr) {
        refuse(signal, region);
        return nullptr;
    }
    char *indirect = *count > 0 ? mti_GetSignalNameIndirect(elements[0], nullptr, 0) : nullptr;
    if (indirect != nullptr) {
        mti_VsimFree(indirect);
    } else if (*count > 1) {
        refuse(signal, region);
        *count = 0;
    }
    return elements;
}

void register_record(mtiSignalIdT signal, mtiRegionIdT region, int flag) {
    int32_t count = 0;
    mtiSignalIdT *fields = elements_of(signal, region, &count);
    if (fields == nullptr) {
        return;
    }
    for (int32_t i = 0; i < count; ++i) {
        char *name = mfli_get_signal_full_name_indirect(fields[i], region);
        register_net_in(fields[i], region, name, flag);
        free(name);
    }
    mti_VsimFree(fields);
}

// A scalar signal under a name that it may have.
struct Alias {
    char *name;
    mtiSignalIdT signal;  // null when the name leads to no scalar
};

static Alias resolve_alias(char *name) {
    if (name == nullptr) {
        mfli_tell_unrecorded(name);
        return {nullptr, nullptr};
    }
    const mtiSignalIdT signal = mti_FindSignal(name);
    return {name,
            signal != nullptr && is_scalar_kind(mfli_get_signal_kind(signal)) ? signal : nullptr};
}

static void register_alias(const Alias &alias) {
    if (alias.signal != nullptr) {
        register_single_net(alias.signal, alias.name);
    }
}

// An element that is known under a second path, too: the array's own name with the element's index
// suffix, or with its position.
static void register_second_path(mtiSignalIdT element, const char *array_name, const char *suffix,
                                 int32_t position) {
    char *indexed = mfli_strdup(array_name);
    mfli_strcat(&indexed, suffix);
    const Alias by_index = resolve_alias(indexed);
    const Alias by_position = resolve_alias(mfli_add_index_to_name(array_name, position));
    if (by_index.signal == element) {
        register_alias(by_index);
    } else if (by_position.signal != element) {
        register_alias(by_index);
        register_alias(by_position);
    } else {
        register_alias(by_position);
    }
    free(by_index.name);
    free(by_position.name);
}

static void register_array_element(mtiSignalIdT element, mtiRegionIdT region,
                                   const char *array_name, int32_t position) {
    char *name = mfli_get_signal_full_name_indirect(element, region);
    register_single_net(element, name);
    if (name == nullptr) {
        return;
    }
    const int suffix = mfli_last_substring_position(name, "(");
    // The comparison stops one character short of the whole base name: names that differ in the
    // base's last character alone count as one path.
    const size_t compared = suffix > 0 ? static_cast<size_t>(suffix) - 1 : 0;
    if (suffix >= 0 && strncmp(name, array_name, compared) != 0) {
        register_second_path(element, array_name, name + suffix, position);
    }
    free(name);
}

static void register_scalar_elements(mtiSignalIdT signal, mtiRegionIdT region,
                                     const mtiSignalIdT *elements, int32_t count) {
    char *array_name = mfli_get_signal_full_name_in(signal, region);
    if (array_name == nullptr) {
        mfli_tell_unrecorded(array_name);
        return;
    }
    for (int32_t i = 0; i < count; ++i) {
        register_array_element(elements[i], region, array_name, i);
    }
    free(array_name);
}

void register_array(mtiSignalIdT signal, mtiRegionIdT region, int flag) {
    int32_t count = 0;
    mtiSignalIdT *elements = elements_of(signal, region, &count);
    if (elements == nullptr) {
        return;
    }
    const mtiTypeIdT element_type = mti_GetArrayElementType(mti_GetSignalType(signal));
    const mtiTypeKindT element_kind =
        element_type == nullptr ? MTI_TYPE_ACCESS : mti_GetTypeKind(element_type);
    if (is_scalar_kind(element_kind)) {
        register_scalar_elements(signal, region, elements, count);
    } else if (element_kind == MTI_TYPE_ARRAY || element_kind == MTI_TYPE_RECORD) {
        const auto register_element =
            element_kind == MTI_TYPE_ARRAY ? register_array : register_record;
        for (int32_t i = 0; i < count; ++i) {
            register_element(elements[i], region, flag);
        }
    } else if (count > 0) {
        refuse(signal, region);
    }
    mti_VsimFree(elements);
}

// A signal that the region lists. One whose own region is another, a port that is the signal above
// it, has the name here that it has there, unless that is another signal's here.
static void register_listed(mtiSignalIdT signal, mtiRegionIdT region, int flag) {
    char *name = mfli_get_signal_full_name_in(signal, region);
    const mtiRegionIdT own = mti_GetSignalRegion(signal);
    if (own != region && name != nullptr) {
        const mtiSignalIdT namesake = mti_FindSignal(name);
        if (namesake != nullptr && namesake != signal) {
            free(name);
            name = mfli_get_signal_full_name(signal);
            region = own;
            mfli_message(
                "Warning (KLVA-PWR): a port that is %s is not reported in its own "
                "instance, which has another signal of that name",
                name == nullptr ? "" : name);
        }
    }
    register_net_in(signal, region, name, flag);
    free(name);
}

static void register_signals_of(mtiRegionIdT region, int flag) {
    for (mtiSignalIdT signal = mti_FirstSignal(region); signal != nullptr;
         signal = mti_NextSignal()) {
        register_listed(signal, region, flag);
    }
}

// The name of a region is as long as it lies deep, so it is asked for only where it says something.
static int32_t policy_of(mtiRegionIdT region) {
    if (mfli_debug_level <= 1 && st_count(mfli_policy_table) == 0) {
        return mfli_get_default_policy();
    }
    char *full_name = mfli_get_region_full_name(region);
    if (full_name == nullptr) {
        mfli_tell_unrecorded(full_name);
        return MFLI_POLICY_NONE;
    }
    if (mfli_debug_level > 1) {
        mfli_message("Registering signals in region %s", full_name);
    }
    const int32_t policy = mfli_get_policy_for_region(full_name);
    free(full_name);
    return policy;
}

// The region's first sub-region, whatever the policy: that may have one of its own.
static mtiRegionIdT register_own_signals(mtiRegionIdT region) {
    if (is_skipped(region)) {
        return nullptr;
    }
    const int32_t policy = policy_of(region);
    if (policy == MFLI_POLICY_ON || policy == MFLI_POLICY_RTL_ON) {
        register_signals_of(region, policy == MFLI_POLICY_RTL_ON ? 1 : 0);
    }
    return mti_FirstLowerRegion(region);
}

// Depth first, with a list of the regions above: they may nest deeper than the stack allows.
void register_region(mtiRegionIdT region) {
    list *above = list_alloc();
    mtiRegionIdT next = register_own_signals(region);
    mtiRegionIdT upper = region;
    while (upper != nullptr) {
        if (next != nullptr) {
            list_append(above, upper);
            upper = next;
            next = register_own_signals(next);
        } else if (above->tail != nullptr) {
            next = mti_NextRegion(upper);
            upper = static_cast<mtiRegionIdT>(above->tail->data);
            list_delete(above->tail);
        } else {
            upper = nullptr;
        }
    }
    list_free_container(above);
}

void register_gate_level_activity(st_table *scope_list) {
    st_generator *generator = st_init_gen(scope_list);
    void *region = nullptr;
    while (st_gen_kptr_vptr(generator, nullptr, &region)) {
        register_region(static_cast<mtiRegionIdT>(region));
    }
    st_free_gen(generator);
}

void mfli_register_activity(st_table *scope_list) {
    if (mfli_is_rtl_read()) {
        register_rtl_activity(scope_list);
    }
    register_gate_level_activity(scope_list);
}
