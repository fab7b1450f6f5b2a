// SPDX-License-Identifier: Apache-2.0
// Registration: from the user's choice to watched scalars. Each scalar, or scalar element of an
// array or record, gets one MonitorElement (monitor/monitor_table.h) and two simulator processes
// that wake on each of its events:
//
//   klva_track_toggles  normal     mfli_process_event        marks the element as changed
//   klva_count_toggles  postponed  mfli_update_event_count   counts all that changed in the step
//
// A signal handle is registered at most once; further names of it become aliases of its element.
// No failure stops a walk: what cannot be registered gets a warning of its own. The work is linear
// in the number of bits. `flag` is 1 for signals of a region whose policy is "rtl_on"; it is handed
// down and changes nothing in what is registered. Element and name texts stay the caller's.
#ifndef WATTFORGE_PLUGIN_SELECT_REGISTRATION_H
#define WATTFORGE_PLUGIN_SELECT_REGISTRATION_H

#include <mti.h>

#include "plugin/support/hash_table.h"

// Registers everything chosen: the RTL objects first, if a forward RTL SAIF file has been read,
// then the regions of the ScopeList (select/scope_list.h).
void mfli_register_activity(st_table *scope_list);

// Registers the objects of mfli_rtl_table that lie in a region of the ScopeList.
void register_rtl_activity(st_table *scope_list);

// Registers each region of the ScopeList, in its order.
void register_gate_level_activity(st_table *scope_list);

// Registers the region's own signals if its policy says so, then its sub-regions, depth first.
// Packages, subprograms and the like are left out with all below them.
void register_region(mtiRegionIdT region);

// Registers one signal, by the kind of its type. `name` is used for scalars, and for the region
// that it leads to: the elements of a composite are named afresh in that.
void mfli_register_net(mtiSignalIdT signal, const char *name, int flag);

// Makes the element and the processes of one scalar, or adds the name to its element.
void register_single_net(mtiSignalIdT signal, const char *name);

// Register the elements of a composite, level by level.
void register_array(mtiSignalIdT signal, mtiRegionIdT region, int flag);
void register_record(mtiSignalIdT signal, mtiRegionIdT region, int flag);

#endif
