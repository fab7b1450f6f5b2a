// SPDX-License-Identifier: Apache-2.0
// The ScopeList: the regions that one set_toggle_region gathers before it walks them. An st_table
// from a region's full name (an owned copy) to its handle, in the order in which they were named.
#ifndef WATTFORGE_PLUGIN_SELECT_SCOPE_LIST_H
#define WATTFORGE_PLUGIN_SELECT_SCOPE_LIST_H

#include <mti.h>

#include "plugin/support/hash_table.h"

// An empty ScopeList; free_scope_list releases it with its names.
st_table *create_scope_list();
void free_scope_list(st_table *scope_list);

// Adds a region, unless its full name begins with that of a listed one or the other way round: of
// two nested regions the one that was named first is kept. The test is the plain prefix test of
// mfli_first_in_second_region, for which /top/u10 lies in /top/u1.
void add_region_to_scope_list(mtiRegionIdT region, st_table *scope_list);

#endif
