// SPDX-License-Identifier: Apache-2.0
// Everything that the plug-in says in the simulator's transcript goes through here. The one place
// that calls mti_PrintMessage.
#ifndef WATTFORGE_PLUGIN_SUPPORT_MESSAGES_H
#define WATTFORGE_PLUGIN_SUPPORT_MESSAGES_H

#include <cstdint>

// Where messages are formatted. A message is complete before the next one begins; a longer one is
// cut.
extern char mfli_msg_buf[1024];

// How much diagnostic output is wanted: 0 none; set by toggle_debug_level.
extern int32_t mfli_debug_level;

// One message line, formatted as by printf.
void mfli_message(const char *format, ...) __attribute__((format(printf, 1, 2)));

// One message line of a plain text.
void mfli_print_text(const char *text);

// One message line with at most one integer, which is the format's argument.
void mfli_print(const char *format, int32_t value);

#endif
