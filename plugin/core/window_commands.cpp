// SPDX-License-Identifier: Apache-2.0
// toggle_start, toggle_stop and toggle_reset.
#include "plugin/core/window_commands.h"

#include "plugin/core/order.h"
#include "plugin/monitor/sim_time.h"
#include "plugin/monitor/window.h"
#include "plugin/support/messages.h"
#include "plugin/support/run_state.h"

// The simulator's clock may have gone backwards (an overflow): such a window has no length.
static double window_length() {
    const double length = mfli_stop_time - mfli_start_time;
    if (!(length < 0.0)) {
        return length;
    }
    if (mfli_overflow_flag == 0) {
        mfli_overflow_flag = 1;
        mfli_message("Warning (KLVA-PWR): System time overflow at time %f, start_time %f",
                     mfli_stop_time, mfli_start_time);
    }
    return 0.0;
}

void mfli_start(void *) {
    if (!mfli_check_toggle_start_starting_point()) {
        return;
    }
    mfli_set_toggle_start_status();
    mfli_start_time = mfli_current_ticks();
    mfli_message("Information (KLVA-PWR): Turned on counting window at time %f", mfli_start_time);
    init_saif_calculations();
}

void mfli_stop(void *) {
    if (!mfli_check_toggle_stop_starting_point()) {
        return;
    }
    mfli_set_toggle_stop_status();
    mfli_stop_time = mfli_current_ticks();
    mfli_window_time += window_length();
    complete_saif_calcutations();
    mfli_message("Information (KLVA-PWR): Turned off counting window at time %f", mfli_stop_time);
}

void mfli_reset(void *) {
    if (!mfli_check_toggle_reset_starting_point()) {
        return;
    }
    mfli_set_toggle_reset_status();
    reset_saif_calculations();
    mfli_window_time = 0.0;
    mfli_message("Information (KLVA-PWR): Resetting counting windows at time %f",
                 mfli_current_ticks());
}
