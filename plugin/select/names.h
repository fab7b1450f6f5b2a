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

// The region's full name; empty when the simulator gives none, or for a null region.
char *mfli_get_region_full_name(mtiRegionIdT region);

// The region of that name, whatever brackets it is written with; null for none.
mtiRegionIdT mfli_find_region(const char *name);

// The kind of the signal's type; one that has no bits when the simulator gives no type.
mtiTypeKindT mfli_get_signal_kind(mtiSignalIdT signal);

// The full name of `signal` in its own region, or in one that lists it.
char *mfli_get_signal_full_name(mtiSignalIdT signal);
char *mfli_get_signal_full_name_in(mtiSignalIdT signal, mtiRegionIdT region);

// The full name of an element of an array or a record in the given `region` (an element's own
// region means nothing): /top/bus(3), /top/rec.field.
char *mfli_get_signal_full_name_indirect(mtiSignalIdT signal, mtiRegionIdT region);

// The region that a signal's name leads to, which need not be the signal's own: a port may be the
// signal above it. That one, when the name has no path or one that leads nowhere.
mtiRegionIdT mfli_region_of_name(const char *name, mtiSignalIdT signal);

// Where a name's last part begins: behind the last "/" outside parentheses and escaped identifiers.
const char *mfli_leaf_of(const char *name);

// The full name of `signal` in the region that the user's name for it leads to: the indirect name
// if the simulator lists it as a part of another, else its name with the user's suffix, if any.
char *mfli_get_signal_full_indexed_name(mtiSignalIdT signal, const char *user_name);

// The signal, element or field of that name, whatever brackets it is written with. A simulator may
// answer to an element's name with the element or with the signal that it is a part of. Null when
// it does not know the name (silently) or when the suffix selects nothing (with
// find_array_element_recur's warnings).
mtiSignalIdT mfli_find_signal(const char *name);

// The element of `signal` that the suffix selects. `signal` itself for a null suffix, and for a
// scalar, whose indices are ignored. Null when nothing is selected: each level of the suffix down
// to the failing one then prints a warning of its own, the innermost first.
mtiSignalIdT find_array_element_recur(mtiSignalIdT signal, const char *suffix);

#endif
