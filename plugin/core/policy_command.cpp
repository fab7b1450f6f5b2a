// SPDX-License-Identifier: Apache-2.0
// set_net_monitoring_policy.
#include "plugin/core/policy_command.h"

#include "plugin/core/arguments.h"
#include "plugin/core/order.h"
#include "plugin/select/names.h"
#include "plugin/select/policy.h"
#include "plugin/support/messages.h"

#include <strings.h>

#include <cstring>

static const char command_name[] = "set_net_monitoring_policy";

static void strip_trailing_blanks(char *line) {
    for (size_t n = line == nullptr ? 0 : strlen(line); n > 0 && line[n - 1] == ' '; --n) {
        line[n - 1] = '\0';
    }
}

// The policy value of a keyword, MFLI_POLICY_NONE for any other word.
static int32_t policy_of_keyword(const char *word) {
    static const struct {
        const char *keyword;
        int32_t policy;
    } keywords[] = {
        {"off", MFLI_POLICY_OFF}, {"on", MFLI_POLICY_ON}, {"rtl_on", MFLI_POLICY_RTL_ON}};
    for (const auto &row : keywords) {
        if (strcasecmp(word, row.keyword) == 0) {
            return row.policy;
        }
    }
    return MFLI_POLICY_NONE;
}

static void set_region_policy(const char *argument, int32_t policy) {
    const mtiRegionIdT region = mfli_find_region(argument);
    if (region == nullptr) {
        mfli_message("Warning (KLVA-PWR): Could not find Region %s; Skipping", argument);
        return;
    }
    if (mfli_debug_level > 1) {
        mfli_message("Found Region %s", argument);
    }
    add_to_policy_table(region, policy);
}

// Keywords change the policy for the regions behind them; only the first argument must be one.
static void apply_arguments(list *arguments) {
    int32_t policy = MFLI_POLICY_NONE;
    for (list_walk walk(arguments); walk; walk.step()) {
        const char *argument = static_cast<const char *>(walk.item());
        const int32_t keyword = policy_of_keyword(argument);
        if (keyword != MFLI_POLICY_NONE) {
            policy = keyword;
        } else if (policy != MFLI_POLICY_NONE) {
            set_region_policy(argument, policy);
        } else {
            // Names two of the three keywords.
            mfli_print_text("Error (KLVA-PWR): First argument must be \"on\" or \"off\"");
            return;
        }
    }
}

void mfli_policy(void *command_line) {
    if (!mfli_check_set_policy_starting_point()) {
        return;
    }
    char *line = static_cast<char *>(command_line);
    strip_trailing_blanks(line);
    list *arguments = mfli_parse_cmd_args(line, command_name);
    if (arguments->length < 2) {
        mfli_message("Error (KLVA-PWR): %s must have at least two arguments", command_name);
    } else {
        apply_arguments(arguments);
        if (mfli_debug_level > 1) {
            print_policy_table();
        }
    }
    list_free(arguments, list_data_free);
    mfli_print_text("Information (KLVA-PWR): Net monitoring policy done");
}
