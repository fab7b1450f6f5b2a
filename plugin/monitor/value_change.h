// SPDX-License-Identifier: Apache-2.0
// Value changes, in two stages a time step. The tracking process of a signal wakes on each of its
// events and only marks its element and lists it as changed. The counting processes run postponed,
// after all other activity of the step; the first of them updates every listed element once, with
// the value that the signal has at the end of the step. A pulse within a step is therefore not
// counted. Nothing is marked while no counting window is open.
//
// In the steady state nothing here allocates: the items of the changed list are recycled. The
// current time is read once for each step in which something changed.
#ifndef WATTFORGE_PLUGIN_MONITOR_VALUE_CHANGE_H
#define WATTFORGE_PLUGIN_MONITOR_VALUE_CHANGE_H

#include "plugin/monitor/monitor_table.h"

#include <cstdint>

// The functions of the processes klva_track_toggles (parameter: the MonitorElement) and
// klva_count_toggles (parameter unused).
void mfli_process_event(void *parameter);
void mfli_update_event_count(void *unused);

// Brings one element up to date at the end of a step whose time is `now`: credits the ticks since
// its last change to each bit's old state, then counts each bit's way to its new one.
void update_saif_sa(MonitorElement *element, mtiTime64T now);

// Adds `ticks` to the duration that the bit's state stands for.
void mfli_update_saif_timing(BitActivity *bit, double ticks);

// Runs the bit's state machine with a new mapped value (0, 1, or 2 for X): counts a toggle or a
// glitch where one is due, and moves on.
void mfli_update_saif_toggles_and_state(BitActivity *bit, int32_t value);

// Creates the changed list and the list of its spare items, if they are not there; frees them.
void mfli_init_speed_lists();
void mfli_free_speed_lists();

// Appends an element to the changed list, in a spare item if there is one.
void add_to_changed_list(MonitorElement *element);

// Makes all items of the changed list spare ones.
void empty_changed_list();

#endif
