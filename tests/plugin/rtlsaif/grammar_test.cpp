// SPDX-License-Identifier: Apache-2.0
// The grammar of forward SAIF files: what is accepted, where errors are placed, what is stored, and
// that nothing of a failed reading is left for the next.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "plugin/rtlsaif/scanner.h"
#include "tests/plugin/rtlsaif/reading.h"
#include "tests/support/scratch.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace rtlsaif_test {
namespace {

const std::string SAMPLE =
    header() +
    "(INSTANCE \"design\" top\n"
    "  (PORT (clk clk) (PORT a\\.b \"other\"))\n"
    "  (NET (q q_reg/Q \"sequential\") (PORT PORT) (bus[3] bus_tri\\[3\\]/Z \"tri-state\"))\n"
    "  (MPM_INSTANCE \"ram16\" u_ram (PORT (a a)) (INSTANCE inner (NET (n n))) )\n"
    "  (INSTANCE sub/deep (NET (x/y z)))\n"
    "  // the end\n"
    ")\n"
    "(INSTANCE two (PORT (a a)))\n"
    ")\n";

const std::vector<std::string> SAMPLE_OBJECTS = {
    "top/clk: top, clk, top/clk, 0",
    "top/PORT: top, PORT, top/a.b, 0",
    "top/PORT: top, PORT, top/PORT, 0",
    "top/q: top, q, top/q_reg/Q, 1",
    "top/bus[3]: top, bus[3], top/bus_tri[3]/Z, 2",
    "top/u_ram/inner/n: top/u_ram/inner, n, top/u_ram/inner/n, 0",
    "top/sub/deep/x/y: top/sub/deep, x/y, top/sub/deep/z, 0",
    "two/a: two, a, two/a, 0",
};

void expect_sample(const Outcome &outcome) {
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.objects, SAMPLE_OBJECTS);
    EXPECT_THAT(outcome.modules, ElementsAre("top/u_ram: ram16"));
    EXPECT_THAT(outcome.messages, IsEmpty());
}

TEST(Grammar, StoresTheObjectsOfASample) {
    expect_sample(read_text(SAMPLE));
}

TEST(Grammar, AcceptsAndRejects) {
    const std::string head = header();
    const std::string entries = "(INSTANCE top (PORT (a a)))";
    const struct {
        std::string text;
        int error_line;  // 0: accepted
    } rows[] = {
        {head + entries + ")", 0},
        {head + "(INSTANCE top (INSTANCE a (NET (x x))))\n)", 0},
        {head + "(INSTANCE top (NET (x x)) (PORT (x x)) (NET (x x)) (INSTANCE a))\n)", 0},
        {head + "(INSTANCE a/b \n/c (PORT (x/y/z w)))\n)", 0},
        {"// first\n" + head + entries + ") // last", 0},
        {"(SAIFILE (SAIFVERSION \"9\") (DIRECTION \"backward\") (DESIGN) (DATE) (VENDOR)"
         "(PROGRAM_NAME) (VERSION) (DIVIDER)(INSTANCE a.b))",
         0},
        {"SAIFILE", 1},
        {"(SAIFILE (SAIFVERSION) (DIRECTION \"f\")", 1},
        {"(SAIFILE (SAIFVERSION \"2\")\n(DIRECTION)", 2},
        {"(SAIFILE (SAIFVERSION \"2\") (DIRECTION \"f\")\n(DESIGN name)", 2},
        {header("(DIVIDER a)") + entries + ")", 5},
        {head + entries, 6},
        {head + entries + ")\n)", 7},
        {head + entries + "\n(PORT (a a)))", 7},
        {head + "(INSTANCE top\n(PORT))", 7},
        {head + "(INSTANCE top\n(PORT (a a \"k\"\n\"k\")))", 8},
        {head + "(INSTANCE top (INSTANCE x)\n(PORT (a a)))", 7},
        {head + "(INSTANCE\n\"m\")", 7},
        {head + "(INSTANCE top/ (PORT (a a)))", 6},
        {head + "(INSTANCE top\n\n/*\n\n", 10},
        {head + "(INSTANCE top /*\n\n*/ , 12 = (PORT\n(a\n;\n", 10},
    };
    for (const auto &row : rows) {
        const Outcome outcome = read_text(row.text);
        EXPECT_EQ(outcome.result, row.error_line == 0 ? 0 : 1) << row.text;
        EXPECT_EQ(outcome.error, row.error_line == 0 ? "" : error_at(row.error_line)) << row.text;
    }
}

