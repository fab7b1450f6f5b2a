// SPDX-License-Identifier: Apache-2.0
// set_toggle_region.
#include "plugin/core/region_command.h"

#include "plugin/core/arguments.h"
#include "plugin/core/order.h"
#include "plugin/monitor/monitor_table.h"
#include "plugin/monitor/value_change.h"
#include "plugin/monitor/window.h"
#include "plugin/select/names.h"
#include "plugin/select/registration.h"
#include "plugin/select/scope_list.h"
#include "plugin/support/messages.h"
#include "plugin/support/run_state.h"

#include <cstdlib>

static void register_named_signal(mtiSignalIdT signal, const char *argument) {
    if (mfli_debug_level > 0) {
        mfli_message("Found Signal %s", argument);
    }
    char *name = mfli_get_signal_full_indexed_name(signal, argument);
    mfli_register_net(signal, name, 0);
    free(name);
}

// Whether the argument names anything.
static bool resolve_argument(const char *argument, st_table *scope_list) {
    const mtiRegionIdT region = mfli_find_region(argument);
    if (region != nullptr) {
        if (mfli_debug_level > 0) {
            mfli_message("Found Region %s", argument);
        }
        add_region_to_scope_list(region, scope_list);
        return true;
    }
    const mtiSignalIdT signal = mfli_find_signal(argument);
    if (signal != nullptr) {
        register_named_signal(signal, argument);
        return true;
    }
    mfli_message("Warning (KLVA-PWR): Could not find signal or region for argument %s, Skipping",
                 argument);
    return false;
}

// Registers all that the arguments name; whether that was anything.
static bool register_arguments(list *arguments) {
    st_table *scope_list = create_scope_list();
    bool found = false;
    for (list_walk walk(arguments); walk; walk.step()) {
        found |= resolve_argument(static_cast<const char *>(walk.item()), scope_list);
    }
    if (st_count(scope_list) > 0) {
        mfli_register_activity(scope_list);
    }
    free_scope_list(scope_list);
    return found;
}

void mfli_set(void *command_line) {
    if (!mfli_check_set_region_starting_point()) {
        return;
    }
    list *arguments =
        mfli_parse_cmd_args(static_cast<const char *>(command_line), "set_toggle_region");
    if (arguments->length == 0) {
        mfli_print_text("Set_toggle_region must have at least one argument");
        list_free(arguments, list_data_free);
        return;
    }
    mfli_init_monitor_table();
    mfli_overflow_flag = 0;
    mfli_window_time = 0.0;
    const bool found = register_arguments(arguments);
    list_free(arguments, list_data_free);
    if (mfli_debug_level > 0) {
        mfli_print_monitor_table_brief();
        mfli_print_monitor_table();
    }
    if (found) {
        mfli_init_speed_lists();
        mfli_set_toggle_region_status();
    } else {
        mfli_free_monitor_table();
    }
    mfli_print_text("Information (KLVA-PWR): Completed set_toggle_region");
}
