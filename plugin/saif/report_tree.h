// SPDX-License-Identifier: Apache-2.0
// Turns the monitor table into the writer's tree, one port or net for each watched bit, under the
// simulator's names or under those of a forward RTL SAIF file, and prints the records of the
// report.
#ifndef WATTFORGE_PLUGIN_SAIF_REPORT_TREE_H
#define WATTFORGE_PLUGIN_SAIF_REPORT_TREE_H

#include <mti.h>

#include <cstdio>

#include "plugin/monitor/monitor_table.h"
#include "plugin/rtlsaif/rtl_table.h"
#include "plugin/saif/tree.h"

// Enter every element of the monitor table whose name begins with `instance` (a full region name),
// in table order: under its own name, then under each alias, wherever that lies. The first uses the
// simulator's names; the second the names of the RTL objects that a bit is mapped to, and the
// simulator's name, with square brackets, for a bit without any.
//
// All that enter give 1, or 0 when memory ran out and something is missing from the tree.
int build_saif_tree(const char *instance, SaifTree *tree);
int build_rtl_saif_tree(const char *instance, SaifTree *tree);

// Enter all bits of one element under one name.
int insert_subelements_into_saif_tree(MonitorElement *element, const char *name, SaifTree *tree);
int insert_rtl_subelements_into_saif_tree(MonitorElement *element, const char *name,
                                          const char *instance, SaifTree *tree);

// The RtlObjects mapped to a bit and the testbench path under which they stand; null without any.
// Both results belong to the RTL table.
list *get_gate_name_list(const char *bit_name, const char **path_key);

// Enters one RTL object with a bit's activity: an ordinary one as a port, a sequential or tri-state
// one as a port of the virtual instance that its path names.
int add_to_rtl_saif_tree(const RtlObject *object, const char *path_key, const char *instance,
                         BitActivity *activity, SaifTree *tree);

// 1 for a signal of mode in, out or inout.
int signal_is_port(mtiSignalIdT signal);

// Prints the record of a port or net: `switching` is a saif_switching_attribute, durations are
// multiplied by `scale`.
void net_print(FILE *stream, const dstring *name, void *switching, double scale, int indentation);

// The writer's print function for ports and nets of a tree that was built here: `activity` is a
// BitActivity. Only between begin_bit_print and end_bit_print.
void begin_bit_print();
void bit_print(FILE *stream, const dstring *name, void *activity, double scale, int indentation);
void end_bit_print();

// The writer's print function for instances: `node_info` is the RtlObjectKind of a virtual
// instance, null for an ordinary one.
void node_print(FILE *stream, const dstring *name, void *node_info, int *indentation);

#endif
