// SPDX-License-Identifier: Apache-2.0
// The order of commands: read_rtl_saif and set_net_monitoring_policy, then set_toggle_region once,
// then windows of toggle_start and toggle_stop, toggle_report, toggle_reset. The state itself, and
// the operations that record what was done, are in support/run_state.h.
#ifndef WATTFORGE_PLUGIN_CORE_ORDER_H
#define WATTFORGE_PLUGIN_CORE_ORDER_H

// One check for each command that has a place in the order. 1: the command may run. 0: it may not,
// the refusal has been printed, and the handler has nothing more to do.
int mfli_check_rtl_starting_point();
int mfli_check_set_policy_starting_point();
int mfli_check_set_region_starting_point();
int mfli_check_toggle_start_starting_point();
int mfli_check_toggle_stop_starting_point();
int mfli_check_toggle_report_starting_point();
int mfli_check_toggle_reset_starting_point();

#endif
