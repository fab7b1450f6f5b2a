// SPDX-License-Identifier: Apache-2.0
// The scanner of forward SAIF files, written by hand: a match takes characters from the stream
// stack as long as a rule can still grow and hands the surplus back.
#include "plugin/rtlsaif/scanner.h"

#include "plugin/rtlsaif/grammar.h"
#include "plugin/rtlsaif/input_stream.h"
#include "plugin/rtlsaif/syntax_error.h"
#include "plugin/support/hash_table.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

enum Rule {
    RULE_NONE = -1,
    RULE_END_OF_INPUT = 0,
    RULE_LINE_COMMENT = 1,
    RULE_BLOCK_COMMENT = 2,
    RULE_DIVIDER = 3,
    RULE_BLANKS = 4,
    RULE_LEFT_PAREN = 5,
    RULE_RIGHT_PAREN = 6,
    RULE_IDENTIFIER = 7,
    RULE_STRING = 8,
};

constexpr uint32_t TOKEN_LIMIT = 1024;

// The character sets of the rules; a character may be in several.
constexpr uint8_t IN_COMMENT = 1;  // all but newline and 0
constexpr uint8_t IN_STRING = 2;   // all but newline, 0 and the quote
constexpr uint8_t IN_BLANKS = 4;
constexpr uint8_t IN_IDENTIFIER = 8;
constexpr uint8_t DIGIT = 16;
constexpr uint8_t ESCAPABLE = 32;
constexpr uint8_t PUNCTUATION = 64;

struct CharacterSets {
    uint8_t of[256] = {};

    constexpr CharacterSets() {
        for (int c = 1; c < 256; ++c)
            add(c, c == '\n' ? 0 : c == '"' ? IN_COMMENT : IN_COMMENT | IN_STRING);
        for (int c = '!'; c <= '~'; ++c) add(c, c == ',' || c == '=' ? 0 : ESCAPABLE);
        for (int c = 'a'; c <= 'z'; ++c) {
            add(c, IN_IDENTIFIER);
            add(c - 'a' + 'A', IN_IDENTIFIER);
        }
        for (int c = '0'; c <= '9'; ++c) add(c, IN_IDENTIFIER | DIGIT);
        add('_', IN_IDENTIFIER);
        add_all(" \t\n", IN_BLANKS);
        add_all("!#$%&'*+-.:;<>?^`{|}~@", PUNCTUATION);
    }

    constexpr void add(int c, int sets) { of[c] = static_cast<uint8_t>(of[c] | sets); }
    constexpr void add_all(const char *characters, int sets) {
        for (; *characters != '\0'; ++characters) add(*characters, sets);
    }
};

constexpr CharacterSets CHARACTER_SETS;

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
uint32_t text_length = 0;  // characters of the match under way

}  // namespace

int16_t saifrtl_expecting_keyword = 1;
int16_t saifrtl_yylex_dump = 0;
char saifrtl_yytext[8192];

// The one fatal case of the plug-in: a match beyond the limit.
[[noreturn]] static void stop_at_overlong_token() {
    printf("Input string too long, limit %d\n", static_cast<int>(TOKEN_LIMIT));
    exit(EXIT_FAILURE);
}

static void grow_match(int character) {
    if (text_length == TOKEN_LIMIT) stop_at_overlong_token();
    saifrtl_yytext[text_length++] = static_cast<char>(character);
}

// Takes the next character into the match when it is in one of the sets, else leaves it.
static bool take(uint8_t sets) {
    const int character = saifrtl_yyinput();
    if ((CHARACTER_SETS.of[character] & sets) != 0) {
        grow_match(character);
        return true;
    }
    saifrtl_yyunput(character);
    return false;
}

static bool take_character(char wanted) {
    const int character = saifrtl_yyinput();
    if (character == wanted) {
        grow_match(character);
        return true;
    }
    saifrtl_yyunput(character);
    return false;
}

static void back_off_to(uint32_t length) {
    while (text_length > length)
        saifrtl_yyunput(static_cast<unsigned char>(saifrtl_yytext[--text_length]));
}

static bool take_identifier_character() {
    if (take(IN_IDENTIFIER)) return true;
    if (!take_character('\\')) return false;
    if (take(ESCAPABLE)) return true;
    back_off_to(text_length - 1);
    return false;
}

static void take_index() {
    const uint32_t length_without_index = text_length;
    if (!take_character('[')) return;
    bool digits = false;
    while (take(DIGIT)) digits = true;
    if (!digits || !take_character(']')) back_off_to(length_without_index);
}

static Rule match_identifier() {
    while (take_identifier_character()) {
    }
    take_index();
    return RULE_IDENTIFIER;
}

// A quote after the closing quote continues the string, unless the continuation is unterminated:
// then the string ends where it was last closed.
static Rule match_string() {
    uint32_t closed_length = 0;
    do {
        while (take(IN_STRING)) {
        }
        if (!take_character('"')) break;
        closed_length = text_length;
    } while (take_character('"'));
    back_off_to(closed_length > 0 ? closed_length : 1);
    return closed_length > 0 ? RULE_STRING : RULE_NONE;
}

