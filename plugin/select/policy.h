// SPDX-License-Identifier: Apache-2.0
// The net monitoring policy: whether a region's own signals are registered. A region that was not
// named inherits from the nearest named one around it, else the default holds.
#ifndef WATTFORGE_PLUGIN_SELECT_POLICY_H
#define WATTFORGE_PLUGIN_SELECT_POLICY_H

#include <mti.h>

#include "plugin/support/hash_table.h"

#include <cstdint>

// Policy values. "rtl_on" registers as "on" does and sets the flag that registration passes down.
enum : int32_t {
    MFLI_POLICY_NONE = 0,  // no keyword seen yet, no entry found; never stored
    MFLI_POLICY_OFF = 1,
    MFLI_POLICY_ON = 2,
    MFLI_POLICY_RTL_ON = 3
};

// From a region's full name (an owned copy) to its policy value. Created by swfli_init, freed at
// quit; it only grows.
extern st_table *mfli_policy_table;

// Records a policy for a region. The first policy recorded for a region stands; a later one is
// ignored without a message.
void add_to_policy_table(mtiRegionIdT region, int32_t policy);

// The policy (1, 2 or 3) of the region with that full name: that of the longest entry with which
// the name begins, else the default.
int32_t mfli_get_policy_for_region(const char *full_name);

// "off" once a forward RTL SAIF file has been read, else "on".
int32_t mfli_get_default_policy();

// A policy for the whole gate level that the user might set; no command sets it, so it is 0.
int32_t mfli_get_user_policy();

// Prints one line for each entry, in the order of recording.
void print_policy_table();

// Frees the names and the table and sets mfli_policy_table to null.
void mfli_free_policy_table();

#endif
