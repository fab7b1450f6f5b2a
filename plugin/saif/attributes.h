// SPDX-License-Identifier: Apache-2.0
// The records that carry SAIF data inside the plug-in: a file's header and a bit's durations and
// counts, which recording and the report use; and those of RTL objects, libraries, paths and
// states, which complete the model. Plain data with create, init and free operations, no behaviour.
//
// A create operation allocates a record and initialises it; the matching free operation releases
// it with what the comments say it owns. A record that lies inside a larger block is initialised
// by its init operation and never passed to its free operation.
#ifndef WATTFORGE_PLUGIN_SAIF_ATTRIBUTES_H
#define WATTFORGE_PLUGIN_SAIF_ATTRIBUTES_H

#include <cstdint>
#include <cstdio>

#include "plugin/saif/saif_list.h"

// The header of one SAIF file. Owns its texts, not its stream.
struct saif_header {
    double duration;           // DURATION, in units of the timescale; 0
    float timescale_value;     // the number of TIMESCALE; 1
    dstring *timescale_unit;   // the unit of TIMESCALE; "ns"
    dstring *saif_version;     // what stands after SAIFVERSION, double quotes included; 2.0 (bare)
    dstring *design;           // DESIGN; null
    dstring *date;             // not written: the writer takes the time of writing; null
    dstring *vendor;           // VENDOR; "Kelvara, Inc"
    dstring *program_name;     // PROGRAM_NAME; null
    dstring *program_version;  // VERSION; null
    FILE *output;              // where the writer writes, opened and closed by the caller; null
    int32_t direction;         // 0 backward, else forward; 0
    char divider;              // hierarchy divider; '.'
};

// How long one bit was at each level, in the simulator's ticks. T1 stands before T0 although the
// file has them the other way round.
struct saif_timing_attribute {
    double t1;
    double t0;
    double tx;
    double further[2];  // two more durations of the model; nothing writes or prints them
};

// How often one bit changed.
struct saif_toggle_attribute {
    double tc;       // transitions between 0 and 1
    double ig;       // glitches: left a level for X and came back to it
    double further;  // one more count of the model
    double marker;   // starts at -1, unlike the rest
};

// The activity of one bit. Owns neither record: whoever made them frees them.
struct saif_switching_attribute {
    saif_timing_attribute *timing;
    saif_toggle_attribute *toggle;
    int32_t further[2];  // unused, zero
};

// Every watched bit carries one of each.
static_assert(sizeof(saif_timing_attribute) == 40, "five durations");
static_assert(sizeof(saif_toggle_attribute) == 32, "four counts");
static_assert(sizeof(void *) != 8 || sizeof(saif_switching_attribute) == 24,
              "two pointers and two words");

// An RTL object's texts (owned) and one plain word.
struct saif_rtl_attribute {
    dstring *text[4];
    int32_t word;
};

// A library's texts (owned) and its kind, 2 at the start.
struct saif_lib_attribute {
    dstring *text[4];
    int32_t kind;
};

// Path-dependent activity: a list (owned) of saif_toggle_attribute, which it owns too.
struct saif_path_attribute {
    saif_list *paths;
};

// State-dependent activity: a list (owned) of saif_state_simple_attribute, which it owns too.
struct saif_state_attribute {
    saif_list *states;
};

// The activity in one state. Owns the toggle and the path record.
struct saif_state_simple_attribute {
    int32_t first;                  // 0
    saif_toggle_attribute *toggle;  // null
    int32_t kind;                   // 2
    saif_path_attribute *path;      // null
    int32_t last;                   // not touched by the init operation
};

saif_header *saif_create_header_struct();
void saif_init_header(saif_header *header);
void saif_free_header_struct(saif_header *header);

saif_switching_attribute *saif_create_switching_attribute_struct();
void saif_init_switching_attribute(saif_switching_attribute *record);
void saif_free_switching_attribute_struct(saif_switching_attribute *record);

saif_timing_attribute *saif_create_timing_attribute_struct();
void saif_init_timing_attribute(saif_timing_attribute *record);
void saif_free_timing_attribute_struct(saif_timing_attribute *record);

saif_toggle_attribute *saif_create_toggle_attribute_struct();
void saif_init_toggle_attribute(saif_toggle_attribute *record);
void saif_free_toggle_attribute_struct(saif_toggle_attribute *record);

saif_rtl_attribute *saif_create_rtl_attribute_struct();
void saif_init_rtl_attribute(saif_rtl_attribute *record);
void saif_free_rtl_attribute_struct(saif_rtl_attribute *record);

saif_lib_attribute *saif_create_lib_attribute_struct();
void saif_init_lib_attribute(saif_lib_attribute *record);
void saif_free_lib_attribute_struct(saif_lib_attribute *record);

saif_path_attribute *saif_create_path_attribute_struct();
void saif_init_path_attribute(saif_path_attribute *record);
void saif_free_path_attribute_struct(saif_path_attribute *record);  // a null list is passed over

saif_state_attribute *saif_create_state_attribute_struct();
void saif_init_state_attribute(saif_state_attribute *record);
void saif_free_state_attribute_struct(saif_state_attribute *record);  // the list must not be null

saif_state_simple_attribute *saif_create_state_simple_attribute_struct();
void saif_init_state_simple_attribute(saif_state_simple_attribute *record);
void saif_free_state_simple_attribute_struct(saif_state_simple_attribute *record);

// Delete functions of the lists above: free an entry's record and return 1.
int path_delete(void *data);
int state_delete(void *data);

#endif