static Rule match_slash() {
    if (take_character('*')) return RULE_BLOCK_COMMENT;
    if (!take_character('/')) return RULE_DIVIDER;
    while (take(IN_COMMENT)) {
    }
    return RULE_LINE_COMMENT;
}

static Rule match_blanks() {
    while (take(IN_BLANKS)) {
    }
    return RULE_BLANKS;
}

// The rest of the match that the given character began.
static Rule match_rule(int first) {
    switch (first) {
        case '(':
            return RULE_LEFT_PAREN;
        case ')':
            return RULE_RIGHT_PAREN;
        case '/':
            return match_slash();
        case '"':
            return match_string();
        case '\\':
            return take(ESCAPABLE) ? match_identifier() : RULE_NONE;
        default:
            break;
    }
    const uint8_t sets = CHARACTER_SETS.of[first];
    if ((sets & IN_BLANKS) != 0) return match_blanks();
    if ((sets & PUNCTUATION) != 0) return RULE_DIVIDER;
    // A digit may go on with an identifier but not begin one.
    return (sets & (IN_IDENTIFIER | DIGIT)) == IN_IDENTIFIER ? match_identifier() : RULE_NONE;
}

int saifrtl_yylook() {
    for (;;) {
        text_length = 0;
        Rule rule = RULE_END_OF_INPUT;
        const int first = saifrtl_yyinput();
        if (first != 0) {
            grow_match(first);
            rule = match_rule(first);
        }
        saifrtl_yytext[text_length] = '\0';
        if (rule != RULE_NONE) return rule;
    }
}

int saifrtl_yyback(const int *list, int rule) {
    for (; list != nullptr && *list != 0; ++list)
        if (*list == rule) return 1;
    return 0;
}

void saifrtl_global_init_lex(int32_t depth) {
    if (global_initialized) saifrtl_global_reset_lex();
    saifrtl_init_streams(depth);
    saifrtl_expecting_keyword = 1;
    saifrtl_yytext[0] = '\0';
    keyword_table = st_alloc_abo(st_strcmp, st_strhash);
    for (const Keyword *row = saifrtl_keywords; row->text[0] != '\0'; ++row)
        st_insert_kptr_vptr(keyword_table, row->text, const_cast<int *>(&row->code));
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
        if (character == 0) return false;
        if (character != '*') continue;
        character = saifrtl_yyinput();
        if (character == '/') return true;
        saifrtl_yyunput(character);
    }
}

static int lexical_error(const char *message) {
    saifrtl_yyerror(message);
    return SAIFRTL_ERROR_TOKEN;
}

static int divider_token() {
    if (saifrtl_expecting_divider_candidate() != 0) return SAIFRTL_DIVIDER_CHARACTER;
    if (saifrtl_expecting_divider() != 0 && saifrtl_yytext[0] == saifrtl_hierarchy_divider())
        return SAIFRTL_HIERARCHY_DIVIDER;
    return lexical_error("Illegal character");
}

static int identifier_token() {
    void *code = nullptr;
    if (saifrtl_expecting_keyword == 1 &&
        st_lookup_kptr_vptr(keyword_table, saifrtl_yytext, &code) != 0)
        return *static_cast<const int *>(code);
    saifrtl_parse_str(SAIFRTL_IDENTIFIER, saifrtl_yytext);
    return SAIFRTL_IDENTIFIER;
}

static int string_token() {
    saifrtl_parse_str(SAIFRTL_STRING, saifrtl_yytext);
    return SAIFRTL_STRING;
}

static int reported(int code) {
    if (saifrtl_yylex_dump != 0)
        (void)fprintf(stderr, "Lex returns token %d - %s\n", code, saifrtl_yytext);
    return code;
}

int saifrtl_yylex() {
    for (;;) {
        const int rule = saifrtl_yylook();
        switch (rule) {
            case RULE_END_OF_INPUT:
                if (saifrtl_yywrap() != 0) return 0;
                break;
            case RULE_LINE_COMMENT:
            case RULE_BLANKS:
                break;
            case RULE_BLOCK_COMMENT:
                if (!skip_block_comment()) return lexical_error("Unterminated C style comment");
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
        if (!dropped) *kept++ = *c;
    }
    *kept = '\0';
}

static void remove_outer_quotes(char *text) {
    if (text[0] == '"') memmove(text, text + 1, strlen(text));
    const size_t length = strlen(text);
    if (length > 0 && text[length - 1] == '"') text[length - 1] = '\0';
}

void saifrtl_parse_str(int code, char *text) {
    if (code == SAIFRTL_IDENTIFIER) remove_character(text, '\\');
    if (code == SAIFRTL_STRING) {
        remove_outer_quotes(text);
        remove_character(text, '"');
    }
}

const char *saifrtl_tok2str(int code) {
    if (code == SAIFRTL_LEFT_PAREN) return "(";
    return code == SAIFRTL_RIGHT_PAREN ? ")" : "";
}

const char *saifrtl_current_tok() {
    return saifrtl_yytext;
}
