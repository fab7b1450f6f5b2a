// SPDX-License-Identifier: Apache-2.0
// Splits the one string that a command handler receives, the command's own name first, into its
// arguments. Touches nothing but the line and the message printer.
#ifndef WATTFORGE_PLUGIN_CORE_ARGUMENTS_H
#define WATTFORGE_PLUGIN_CORE_ARGUMENTS_H

#include "plugin/support/linked_list.h"

// The rest of `line` behind the command `name`, not copied; it usually starts with a blank. The
// test is a prefix test: letters that follow the name directly belong to the rest. Null for a null
// line (silently) and for a line that does not begin with the name (with an error line).
const char *mfli_strip_cmd_name(const char *line, const char *name);

// The arguments of `text` in order: what stands between blanks and commas. Tabs, quotes, braces and
// brackets are ordinary characters, and empty arguments are passed over. Always a list (empty for a
// null text) of owned strings: list_free(arguments, list_data_free) releases both.
list *mfli_parse_args(const char *text);

// mfli_parse_args of what mfli_strip_cmd_name leaves of `line`; a line that begins with another
// name gives the error line and an empty list. Lists the arguments from debug level 3 on.
list *mfli_parse_cmd_args(const char *line, const char *name);

#endif
