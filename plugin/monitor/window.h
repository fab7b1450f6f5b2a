// SPDX-License-Identifier: Apache-2.0
// The counting window: its clock, and what its opening, closing and resetting do to every watched
// bit. The commands that open and close it are in core/window_commands.h; whether it is open stands
// in support/run_state.h.
//
// The window's length is a difference of converted times, the bits' durations are converted
// differences; both clocks run from opening to closing, so T0 + T1 + TX of a bit is the length.
#ifndef WATTFORGE_PLUGIN_MONITOR_WINDOW_H
#define WATTFORGE_PLUGIN_MONITOR_WINDOW_H

#include <cstdint>

// Ticks.
extern double mfli_start_time;   // the last toggle_start
extern double mfli_stop_time;    // the last toggle_stop
extern double mfli_window_time;  // length of all closed windows since the choice of region or reset

// 1 once a window that ended before it began has been warned about.
extern int32_t mfli_overflow_flag;

// Each goes once over all elements of the monitor table and clears their dirty flags, so that a
// counting step that is still pending passes over what was marked before.

// Opening: every bit takes its state from the signal's current value; nothing is counted.
void init_saif_calculations();

// Closing: every bit is credited with the time since its last change and goes to MFLI_STATE_X.
void complete_saif_calcutations();

// Resetting: all durations and counts are cleared and every bit goes to MFLI_STATE_X.
void reset_saif_calculations();

#endif
