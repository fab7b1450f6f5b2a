// SPDX-License-Identifier: Apache-2.0
// Where the handles of all lists come from: blocks, in which a handle takes its 32 bytes and no
// more and stands next to the one that was made before it. A recorder's spare items are as many as
// the bits of its largest time step, and are gone through in order in every step.
#ifndef WATTFORGE_PLUGIN_SUPPORT_LINKED_LIST_HANDLES_H
#define WATTFORGE_PLUGIN_SUPPORT_LINKED_LIST_HANDLES_H

#include "plugin/support/linked_list.h"

// A handle with nothing in it. Memory is assumed to be had.
list_handle *list_new_handle();

// Gives a handle back. With the last one the memory of all is released.
void list_free_handle(list_handle *handle);

#endif
