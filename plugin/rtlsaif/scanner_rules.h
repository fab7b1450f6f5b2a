// SPDX-License-Identifier: Apache-2.0
// The eight rules of the forward SAIF scanner (scanner.h lists them), by longest match over the
// characters of the stream stack. What a match means is the scanner's.
#ifndef WATTFORGE_PLUGIN_RTLSAIF_SCANNER_RULES_H
#define WATTFORGE_PLUGIN_RTLSAIF_SCANNER_RULES_H

enum SaifrtlRule {
    RULE_NONE = -1,  // never returned
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

extern char saifrtl_yytext[8192];  // text of the last match; the scanner cleans it in place

// Matches one rule at the current place, leaves the match in saifrtl_yytext and returns the rule's
// number, 0 at the end of the current stream. Drops characters that begin no rule.
int saifrtl_yylook();

// Whether a rule is in a list of rules that ends with 0 (null: no list).
int saifrtl_yyback(const int *list, int rule);

#endif
