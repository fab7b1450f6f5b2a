// SPDX-License-Identifier: Apache-2.0
// The word that records which commands have been done, and the operations that set and ask it. The
// rules on their order are the front end's; here because every layer asks.
#ifndef WATTFORGE_PLUGIN_SUPPORT_RUN_STATE_H
#define WATTFORGE_PLUGIN_SUPPORT_RUN_STATE_H

#include <cstdint>

enum : uint32_t {
    MFLI_REGION_CHOSEN = 1,
    MFLI_WINDOW_OPEN = 2,
    MFLI_WINDOW_CLOSED = 4,
    MFLI_REPORT_WRITTEN = 8,
    MFLI_RTL_READ = 128
};

// 0 at load time. Read by the rules of order, written by the operations below alone.
extern uint32_t mfli_window_active;

void mfli_set_read_rtl_status();
void mfli_set_toggle_region_status();
void mfli_set_toggle_start_status();
void mfli_set_toggle_stop_status();
void mfli_set_toggle_report_status();
void mfli_set_toggle_reset_status();

// Non-zero while a counting window is open. Asked on every value change.
inline uint32_t mfli_is_monitoring_window_active() {
    return mfli_window_active & MFLI_WINDOW_OPEN;
}

// Non-zero once a forward RTL SAIF file has been read.
inline uint32_t mfli_is_rtl_read() {
    return mfli_window_active & MFLI_RTL_READ;
}

#endif
