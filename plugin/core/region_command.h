// SPDX-License-Identifier: Apache-2.0
// The handler of set_toggle_region: resolves what the user named to signals and regions, has them
// registered (select/), and sets up the value-change machinery (monitor/).
#ifndef WATTFORGE_PLUGIN_CORE_REGION_COMMAND_H
#define WATTFORGE_PLUGIN_CORE_REGION_COMMAND_H

// set_toggle_region NAME...: signals are registered at once, in the order given; regions are
// gathered and registered together at the end. Names that resolve to neither are warned about and
// passed over. If none resolves the state is as before and the command may be given again.
void mfli_set(void *command_line);

#endif
