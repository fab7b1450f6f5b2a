// SPDX-License-Identifier: Apache-2.0
// What the grammar's actions keep and do while a forward SAIF file is read: the path of the
// instance being read, and the objects stored in the caller's tables. The texts given stay the
// caller's.
#ifndef WATTFORGE_PLUGIN_RTLSAIF_READER_STATE_H
#define WATTFORGE_PLUGIN_RTLSAIF_READER_STATE_H

#include <cstdint>

struct dstring;
struct st_table;

typedef void (*saifrtl_message_op)(const dstring *message);

extern st_table *saifrtl_hash_var;  // the caller's: full object name -> list of RtlObject
extern st_table *saifrtl_hash_mpm;  // the caller's: dstring instance path -> dstring module name;
                                    // null: modules are not kept
extern dstring *saifrtl_current_path;  // the instances around the place being read, joined by '/';
                                       // null outside all instances
extern int32_t see_mpm_cell_info;      // 1: the instance opened last is an MPM_INSTANCE
extern int32_t saifrtl_is_port;        // 1 after PORT, 0 after NET; both are stored alike
extern saifrtl_message_op saifrtl_error_print;  // may be null
extern saifrtl_message_op saifrtl_warn_print;   // may be null

// Frees what belongs to one file: the current path and the last syntax error.
void saifrtl_forget_file_state();

// Ends the DIVIDER entry: from here the character separates the parts of paths.
void saifrtl_set_hierarchy_divider(char divider);

// Extends the current path by the instance's; the entries that follow are stored.
void saifrtl_enter_instance(const dstring *path);

// The same for a macro model: notes its module name (null: an error for the callback), and the
// entries that follow are ignored.
void saifrtl_enter_mpm_instance(const dstring *path, const dstring *module);

// Takes the instance's path off the current path again. Which kind of instance was opened last
// stays as it is.
void saifrtl_leave_instance(const dstring *path);

// Files one port or net entry as an RtlObject under its full name, after those already there.
void saifrtl_store_entry(const dstring *first, const dstring *second, const dstring *kind);

#endif
