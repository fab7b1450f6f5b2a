// SPDX-License-Identifier: Apache-2.0
// The monitor table: one MonitorElement for each watched scalar signal, with the state and the
// switching activity of each of its bits. Registration fills it, value changes and the counting
// window update it, the report reads it.
//
// How an element lies in memory. Its lines hold what counting a change touches and no more:
//
//   signal, last change | bit 0 | bit 1 | ...
//
// A one-bit signal, which nearly all are, is one cache line. Its name and its dirty mark lie at the
// front of the chunk of memory that it stands in (monitor/element_store.h), its further names,
// which hardly any signal has, in a table of their own. Elements lie in the order of registration,
// which is also the order in which the table is walked.
#ifndef WATTFORGE_PLUGIN_MONITOR_MONITOR_TABLE_H
#define WATTFORGE_PLUGIN_MONITOR_MONITOR_TABLE_H

#include <mti.h>

#include "plugin/monitor/element_store.h"
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

// One watched bit: its state and its activity. Width and type code are the element's, the same in
// each of its bits; they stand here because the place is free and on the line.
struct BitActivity {
    int32_t state;      // MFLI_STATE_*
    int16_t width;      // number of watched bits of the signal
    int16_t type_code;  // scalar type code (select/types.h)
    double t1;          // durations in ticks, as in saif_timing_attribute
    double t0;
    double tx;
    double tc;  // counts, as in saif_toggle_attribute
    double ig;
};

// One watched scalar signal.
struct MonitorElement {
    mtiSignalIdT signal;     // the simulator's handle, not owned
    mtiTime64T last_change;  // when the states last changed or the counting started
    BitActivity bits[1];     // as many as the signal has watched bits, bit 0 first

    int32_t width() const { return bits[0].width; }
    int32_t type_code() const { return bits[0].type_code; }
};

// Promised, because a million watched bits are common and a change of level must not touch more
// than one line of the element.
static_assert(sizeof(void *) != 8 || sizeof(MonitorElement) == MFLI_LINE,
              "a one-bit element is one cache line");
static_assert(sizeof(BitActivity) == 48, "a further bit is three quarters of one");

// Bit `i` of the element, below its width.
inline BitActivity *mfli_bit(MonitorElement *element, int32_t i) {
    return static_cast<BitActivity *>(element->bits) + i;
}
inline const BitActivity *mfli_bit(const MonitorElement *element, int32_t i) {
    return static_cast<const BitActivity *>(element->bits) + i;
}

// The full name under which the signal was first registered. The text stays until the next call for
// any element.
inline const char *mfli_element_name(const MonitorElement *element) {
    return mfli_stored_name(element);
}

// Its further full names (texts) in order; null when there is none. The element's.
list *mfli_element_aliases(const MonitorElement *element);

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

// A switching record with its timing and toggle records, all as their init operations leave them.
// Memory is assumed to be had. free_saif_switching_struct releases the three and ignores null.
saif_switching_attribute *init_saif_switching_struct();
void free_saif_switching_struct(saif_switching_attribute *record);

// Puts a bit's durations and counts into the switching record, for whoever prints them.
void mfli_read_activity(const BitActivity *bit, saif_switching_attribute *record);

// Puts a bit back to where it began: nothing counted, MFLI_STATE_X.
void mfli_reset_bit(BitActivity *bit);

// Says that memory has run out for a signal, which will be missing in reports under that name; the
// name is null when even that could not be had.
void mfli_tell_unrecorded(const char *name);

// Records a further name of the element; one that it already has changes nothing. Says so when
// memory has run out.
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
