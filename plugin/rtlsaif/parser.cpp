// SPDX-License-Identifier: Apache-2.0
// The way into the forward SAIF reader.
#include "plugin/rtlsaif/parser.h"

#include "plugin/rtlsaif/grammar.h"
#include "plugin/rtlsaif/scanner.h"
#include "plugin/support/counted_string.h"
#include "plugin/support/text.h"

static constexpr int32_t MAX_NESTED_STREAMS = 100;

void saifrtl_parse_init(saifrtl_message_op error_print, saifrtl_message_op warn_print) {
    saifrtl_global_init_lex(MAX_NESTED_STREAMS);
    saifrtl_forget_file_state();
    see_mpm_cell_info = 0;
    saifrtl_is_port = 0;
    saifrtl_error_print = error_print;
    saifrtl_warn_print = warn_print;
}

int saifrtl_parse_file_for_design(const char *path, st_table *var_table, st_table *mpm_table) {
    saifrtl_hash_var = var_table;
    saifrtl_hash_mpm = mpm_table;
    return saifrtl_parse_file(path) == 0 ? 1 : 0;
}

int saifrtl_parse_file(const char *path) {
    if (path == nullptr) {
        return saifrtl_parse(stdin, nullptr, nullptr, 1, "_stdin");
    }
    FILE *stream = fopen(path, "r");
    if (stream == nullptr) {
        printf("Unable to open \"%s\"", path);
        return -1;
    }
    return saifrtl_parse(stream, nullptr, nullptr, 1, path);
}

int saifrtl_parse(FILE *stream, saifrtl_read_op read_op, saifrtl_unget_op unget_op,
                  int close_on_pop, const char *name) {
    const int32_t streams_below = saifrtl_n_input_stream;
    if (saifrtl_local_open_stream(stream, name, read_op, unget_op, close_on_pop) == 0) {
        if (close_on_pop != 0 && stream != nullptr && stream != stdin) {
            (void)fclose(stream);
        }
        return 1;
    }
    const int result = saifrtl_yyparse();
    // At its end the scanner has popped the stream; at an error it and streams above it are left.
    while (saifrtl_n_input_stream > streams_below) {
        saifrtl_close_stream();
    }
    return result;
}

void saifrtl_parse_reset() {
    saifrtl_global_reset_lex();
    saifrtl_forget_file_state();
    saifrtl_hash_var = nullptr;
    saifrtl_hash_mpm = nullptr;
    saifrtl_error_print = nullptr;
    saifrtl_warn_print = nullptr;
}

int local_string_substr_position(const dstring *text, const dstring *part) {
    return mfli_substring_position(string_to_char(text), string_to_char(part));
}

static int refuse_prefix(const char *format, const dstring *prefix, const dstring *name) {
    dstring *message = string_sprintf(format, string_to_char(prefix), string_to_char(name),
                                      saifrtl_current_line());
    (void)fputs(string_to_char(message), stdout);
    string_free(message);
    return 0;
}

int saifrtl_strip_name(dstring **name, const dstring *prefix) {
    if (prefix == nullptr || string_len(*name) < string_len(prefix) + 2) {
        return 1;
    }
    const int position = local_string_substr_position(*name, prefix);
    if (position < 0) {
        return 1;
    }
    if (position > 0) {
        return refuse_prefix("Error! string \"%s\" is not a prefix of the name \"%s\" at line %d\n",
                             prefix, *name);
    }
    const char *text = string_to_char(*name);
    if (text[string_len(prefix)] != '/') {
        return refuse_prefix(
            "Error! string \"%s\" is not a complete sub-path of the name \"%s\" at line %d\n",
            prefix, *name);
    }
    dstring *rest = string_alloc(text + string_len(prefix) + 1);
    string_free(*name);
    *name = rest;
    return 1;
}
