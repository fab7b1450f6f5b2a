// SPDX-License-Identifier: Apache-2.0
// The names of the simulator's signals and array elements, and the way from a name back to a
// signal. The pure text routines are in support/text.h.
//
// A full name is the region's path, "/" and the signal's name: /top/u1/clk. An index suffix is a
// run of indices in parentheses behind it: (3) or (3)(1), the outermost dimension first. An index
// is a value of the declared range; a position counts from 0 at the left of that range. Every text
// returned is the caller's to free().
#ifndef WATTFORGE_PLUGIN_SELECT_NAMES_H
#define WATTFORGE_PLUGIN_SELECT_NAMES_H

#include <mti.h>

#include <cstdint>

// The position of `index` in the range of `array_type`, -1 for a type without a direction. The
// caller checks that it lies within the type's length.
int64_t convert_index_to_position(mtiTypeIdT array_type, int64_t index);

// The full name of `signal` in its own region.
char *mfli_get_signal_full_name(mtiSignalIdT signal);

// The full name of an element of an array or a record in the given `region` (an element's own
// region means nothing): /top/bus(3), /top/rec.field.
char *mfli_get_signal_full_name_indirect(mtiSignalIdT signal, mtiRegionIdT region);

// The full name of `signal` with the index suffix, if any, of the name that the user wrote for it.
char *mfli_get_signal_full_indexed_name(mtiSignalIdT signal, const char *user_name);

// The signal or array element of that name; null when the simulator does not know the signal
// (silently) or when the indices select no element (with find_array_element_recur's warnings).
mtiSignalIdT mfli_find_signal(const char *name);

// The element of `signal` that the suffix selects. `signal` itself for a null suffix, and for a
// scalar, whose indices are ignored. Null when nothing is selected: each level of the suffix down
// to the failing one then prints a warning of its own, the innermost first.
mtiSignalIdT find_array_element_recur(mtiSignalIdT signal, const char *suffix);

#endif
