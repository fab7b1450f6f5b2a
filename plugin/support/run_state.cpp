// SPDX-License-Identifier: Apache-2.0
// The word of what has been done.
#include "plugin/support/run_state.h"

uint32_t mfli_window_active = 0;

static void change(uint32_t set, uint32_t clear) {
    mfli_window_active = (mfli_window_active & ~clear) | set;
}

void mfli_set_read_rtl_status() {
    change(MFLI_RTL_READ, 0);
}

void mfli_set_toggle_region_status() {
    change(MFLI_REGION_CHOSEN, 0);
}

void mfli_set_toggle_start_status() {
    change(MFLI_WINDOW_OPEN, MFLI_WINDOW_CLOSED);
}

void mfli_set_toggle_stop_status() {
    change(MFLI_WINDOW_CLOSED, MFLI_WINDOW_OPEN);
}

void mfli_set_toggle_report_status() {
    change(MFLI_REPORT_WRITTEN, 0);
}

void mfli_set_toggle_reset_status() {
    change(0, MFLI_WINDOW_OPEN | MFLI_WINDOW_CLOSED | MFLI_REPORT_WRITTEN);
}
