// SPDX-License-Identifier: Apache-2.0
// The way in and the way out: what the simulator calls when it loads the library and when it quits.
#ifndef WATTFORGE_PLUGIN_CORE_ENTRY_H
#define WATTFORGE_PLUGIN_CORE_ENTRY_H

#include <mti.h>

// Called by the simulator at load time, and again if it restarts without unloading the library,
// with the region, parameter text, generics and ports of a foreign architecture; all may be null
// and none is used. Registers the nine commands, puts the library's globals in their start state,
// prints the start-up line and registers mfli_cleanup.
extern "C" __attribute__((visibility("default"))) void swfli_init(mtiRegionIdT region,
                                                                  char *parameter,
                                                                  mtiInterfaceListT *generics,
                                                                  mtiInterfaceListT *ports);

// The quit callback: releases the monitor table, the speed lists, the RTL table and the policy
// table, in this order. What was never created is passed over. The parameter is not used.
void mfli_cleanup(void *parameter);

#endif
