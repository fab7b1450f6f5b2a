// SPDX-License-Identifier: Apache-2.0
// The RTL objects that forward SAIF files name, grouped by testbench path: filled by the reader,
// read by registration and by the report. Touches the support library only.
#ifndef WATTFORGE_PLUGIN_RTLSAIF_RTL_TABLE_H
#define WATTFORGE_PLUGIN_RTLSAIF_RTL_TABLE_H

#include <cstdint>

struct dstring;
struct st_table;

// What an object becomes after synthesis; the values of RtlObject::kind.
enum RtlObjectKind : int32_t {
    RTL_ORDINARY = 0,
    RTL_SEQUENTIAL = 1,
    RTL_TRI_STATE = 2,
};

// One entry of a forward file: an RTL name that the simulator knows and the name under which
// synthesis wants its activity. Owns its texts.
struct RtlObject {
    dstring *instance_path;     // "top/u1": the instances around the entry, joined by '/'
    dstring *object_name;       // first name of the entry, as written: what the simulator has
    dstring *second_full_name;  // "top/u1/q_reg/Q": instance path, '/', second name of the entry;
                                // its first three characters are the outermost instance's name.
                                // This is the name that the report writes
    dstring *further_name;      // left null by the reader
    int32_t kind;               // an RtlObjectKind
};

// Null until the first forward file is read. Key: an owned text, the full name of the testbench
// region, or "" when none was given. Value: an st_table keyed by owned texts (in which round and
// square brackets are the same), each the full name of an object ("top/u1/q[3]"), whose values are
// `list`s of RtlObject in file order. The consumers drop or supply the outermost instance's name as
// exactly three characters.
extern st_table *mfli_rtl_table;

// A record with every field null and kind 0; released with mfli_free_rtl_object.
RtlObject *mfli_create_rtl_object();

// Frees the record with its texts. Takes void * to serve as a list's item release function.
void mfli_free_rtl_object(void *object);

// The object table of a testbench path (null counts as ""), made and entered in `table` when
// missing. The result belongs to `table`.
st_table *get_rtl_hash(st_table *table, const char *testbench);

// Frees an object table with its keys, lists and records. A null table is ignored.
void mfli_free_rtl_hash(st_table *objects);

// Lists every testbench path with its objects in the transcript.
void mfli_print_rtl_table();

// Frees mfli_rtl_table with all that hangs from it and makes it null. Does nothing without a table.
void mfli_free_rtl_table();

#endif