TEST(Grammar, StoresPathsWithSlashesWhateverTheDivider) {
    const struct {
        std::string divider, body;
        std::vector<std::string> objects;
    } rows[] = {
        {"(DIVIDER .)", "(INSTANCE a.b (NET (c.d e)))", {"a/b/c/d: a/b, c/d, a/b/e, 0"}},
        {"(DIVIDER)", "(INSTANCE a.b (NET (c d.e)))", {"a/b/c: a/b, c, a/b/d/e, 0"}},
        {"(DIVIDER ~ )", "(INSTANCE a~b (NET (c\\~ d)))", {"a/b/c~: a/b, c~, a/b/d, 0"}},
        {"(DIVIDER /)", "(INSTANCE a (NET (c\\.d e\\/f)))", {"a/c.d: a, c.d, a/e/f, 0"}},
    };
    for (const auto &row : rows) {
        const Outcome outcome = read_text(header(row.divider) + row.body + ")");
        EXPECT_EQ(outcome.result, 0) << row.body;
        EXPECT_EQ(outcome.objects, row.objects);
    }
}

TEST(Grammar, PassesOverMacroModels) {
    const Outcome outcome = read_text(header() +
                                      "(INSTANCE top (MPM_INSTANCE \"old\" m (NET (a a)))"
                                      "(MPM_INSTANCE \"new\" m)(MPM_INSTANCE n (PORT (b b)))))");
    EXPECT_EQ(outcome.result, 0);
    EXPECT_THAT(outcome.objects, IsEmpty());
    EXPECT_THAT(outcome.modules, ElementsAre("top/m: new"));
    EXPECT_THAT(outcome.messages,
                ElementsAre("Need to specify the module name for MPM instance top/n \n"));
}

std::string nested(int levels, bool closed) {
    std::string text = header();
    for (int i = 0; i < levels; ++i) text += "(INSTANCE a ";
    text += "(NET (x x))";
    if (closed) text += std::string(static_cast<size_t>(levels) + 1, ')');
    return text;
}

TEST(Grammar, NestsAsDeepAsItsStackGrows) {
    Outcome outcome = read_text(nested(1600, true));
    EXPECT_EQ(outcome.result, 0);
    ASSERT_EQ(outcome.objects.size(), 1u);
    EXPECT_EQ(outcome.objects[0].find("/x: "), 2u * 1600 - 1);
    for (const int levels : {5000, 1000000}) {
        outcome = read_text(nested(levels, levels == 5000));
        EXPECT_EQ(outcome.result, 2);
        EXPECT_EQ(outcome.error, error_at(6));
        EXPECT_THAT(outcome.objects, IsEmpty());
    }
    expect_sample(read_text(SAMPLE));
}

TEST(Grammar, KeepsWhatWasReadBeforeACutAndNothingElse) {
    std::vector<std::string> all = SAMPLE_OBJECTS;
    std::sort(all.begin(), all.end());
    for (size_t length = 0; length + 1 < SAMPLE.size(); ++length) {
        Outcome cut = read_text(SAMPLE.substr(0, length));
        std::sort(cut.objects.begin(), cut.objects.end());
        ASSERT_EQ(cut.result, 1) << length;
        ASSERT_NE(cut.error, "") << length;
        ASSERT_TRUE(std::includes(all.begin(), all.end(), cut.objects.begin(), cut.objects.end()))
            << length;
        expect_sample(read_text(SAMPLE));
        ASSERT_FALSE(HasFailure()) << length;
    }
}

