// SPDX-License-Identifier: Apache-2.0
// The rules of the forward SAIF scanner, written by hand: a match takes characters from the stream
// stack as long as a rule can still grow and hands the surplus back.
#include "plugin/rtlsaif/scanner_rules.h"

#include "plugin/rtlsaif/input_stream.h"
#include "plugin/support/messages.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

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
        for (int c = 1; c < 256; ++c) {
            add(c, c == '\n' ? 0 : c == '"' ? IN_COMMENT : IN_COMMENT | IN_STRING);
        }
        for (int c = '!'; c <= '~'; ++c) {
            add(c, c == ',' || c == '=' ? 0 : ESCAPABLE);
        }
        for (int c = 'a'; c <= 'z'; ++c) {
            add(c, IN_IDENTIFIER);
            add(c - 'a' + 'A', IN_IDENTIFIER);
        }
        for (int c = '0'; c <= '9'; ++c) {
            add(c, IN_IDENTIFIER | DIGIT);
        }
        add('_', IN_IDENTIFIER);
        add_all(" \t\n", IN_BLANKS);
        add_all("!#$%&'*+-.:;<>?^`{|}~@", PUNCTUATION);
    }

    constexpr void add(int c, int sets) { of[c] = static_cast<uint8_t>(of[c] | sets); }
    constexpr void add_all(const char *characters, int sets) {
        for (; *characters != '\0'; ++characters) {
            add(*characters, sets);
        }
    }
};

constexpr CharacterSets CHARACTER_SETS;

uint32_t text_length = 0;  // characters of the match under way

}  // namespace

char saifrtl_yytext[8192];

// The one fatal case of the plug-in: a match beyond the limit.
[[noreturn]] static void stop_at_overlong_token() {
    printf("Input string too long, limit %d\n", static_cast<int>(TOKEN_LIMIT));
    mfli_message("Input string too long, limit %d", static_cast<int>(TOKEN_LIMIT));
    exit(EXIT_FAILURE);
}

static void grow_match(int character) {
    if (text_length == TOKEN_LIMIT) {
        stop_at_overlong_token();
    }
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
    while (text_length > length) {
        saifrtl_yyunput(static_cast<unsigned char>(saifrtl_yytext[--text_length]));
    }
}

static bool take_identifier_character() {
    if (take(IN_IDENTIFIER)) {
        return true;
    }
    if (!take_character('\\')) {
        return false;
    }
    if (take(ESCAPABLE)) {
        return true;
    }
    back_off_to(text_length - 1);
    return false;
}

static void take_index() {
    const uint32_t length_without_index = text_length;
    if (!take_character('[')) {
        return;
    }
    bool digits = false;
    while (take(DIGIT)) {
        digits = true;
    }
    if (!digits || !take_character(']')) {
        back_off_to(length_without_index);
    }
}

static SaifrtlRule match_identifier() {
    while (take_identifier_character()) {
    }
    take_index();
    return RULE_IDENTIFIER;
}

// A quote after the closing quote continues the string, unless the continuation is unterminated:
// then the string ends where it was last closed.
static SaifrtlRule match_string() {
    uint32_t closed_length = 0;
    do {
        while (take(IN_STRING)) {
        }
        if (!take_character('"')) {
            break;
        }
        closed_length = text_length;
    } while (take_character('"'));
    back_off_to(closed_length > 0 ? closed_length : 1);
    return closed_length > 0 ? RULE_STRING : RULE_NONE;
}

static SaifrtlRule match_slash() {
    if (take_character('*')) {
        return RULE_BLOCK_COMMENT;
    }
    if (!take_character('/')) {
        return RULE_DIVIDER;
    }
    while (take(IN_COMMENT)) {
    }
    return RULE_LINE_COMMENT;
}

static SaifrtlRule match_blanks() {
    while (take(IN_BLANKS)) {
    }
    return RULE_BLANKS;
}

// The rest of the match that the given character began.
static SaifrtlRule match_rule(int first) {
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
    if ((sets & IN_BLANKS) != 0) {
        return match_blanks();
    }
    if ((sets & PUNCTUATION) != 0) {
        return RULE_DIVIDER;
    }
    // A digit may go on with an identifier but not begin one.
    return (sets & (IN_IDENTIFIER | DIGIT)) == IN_IDENTIFIER ? match_identifier() : RULE_NONE;
}

int saifrtl_yylook() {
    for (;;) {
        text_length = 0;
        SaifrtlRule rule = RULE_END_OF_INPUT;
        const int first = saifrtl_yyinput();
        if (first != 0) {
            grow_match(first);
            rule = match_rule(first);
        }
        saifrtl_yytext[text_length] = '\0';
        if (rule != RULE_NONE) {
            return rule;
        }
    }
}

int saifrtl_yyback(const int *list, int rule) {
    for (; list != nullptr && *list != 0; ++list) {
        if (*list == rule) {
            return 1;
        }
    }
    return 0;
}
