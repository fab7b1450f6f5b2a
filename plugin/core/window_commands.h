// SPDX-License-Identifier: Apache-2.0
// The handlers of toggle_start, toggle_stop and toggle_reset: they ask the order rules, keep the
// window's clock and leave the bits to monitor/window.h. Their arguments are ignored.
#ifndef WATTFORGE_PLUGIN_CORE_WINDOW_COMMANDS_H
#define WATTFORGE_PLUGIN_CORE_WINDOW_COMMANDS_H

// toggle_start: opens a counting window now.
void mfli_start(void *command_line);

// toggle_stop: closes the window and adds its length to mfli_window_time. A window that ends before
// it began has length 0 and is warned about once a run.
void mfli_stop(void *command_line);

// toggle_reset: forgets the activity and the length of all windows so far.
void mfli_reset(void *command_line);

#endif
