// SPDX-License-Identifier: Apache-2.0
// The way into the forward SAIF reader: init, any number of files, reset. A file's objects go into
// the caller's table as they are read; what was stored before an error stays there.
#ifndef WATTFORGE_PLUGIN_RTLSAIF_PARSER_H
#define WATTFORGE_PLUGIN_RTLSAIF_PARSER_H

#include "plugin/rtlsaif/input_stream.h"
#include "plugin/rtlsaif/reader_state.h"
#include "plugin/rtlsaif/syntax_error.h"

#include <cstdio>

struct dstring;
struct st_table;

// Makes scanner and parser ready. The callbacks take one message each and may be null.
void saifrtl_parse_init(saifrtl_message_op error_print, saifrtl_message_op warn_print);

// Reads a file (null: standard input) into `var_table`, full object name -> list of RtlObject, and
// `mpm_table`, dstring path -> dstring module name (compare and hash by text; null: not kept).
// Returns 1 on success; 0 on failure, when saifrtl_get_syntax_error_msg() has the place of a
// syntax error.
int saifrtl_parse_file_for_design(const char *path, st_table *var_table, st_table *mpm_table);

// Reads a file into the tables of the last call above. Returns saifrtl_parse's result, or -1 with a
// line on standard output when the file can not be opened.
int saifrtl_parse_file(const char *path);

// Reads an open stream; see saifrtl_local_open_stream for the arguments. Returns 0 when the input
// was accepted, 1 at a syntax error, 2 when it nests too deeply. Closes the stream when told to,
// whatever the result.
int saifrtl_parse(FILE *stream, saifrtl_read_op read_op, saifrtl_unget_op unget_op,
                  int close_on_pop, const char *name);

// Frees all that scanner and parser hold, the last syntax error included, and clears the callbacks.
void saifrtl_parse_reset();

// Makes a full name relative to a prefix path: takes the prefix and the '/' behind it off. Returns
// 1, also when nothing is to be done (prefix null, not in the name, or less than two characters
// shorter); 0 with a line on standard output when the prefix is elsewhere in the name or ends
// inside a component.
int saifrtl_strip_name(dstring **name, const dstring *prefix);

// First position of a part in a text, or -1.
int local_string_substr_position(const dstring *text, const dstring *part);

#endif
