// SPDX-License-Identifier: Apache-2.0
// The text of the last syntax error of a forward SAIF file.
#include "plugin/rtlsaif/syntax_error.h"

#include "plugin/rtlsaif/input_stream.h"
#include "plugin/support/counted_string.h"

static dstring *syntax_error_msg = nullptr;

int saifrtl_yyerror(const char *) {
    saifrtl_forget_syntax_error();
    syntax_error_msg =
        string_sprintf("Syntax error in the forward RTL SAIF file at %d\n", saifrtl_current_line());
    return 1;
}

const dstring *saifrtl_get_syntax_error_msg() {
    return syntax_error_msg;
}

void saifrtl_forget_syntax_error() {
    string_free(syntax_error_msg);
    syntax_error_msg = nullptr;
}
