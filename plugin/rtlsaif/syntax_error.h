// SPDX-License-Identifier: Apache-2.0
// The one text that every lexical and syntax error of a forward SAIF file ends up as. It is kept,
// not shown: the command decides who sees it.
#ifndef WATTFORGE_PLUGIN_RTLSAIF_SYNTAX_ERROR_H
#define WATTFORGE_PLUGIN_RTLSAIF_SYNTAX_ERROR_H

struct dstring;

// Notes an error at the current line of the current stream, in place of any earlier one. The
// message itself says nothing to the user and is ignored. Returns 1.
int saifrtl_yyerror(const char *message);

// The text of the last error, or null; valid until the next error or saifrtl_forget_syntax_error.
const dstring *saifrtl_get_syntax_error_msg();

void saifrtl_forget_syntax_error();

#endif
