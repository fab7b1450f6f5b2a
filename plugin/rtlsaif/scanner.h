// SPDX-License-Identifier: Apache-2.0
// The scanner of forward SAIF files: from the characters of the stream stack to the token codes of
// the grammar (generated header plugin/rtlsaif/grammar.h; 0 is end of input).
//
// Longest match over eight rules, on equal length the first:
//   1  // up to the end of the line          skipped
//   2  block comment                         skipped; unterminated: error token
//   3  one punctuation character             a divider where one is expected, else error token
//   4  blanks, tabs, newlines                skipped
//   5  (                                     6  )
//   7  identifier, with one trailing [digits]; \ makes any printable character but , and = a
//      letter; a keyword where keywords are expected
//   8  "string", "" stands for one quote
// A character that begins none of them is dropped without a word. A match longer than 1024
// characters ends the process: a line comment and a run of blanks count as well.
#ifndef WATTFORGE_PLUGIN_RTLSAIF_SCANNER_H
#define WATTFORGE_PLUGIN_RTLSAIF_SCANNER_H

#include <cstdint>

// What the scanner returns after "Illegal character" and "Unterminated C style comment"; the
// grammar accepts it nowhere.
constexpr int SAIFRTL_ERROR_TOKEN = 1;

extern int16_t saifrtl_expecting_keyword;  // 1: keywords are tokens of their own; 0: identifiers
extern int16_t saifrtl_yylex_dump;         // 1: rules 5 to 8 report their tokens on standard error

// Makes the scanner ready for streams nested up to depth + 1; resets it first when it is in use.
void saifrtl_global_init_lex(int32_t depth);

// Frees the keywords and every stream that is still open. Harmless when not initialised.
void saifrtl_global_reset_lex();

// The code of the next token; at the end of the last stream 0.
int saifrtl_yylex();

// Cleans token text in place: an identifier loses its escaping backslashes, a quoted string its
// quotes. Other codes leave it alone.
void saifrtl_parse_str(int code, char *text);

// "(" or ")" for the codes of the parentheses, else the empty text.
const char *saifrtl_tok2str(int code);

// The text of the last token, cleaned by rules 7 and 8.
const char *saifrtl_current_tok();

#endif
