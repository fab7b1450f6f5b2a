// SPDX-License-Identifier: Apache-2.0
// The handlers of toggle_debug_level and toggle_interrupt, the two commands that may be given at
// any time. A handler receives the command line as typed (a char *).
#ifndef WATTFORGE_PLUGIN_CORE_DEBUG_COMMANDS_H
#define WATTFORGE_PLUGIN_CORE_DEBUG_COMMANDS_H

// toggle_debug_level [LEVEL]: stores the level first and judges it afterwards, so that a negative
// level is reported as an error and stays, with all diagnostics off. No level is level 0.
void mfli_set_debug_level(void *command_line);

// toggle_interrupt: sends the simulator's own process SIGINT, as its interrupt key would. Silent.
void mfli_interrupt(void *command_line);

#endif