TEST(Grammar, SurvivesRandomBytes) {
    const auto seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto below = [&random](size_t limit) { return random() % limit; };
    for (int round = 0; round < 3000; ++round) {
        std::string text = SAMPLE;
        for (size_t change = below(8); change > 0; --change)
            text[below(text.size())] = static_cast<char>(below(256));
        if (round % 3 == 0)
            text.replace(below(text.size()), below(40), text.substr(below(text.size()), below(40)));
        read_text(text);
    }
    expect_sample(read_text(SAMPLE));
}

TEST(Parser, ReadsFilesAndSaysWhenItCanNot) {
    st_table *objects = st_alloc_abo(st_strcmp, st_strhash);
    const std::string path = wf::test::scratch_file("sample.fsaif");
    FILE *file = fopen(path.c_str(), "w");
    fputs(SAMPLE.c_str(), file);
    fclose(file);

    saifrtl_parse_init(nullptr, nullptr);
    testing::internal::CaptureStdout();
    EXPECT_EQ(saifrtl_parse_file_for_design("/no/such", objects, nullptr), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Unable to open \"/no/such\"");
    EXPECT_EQ(saifrtl_get_syntax_error_msg(), nullptr);
    EXPECT_EQ(saifrtl_parse_file_for_design(path.c_str(), objects, nullptr), 1);
    EXPECT_EQ(list_objects(objects), SAMPLE_OBJECTS);

    ASSERT_NE(freopen(path.c_str(), "r", stdin), nullptr);
    EXPECT_EQ(saifrtl_parse_file_for_design(nullptr, objects, nullptr), 1);
    EXPECT_EQ(list_objects(objects).size(), 2 * SAMPLE_OBJECTS.size());

    file = fopen(path.c_str(), "w");
    fputs("(()", file);
    fclose(file);
    EXPECT_EQ(saifrtl_parse_file_for_design(path.c_str(), objects, nullptr), 0);
    EXPECT_EQ(saifrtl_n_input_stream, 0);
    EXPECT_NE(saifrtl_get_syntax_error_msg(), nullptr);
    saifrtl_parse_reset();
    EXPECT_EQ(saifrtl_get_syntax_error_msg(), nullptr);
    mfli_free_rtl_hash(objects);
}

TEST(Parser, StripsAPrefixPath) {
    const struct {
        const char *name, *prefix, *stripped;
        int result;
        const char *output;
    } rows[] = {
        {"top/u1/q", "top/u1", "q", 1, ""},
        {"top/u1/q", "top", "u1/q", 1, ""},
        {"top/u1", nullptr, "top/u1", 1, ""},
        {"top/u1", "sub", "top/u1", 1, ""},
        {"top/u", "top/u", "top/u", 1, ""},
        {"top/", "top", "top/", 1, ""},
        {"top/u1", "u1", "top/u1", 0,
         "Error! string \"u1\" is not a prefix of the name \"top/u1\" at line 0\n"},
        {"topmost", "top", "topmost", 0,
         "Error! string \"top\" is not a complete sub-path of the name \"topmost\" at line 0\n"},
    };
    saifrtl_parse_init(nullptr, nullptr);
    for (const auto &row : rows) {
        dstring *name = string_alloc(row.name);
        dstring *prefix = row.prefix == nullptr ? nullptr : string_alloc(row.prefix);
        testing::internal::CaptureStdout();
        EXPECT_EQ(saifrtl_strip_name(&name, prefix), row.result) << row.name;
        EXPECT_EQ(testing::internal::GetCapturedStdout(), row.output);
        EXPECT_STREQ(string_to_char(name), row.stripped);
        string_free(prefix);
        string_free(name);
    }
    saifrtl_parse_reset();
}

}  // namespace
}  // namespace rtlsaif_test
