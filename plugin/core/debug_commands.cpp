// SPDX-License-Identifier: Apache-2.0
// toggle_debug_level and toggle_interrupt.
#include "plugin/core/debug_commands.h"

#include "plugin/core/arguments.h"
#include "plugin/support/messages.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdlib>

static const char command_name[] = "toggle_debug_level";

static void print_argument_error() {
    mfli_message("Error (KLVA-PWR): incorrect arguments to %s", command_name);
}

void mfli_set_debug_level(void *command_line) {
    const char *rest = mfli_strip_cmd_name(static_cast<const char *>(command_line), command_name);
    if (rest == nullptr) {
        print_argument_error();
        return;
    }
    const long long level = strtoll(rest, nullptr, 10);
    mfli_debug_level = static_cast<int32_t>(std::clamp<long long>(level, INT32_MIN, INT32_MAX));
    if (mfli_debug_level < 0) {
        print_argument_error();
    } else {
        mfli_message("Setting debug level to %d", mfli_debug_level);
    }
}

void mfli_interrupt(void *) {
    kill(getpid(), SIGINT);
}
