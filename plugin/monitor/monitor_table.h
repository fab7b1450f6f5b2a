// SPDX-License-Identifier: Apache-2.0
// The monitor table: one MonitorElement for each watched scalar signal, with the state and the
// switching activity of each of its bits. Registration fills it, value changes and the counting
// window update it, the report reads it.
//
// How an element lies in memory. One block, aligned to a cache line, holds in this order:
//
//   MonitorElement | MonitorBit 0 | MonitorBit 1 | ... | bits[0..width-1]
//
// A one-bit signal, which nearly all are, takes three lines, of which a change of level touches
// two: the element, and the first line of its bit, which holds the state, the counts and the
// durations at 1 and at 0. The time at X lies with the pointers in the third. Blocks and names are
// carved from large chunks (monitor/element_store.h), in the order of registration, which is also
// the order in which the table is walked.
#ifndef WATTFORGE_PLUGIN_MONITOR_MONITOR_TABLE_H
#define WATTFORGE_PLUGIN_MONITOR_MONITOR_TABLE_H

#include <mti.h>

#include "plugin/saif/attributes.h"
#include "plugin/support/hash_table.h"
#include "plugin/support/linked_list.h"

#include <cstddef>
#include <cstdint>

// States of a bit. The first two and MFLI_STATE_X are also what a value maps to (select/types.h).
enum : int32_t {
    MFLI_STATE_0 = 0,
    MFLI_STATE_1 = 1,
    MFLI_STATE_X = 2,         // unknown, no known level before it: at creation and between windows
    MFLI_STATE_X_FROM_0 = 3,  // unknown, entered from 0
    MFLI_STATE_X_FROM_1 = 4,  // unknown, entered from 1
    MFLI_STATES = 5
};

// One watched bit.
struct BitActivity {
    int32_t state;                        // MFLI_STATE_*
    saif_switching_attribute *switching;  // durations in ticks, counts; in the same MonitorBit
};

// A bit and its records, next to each other.
struct MonitorBit {
    BitActivity activity;
    saif_toggle_attribute toggle;
    saif_timing_attribute timing;
    saif_switching_attribute switching;
};

// One watched scalar signal.
struct MonitorElement {
    char *name;              // full name under which the signal was first registered; owned
    mtiSignalIdT signal;     // the simulator's handle, not owned
    int32_t width;           // number of watched bits
    int32_t msb;             // 0; printed only
    int32_t lsb;             // 0; printed only
    mtiTime64T last_change;  // when the states last changed or the counting started
    int32_t type_code;       // scalar type code (select/types.h)
    int32_t dirty;           // non-zero while it waits in the changed list of the time step
    BitActivity **bits;      // `width` of them, bit 0 first; owned
    list *aliases;           // further full names (owned strings) in order; null until the first
};

// Promised, because a million watched bits are common and a change of level must not touch more
// than the element's line and one more.
static_assert(sizeof(void *) != 8 || sizeof(MonitorElement) == 64, "an element is one cache line");
static_assert(sizeof(void *) != 8 || sizeof(MonitorBit) + sizeof(void *) <= 128,
              "a bit and its pointer are two lines");
static_assert(sizeof(void *) != 8 ||
                  offsetof(MonitorBit, timing) + offsetof(saif_timing_attribute, tx) <= 64,
              "state, counts and the durations at 0 and 1 share a line");

// The records of all bits of an element, without a load from its `bits`: a counting step reaches
// every line of an element at once.
inline MonitorBit *mfli_monitor_bits(MonitorElement *element) {
    return reinterpret_cast<MonitorBit *>(element + 1);
}

// From signal handle to MonitorElement, in order of registration. Null until set_toggle_region
// creates it.
extern st_table *mfli_monitor_table;

// Creates the empty table; a table that was there before is not released.
void mfli_init_monitor_table();

// A new element of `signal`, all bits in MFLI_STATE_X with nothing counted, its last change now; it
// copies `name` and classifies the signal's type, with that unit's error lines. The caller enters
// it in the table. mfli_free_monitor_element releases it.
MonitorElement *mfli_init_monitor_element(mtiSignalIdT signal, const char *name);

// Releases an element with all that it owns; null is ignored.
void mfli_free_monitor_element(MonitorElement *element);

// A switching record on its own, with its timing and toggle records, all as their init operations
// leave them; free_saif_switching_struct releases the three. The records of an element are part of
// its block and never passed to it.
saif_switching_attribute *init_saif_switching_struct();
void free_saif_switching_struct(saif_switching_attribute *record);

// Records a further name of the element; one that it already has changes nothing.
void mfli_add_name_to_monitor(const char *name, MonitorElement *element);

// Releases all elements and the table, if there is one, and sets mfli_monitor_table to null.
void mfli_free_monitor_table();

// Calls `visit` for each element in table order, with `context` handed through. An entry without an
// element is visited as null. Without a table nothing is visited.
void mfli_visit_monitor_table(void (*visit)(MonitorElement *element, void *context), void *context);

// Debug listings, in table order: all fields and bits; one element; the bits of one element; names.
void mfli_print_monitor_table();
void mfli_print_monitor_element(const MonitorElement *element);
void print_saif_sa(const MonitorElement *element);
void mfli_print_monitor_table_brief();

#endif
