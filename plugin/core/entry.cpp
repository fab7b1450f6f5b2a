// SPDX-License-Identifier: Apache-2.0
// Start and end of the library's life, and the table of its commands.
#include "plugin/core/entry.h"

#include "plugin/core/debug_commands.h"
#include "plugin/core/policy_command.h"
#include "plugin/core/region_command.h"
#include "plugin/core/report_command.h"
#include "plugin/core/rtl_command.h"
#include "plugin/core/window_commands.h"
#include "plugin/monitor/monitor_table.h"
#include "plugin/monitor/value_change.h"
#include "plugin/monitor/window.h"
#include "plugin/rtlsaif/rtl_table.h"
#include "plugin/select/policy.h"
#include "plugin/support/hash_table.h"
#include "plugin/support/messages.h"
#include "plugin/support/run_state.h"

struct Command {
    const char *name;
    mtiVoidFuncPtrT handler;
};

// In the order of registration, which is also the order in which the simulator lists them.
static const Command commands[] = {
    {"toggle_debug_level", mfli_set_debug_level},
    {"set_net_monitoring_policy", mfli_policy},
    {"set_toggle_region", mfli_set},
    {"toggle_start", mfli_start},
    {"toggle_stop", mfli_stop},
    {"toggle_reset", mfli_reset},
    {"toggle_report", mfli_report},
    {"read_rtl_saif", mfli_rtl},
    {"toggle_interrupt", mfli_interrupt},
};

static void release_tables() {
    mfli_free_monitor_table();
    mfli_free_speed_lists();
    mfli_free_rtl_table();
    mfli_free_policy_table();
}

// A simulator that restarts may keep the library, with or without having called mfli_cleanup:
// nothing of the run before, whose handles are stale, may be left.
static void begin_anew() {
    release_tables();
    mfli_debug_level = 0;
    mfli_window_active = 0;
    mfli_overflow_flag = 0;
    mfli_start_time = mfli_stop_time = mfli_window_time = 0.0;
}

void swfli_init(mtiRegionIdT, char *, mtiInterfaceListT *, mtiInterfaceListT *) {
    for (const Command &command : commands) {
        mti_AddCommand(const_cast<char *>(command.name), command.handler);
    }
    begin_anew();
    mfli_policy_table = st_alloc_abo(st_strcmp, st_strhash);
    mfli_print_text("Kelvara power code initialized and linked successfully");
    mti_AddQuitCB(mfli_cleanup, nullptr);
}

void mfli_cleanup(void *) {
    if (mfli_debug_level > 0) {
        mfli_print_text("Information (KLVA-PWR): Cleaning up data structures");
    }
    release_tables();
}
