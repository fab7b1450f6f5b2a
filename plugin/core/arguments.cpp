// SPDX-License-Identifier: Apache-2.0
// Cuts the command's name off a line and splits the rest.
#include "plugin/core/arguments.h"

#include "plugin/support/messages.h"
#include "plugin/support/text.h"

#include <cstdlib>
#include <cstring>

static bool is_separator(char c) {
    return c == ' ' || c == ',';
}

static void append_argument(list *arguments, const char *token) {
    char *argument = mfli_strdup(token);
    if (argument == nullptr) {
        return;
    }
    list_append(arguments, argument);
    // At this one level only: the levels above show the split line, not its making.
    if (mfli_debug_level == 4) {
        mfli_print_text(argument);
    }
}

const char *mfli_strip_cmd_name(const char *line, const char *name) {
    if (line == nullptr) {
        return nullptr;
    }
    if (mfli_substring_position(line, name) != 0) {
        mfli_print_text("Error (KLVA-PWR): unexpected command name");
        return nullptr;
    }
    return line + strlen(name);
}

list *mfli_parse_args(const char *text) {
    list *arguments = list_alloc();
    if (text == nullptr) {
        return arguments;
    }
    const size_t length = strlen(text);
    if (mfli_debug_level > 3) {
        mfli_message("In Parse args: param=%s; strlen=%d", text, static_cast<int>(length));
    }
    char *scratch = static_cast<char *>(malloc(length + 1));
    if (scratch == nullptr) {
        return arguments;
    }
    size_t start = 0;
    for (size_t i = 0; i <= length; ++i) {
        if (i != length && !is_separator(text[i])) {
            continue;
        }
        if (i != start) {
            memcpy(scratch, text + start, i - start);
            scratch[i - start] = '\0';
            append_argument(arguments, scratch);
        }
        start = i + 1;
    }
    free(scratch);
    return arguments;
}

list *mfli_parse_cmd_args(const char *line, const char *name) {
    list *arguments = mfli_parse_args(mfli_strip_cmd_name(line, name));
    if (mfli_debug_level >= 3) {
        mfli_message("Printing args for command %s:", name);
        for (list_walk walk(arguments); walk; walk.step()) {
            mfli_print_text(static_cast<const char *>(walk.item()));
        }
    }
    return arguments;
}
