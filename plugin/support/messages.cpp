// SPDX-License-Identifier: Apache-2.0
// Messages to the simulator's transcript.
#include "plugin/support/messages.h"

#include "plugin/support/c_numbers.h"

#include <mti.h>

#include <cstdarg>
#include <cstdio>

char mfli_msg_buf[1024];
int32_t mfli_debug_level = 0;

void mfli_message(const char *format, ...) {
    const mfli_c_numbers with_a_point;
    va_list arguments;
    va_start(arguments, format);
    // The analyser loses sight of a list that has been started, when it reads several files.
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
    vsnprintf(mfli_msg_buf, sizeof(mfli_msg_buf), format, arguments);
    va_end(arguments);
    mti_PrintMessage(mfli_msg_buf);
}

void mfli_print_text(const char *text) {
    mti_PrintMessage(const_cast<char *>(text));
}

void mfli_print(const char *format, int32_t value) {
    // Zero means no argument; a format without a conversion takes no notice of one.
    snprintf(mfli_msg_buf, sizeof(mfli_msg_buf), format, value);
    mti_PrintMessage(mfli_msg_buf);
}
