// SPDX-License-Identifier: Apache-2.0
// The scanner of forward SAIF files: texts to tokens, the stack of streams, the limits.
#include "plugin/rtlsaif/scanner.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <climits>

#include "plugin/rtlsaif/grammar.h"
#include "plugin/rtlsaif/scanner_rules.h"
#include "tests/plugin/rtlsaif/reading.h"

using namespace std::string_literals;

namespace rtlsaif_test {
namespace {

struct Mode {
    char divider = '.';
    int16_t keywords = 1;
    int16_t dividers = 1;
    int16_t candidate = 0;
};

// "(" and ")", "name" for an identifier, "'text'" for a string, else the code of a token.
std::string shown(int code) {
    switch (code) {
        case SAIFRTL_IDENTIFIER:
            return saifrtl_current_tok();
        case SAIFRTL_STRING:
            return "'"s + saifrtl_current_tok() + "'";
        case SAIFRTL_LEFT_PAREN:
        case SAIFRTL_RIGHT_PAREN:
            return saifrtl_tok2str(code);
        default:
            return std::to_string(code);
    }
}

std::string next_tokens(int count) {
    std::string tokens;
    for (int code = 0; count > 0 && (code = saifrtl_yylex()) != 0; --count)
        tokens += (tokens.empty() ? "" : " ") + shown(code);
    return tokens;
}

std::string rest_of_tokens() {
    return next_tokens(INT_MAX);
}

std::string scan(const std::string &text, Mode mode = {}) {
    saifrtl_global_init_lex(100);
    saifrtl_local_open_stream(open_text(text), "text", nullptr, nullptr, 1);
    saifrtl_expecting_keyword = mode.keywords;
    saifrtl_hierarchy_divider() = mode.divider;
    saifrtl_expecting_divider() = mode.dividers;
    saifrtl_expecting_divider_candidate() = mode.candidate;
    std::string tokens = rest_of_tokens();
    saifrtl_global_reset_lex();
    saifrtl_forget_syntax_error();
    return tokens;
}

TEST(Scanner, TurnsTextIntoTokens) {
    const Mode slash = {.divider = '/'}, names = {.keywords = 0}, candidate = {.candidate = 1},
               plain = {.dividers = 0};
    const struct {
        std::string text, tokens;
        Mode mode = {};
    } rows[] = {
        {"(SAIFILE(PORT NET)INSTANCE DATE DESIGN DIRECTION\tDIVIDER\nMPM_INSTANCE PROGRAM_NAME "
         "SAIFVERSION VENDOR VERSION",
         "( 260 ( 258 259 ) 261 262 263 264 265 270 272 275 276 277"},
        {"PORT NET VERSION", "PORT NET VERSION", names},
        {"port PORT1 _PORT PORT[1] \\PORT P\\ORT", "port PORT1 _PORT PORT[1] PORT PORT"},
        {"", ""},
        {"a_1 _x Z9", "a_1 _x Z9"},
        // indices
        {"bus[3] mem[3][4]", "bus[3] mem[3]"},
        {"bus[3]x", "bus[3] x"},
        {"bus[3 bus[] bus[x] bus[3x] bus[", "bus bus bus x bus x bus"},
        {"bus[99999999999999999999]", "bus[99999999999999999999]"},
        // escapes
        {"a\\[3\\] a\\[3\\][4]", "a[3] a[3][4]"},
        {"\\3state a\\.b a\\\"b a\\/b a\\(b\\)", "3state a.b a\"b a/b a(b)"},
        {"a\\\\b a\\\\\\\\b a\\\\\\xb", "a\\b a\\\\b a\\xb"},
        {"a\\,b a\\=b a\\ b a\\\nb a\\\tb a\\", "a b a b a b a b a b a"},
        // strings
        {R"q("two words" "" "(x)" "a\b")q", R"q('two words' '' '(x)' 'a\b')q"},
        {R"q("""hi""" "a""b" """" "a" "b")q", R"q('"hi"' 'a"b' '"' 'a' 'b')q"},
        {"\"open\nnext", "open next"},
        {"\"open", "open"},
        {"\"closed\"\"open\nnext", "'closed' open next"},
        // comments
        {"a//b\nc// d", "a c"},
        {"//", ""},
        {"// \xc3\xa9\na \"\xc3\xa9\" \"\xff\xfex\nb", "a '\xc3\xa9' x b"},
        {"a/*b\n*/c/**/d/***/e/*/f*/g/****h**/i", "a c d e g i"},
        {"a /* open * /", "a 1"},
        {"a /*", "a 1"},
        // dividers
        {"top.u1", "top 267 u1"},
        {"top/u1 / x", "top 267 u1 267 x", slash},
        {"top/u1", "top 1 u1"},
        {"top//u1", "top", slash},
        {"top.u1", "top 1 u1", plain},
        {"/ . ! ~ a", "266 266 266 266 a", candidate},
        {"(DIVIDER /)", "( 265 266 )", candidate},
        // what begins no token
        {"12 3a 4[5] , = [ ] \r \x7f \x80\xff b", "a b"},
        {"a"s + '\0' + "b", "a"},
        {"/* "s + '\0' + " */ b", "1"},
    };
    for (const auto &row : rows) EXPECT_EQ(scan(row.text, row.mode), row.tokens) << row.text;
}

TEST(Scanner, KnowsEveryPrintableCharacter) {
    const std::string punctuation = "!#$%&'*+-.:;<>?^`{|}~@/";
    for (char c = '!'; c <= '~'; ++c) {
        const bool escapable = c != ',' && c != '=';
        EXPECT_EQ(scan("a\\"s + c), escapable ? "a"s + c : "a") << c;
        if (punctuation.find(c) != std::string::npos) {
            EXPECT_EQ(scan({c}, {.candidate = 1}), "266") << c;
            EXPECT_EQ(scan({c}, {.divider = c}), "267") << c;
            EXPECT_EQ(scan({c}, {.divider = 'x'}), "1") << c;
        } else if (std::string(",=[]\\\"0123456789").find(c) != std::string::npos) {
            EXPECT_EQ(scan({c}, {.candidate = 1}), "") << c;
        }
    }
}

TEST(Scanner, BacksOffFurtherThanTheFirstPushBackBuffer) {
    std::string text = "\"", tokens;
    for (int i = 0; i < 500; ++i) {
        text += "a ";
        tokens += "a ";
    }
    EXPECT_EQ(scan(text + "\n("), tokens + "(");
}

TEST(Scanner, EndsTheProcessAtAnOverlongMatch) {
    const auto scan_aloud = [](const std::string &text) {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        scan(text);
    };
    const std::string a(1021, 'a'), blanks(1024, ' '), digits(1021, '9');
    for (const std::string &text :
         {"aaa" + a, blanks, "\"a" + a + "\"", "//a" + a, "a[" + digits + "]"}) {
        scan(text);
        std::string longer = text;
        longer.insert(2, 1, text[2]);
        EXPECT_EXIT(scan_aloud(longer), testing::ExitedWithCode(1),
                    "^.*PrintMessage: there is no simulator\nInput string too long, limit 1024\n$");
    }
    scan("/*" + std::string(5000, 'x') + "*/");
}

TEST(Streams, NestWithTheirOwnLineDividerAndFlags) {
    const std::string outer = "a\nb", inner = "x~y\n\n/ z";
    saifrtl_global_init_lex(100);
    saifrtl_local_open_stream(open_text(outer), "outer", nullptr, nullptr, 1);
    ASSERT_EQ(next_tokens(1), "a");
    saifrtl_hierarchy_divider() = '~';
    saifrtl_local_open_stream(open_text(inner), "inner", nullptr, nullptr, 1);
    EXPECT_STREQ(saifrtl_current_file(), "inner");
    EXPECT_EQ(saifrtl_current_line(), 1);
    EXPECT_EQ(next_tokens(3), "x 267 y");
    saifrtl_hierarchy_divider() = '/';
    saifrtl_expecting_divider_candidate() = 0;
    EXPECT_EQ(next_tokens(2), "267 z");
    EXPECT_EQ(saifrtl_current_line(), 3);
    EXPECT_EQ(next_tokens(1), "b");
    EXPECT_STREQ(saifrtl_current_file(), "outer");
    EXPECT_EQ(saifrtl_current_line(), 2);
    EXPECT_EQ(saifrtl_hierarchy_divider(), '~');
    EXPECT_EQ(rest_of_tokens(), "");
    EXPECT_EQ(saifrtl_n_input_stream, 0);
    EXPECT_EQ(saifrtl_current_file(), nullptr);
    for (const int16_t flag : {int16_t{0}, int16_t{1}}) {
        saifrtl_local_open_stream(open_text(outer), "outer", nullptr, nullptr, 1);
        saifrtl_expecting_divider() = static_cast<int16_t>(1 - flag);
        saifrtl_expecting_divider_candidate() = flag;
        saifrtl_local_open_stream(open_text(inner), "inner", nullptr, nullptr, 1);
        EXPECT_EQ(saifrtl_expecting_divider(), 1 - flag);
        EXPECT_EQ(saifrtl_expecting_divider_candidate(), flag);
        saifrtl_free_streams();
        saifrtl_init_streams(100);
    }
    saifrtl_global_reset_lex();
}

TEST(Streams, TakeOneMoreThanTheLimit) {
    const std::string text = "x";
    saifrtl_parse_init(nullptr, nullptr);
    for (int i = 0; i < 101; ++i)
        ASSERT_EQ(saifrtl_local_open_stream(open_text(text), "s", nullptr, nullptr, 1), 1) << i;
    EXPECT_EQ(saifrtl_get_syntax_error_msg(), nullptr);
    EXPECT_EQ(saifrtl_parse(open_text(text), nullptr, nullptr, 1, "one too many"), 1);
    EXPECT_EQ(string_to_char(saifrtl_get_syntax_error_msg()), error_at(1));
    EXPECT_EQ(saifrtl_n_input_stream, 101);
    const std::string tokens = rest_of_tokens();
    EXPECT_EQ(std::count(tokens.begin(), tokens.end(), 'x'), 101);
    saifrtl_parse_reset();
    EXPECT_EQ(saifrtl_local_open_stream(nullptr, "s", nullptr, nullptr, 0), 0) << "after a reset";
}

TEST(Streams, AreClosedOnceAndOnlyWhenTold) {
    int closed = 0;
    const auto open_counted = [&closed] {
        return fopencookie(&closed, "r",
                           {.read = [](void *, char *, size_t) -> ssize_t { return 0; },
                            .write = nullptr,
                            .seek = nullptr,
                            .close = [](void *count) { return ++*static_cast<int *>(count), 0; }});
    };
    saifrtl_global_init_lex(100);
    FILE *kept = open_counted();
    saifrtl_local_open_stream(kept, "kept", nullptr, nullptr, 0);
    saifrtl_local_open_stream(stdin, "standard input", nullptr, nullptr, 1);
    saifrtl_local_open_stream(open_counted(), "ended", nullptr, nullptr, 1);
    EXPECT_EQ(saifrtl_yywrap(), 0);
    EXPECT_EQ(closed, 1);
    saifrtl_local_open_stream(open_counted(), "abandoned", nullptr, nullptr, 1);
    saifrtl_global_init_lex(100);
    EXPECT_EQ(closed, 2);
    saifrtl_global_reset_lex();
    saifrtl_close_stream();
    EXPECT_EQ(closed, 2);
    EXPECT_NE(fileno(stdin), -1);
    fclose(kept);
}

}  // namespace
}  // namespace rtlsaif_test
