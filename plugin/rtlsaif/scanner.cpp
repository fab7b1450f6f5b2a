// SPDX-License-Identifier: Apache-2.0
// The scanner of forward SAIF files: what each rule's match means to the grammar.
#include "plugin/rtlsaif/scanner.h"

#include "plugin/rtlsaif/grammar.h"
#include "plugin/rtlsaif/input_stream.h"
#include "plugin/rtlsaif/scanner_rules.h"
#include "plugin/rtlsaif/syntax_error.h"
#include "plugin/support/hash_table.h"

#include <cstdio>
#include <cstring>

namespace {

struct Keyword {
    const char *text;
    int code;
};

// The repeated row is harmless: the later one wins.
const Keyword saifrtl_keywords[] = {
    {"DATE", SAIFRTL_DATE},
    {"DESIGN", SAIFRTL_DESIGN},
    {"DIRECTION", SAIFRTL_DIRECTION},
    {"DIVIDER", SAIFRTL_DIVIDER},
    {"INSTANCE", SAIFRTL_INSTANCE},
    {"MPM_INSTANCE", SAIFRTL_MPM_INSTANCE},
    {"NET", SAIFRTL_NET},
    {"SAIFVERSION", SAIFRTL_SAIFVERSION},
    {"PORT", SAIFRTL_PORT},
    {"PROGRAM_NAME", SAIFRTL_PROGRAM_NAME},
    {"SAIFILE", SAIFRTL_SAIFILE},
    {"SAIFVERSION", SAIFRTL_SAIFVERSION},
    {"VENDOR", SAIFRTL_VENDOR},
    {"VERSION", SAIFRTL_VERSION},
    {"", 0},
};

st_table *keyword_table = nullptr;
bool global_initialized = false;

}  // namespace

int16_t saifrtl_expecting_keyword = 1;
int16_t saifrtl_yylex_dump = 0;

void saifrtl_global_init_lex(int32_t depth) {
    if (global_initialized) {
        saifrtl_global_reset_lex();
    }
    saifrtl_init_streams(depth);
    saifrtl_expecting_keyword = 1;
    saifrtl_yytext[0] = '\0';
    keyword_table = st_alloc_abo(st_strcmp, st_strhash);
    for (const Keyword *row = saifrtl_keywords; row->text[0] != '\0'; ++row) {
        st_insert_kptr_vptr(keyword_table, row->text, const_cast<int *>(&row->code));
    }
    global_initialized = true;
}

void saifrtl_global_reset_lex() {
    saifrtl_free_streams();
    st_free(keyword_table);
    keyword_table = nullptr;
    global_initialized = false;
}

// False when input ends inside the comment. The character after a '*' may be the next '*'.
static bool skip_block_comment() {
    for (;;) {
        int character = saifrtl_yyinput();
        if (character == 0) {
            saifrtl_yyunput(character);
            return false;
        }
        if (character != '*') {
            continue;
        }
        character = saifrtl_yyinput();
        if (character == '/') {
            return true;
        }
        saifrtl_yyunput(character);
    }
}

static int lexical_error(const char *message) {
    saifrtl_yyerror(message);
    return SAIFRTL_ERROR_TOKEN;
}

static int divider_token() {
    if (saifrtl_expecting_divider_candidate() != 0) {
        return SAIFRTL_DIVIDER_CHARACTER;
    }
    if (saifrtl_expecting_divider() != 0 && saifrtl_yytext[0] == saifrtl_hierarchy_divider()) {
        return SAIFRTL_HIERARCHY_DIVIDER;
    }
    return lexical_error("Illegal character");
}

static int identifier_token() {
    void *code = nullptr;
    if (saifrtl_expecting_keyword == 1 &&
        st_lookup_kptr_vptr(keyword_table, saifrtl_yytext, &code) != 0) {
        return *static_cast<const int *>(code);
    }
    saifrtl_parse_str(SAIFRTL_IDENTIFIER, saifrtl_yytext);
    return SAIFRTL_IDENTIFIER;
}

static int string_token() {
    saifrtl_parse_str(SAIFRTL_STRING, saifrtl_yytext);
    return SAIFRTL_STRING;
}

static int reported(int code) {
    if (saifrtl_yylex_dump != 0) {
        (void)fprintf(stderr, "Lex returns token %d - %s\n", code, saifrtl_yytext);
    }
    return code;
}

int saifrtl_yylex() {
    for (;;) {
        const int rule = saifrtl_yylook();
        switch (rule) {
            case RULE_END_OF_INPUT:
                if (saifrtl_yywrap() != 0) {
                    return 0;
                }
                break;
            case RULE_LINE_COMMENT:
            case RULE_BLANKS:
                break;
            case RULE_BLOCK_COMMENT:
                if (!skip_block_comment()) {
                    return lexical_error("Unterminated C style comment");
                }
                break;
            case RULE_DIVIDER:
                return divider_token();
            case RULE_LEFT_PAREN:
                return reported(SAIFRTL_LEFT_PAREN);
            case RULE_RIGHT_PAREN:
                return reported(SAIFRTL_RIGHT_PAREN);
            case RULE_IDENTIFIER:
                return reported(identifier_token());
            case RULE_STRING:
                return reported(string_token());
            default:
                printf("bad switch yylook %d", rule);
                break;
        }
    }
}

// Drops every such character but one that follows a dropped one.
static void remove_character(char *text, char unwanted) {
    char *kept = text;
    bool dropped = false;
    for (const char *c = text; *c != '\0'; ++c) {
        dropped = *c == unwanted && !dropped;
        if (!dropped) {
            *kept++ = *c;
        }
    }
    *kept = '\0';
}

static void remove_outer_quotes(char *text) {
    if (text[0] == '"') {
        memmove(text, text + 1, strlen(text));
    }
    const size_t length = strlen(text);
    if (length > 0 && text[length - 1] == '"') {
        text[length - 1] = '\0';
    }
}

void saifrtl_parse_str(int code, char *text) {
    if (code == SAIFRTL_IDENTIFIER) {
        remove_character(text, '\\');
    }
    if (code == SAIFRTL_STRING) {
        remove_outer_quotes(text);
        remove_character(text, '"');
    }
}

const char *saifrtl_tok2str(int code) {
    if (code == SAIFRTL_LEFT_PAREN) {
        return "(";
    }
    return code == SAIFRTL_RIGHT_PAREN ? ")" : "";
}

const char *saifrtl_current_tok() {
    return saifrtl_yytext;
}
