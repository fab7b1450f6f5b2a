// SPDX-License-Identifier: Apache-2.0
// Events of VCD files, one by one: what each statement means, what is refused, and that neither the
// cut of a file nor that of its buffer makes an event that is not in it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/source/vcd/ids.h"
#include "tests/host/source/vcd_reading.h"

namespace wf::test {
namespace {

using testing::ElementsAreArray;
using testing::MatchesRegex;

// a @0, v(3:0) @1, r real @5, w(9:0) @13, e and s without storage, a long code @23, one code for
// widths 3 (@24) and 1 (@27).
const std::string header =
    "$scope module t $end\n$var wire 1 ! a $end $var wire 4 \" v [3:0] $end $var real 64 r! r "
    "$end\n"
    "$var wire 10 # w $end $var event 1 $ e $end $var string 1 s s $end\n"
    "$var wire 1 a-long-code-indeed l $end $var wire 3 2w m $end $var wire 1 2w n $end\n"
    "$upscope $end\n$enddefinitions $end\n";
constexpr int first_line = 7;

struct EventRow {
    const char *what;
    std::string text;
    std::vector<std::string> events;
};

const EventRow event_rows[] = {
    {"scalars of all nine values, upper and lower case",
     "0!\n1!\nx!\nX!\nz!\nZ!\nu!\nU!\nw!\nl!\nh!\n-!\n",
     {"0=0", "0=1", "0=X", "0=X", "0=Z", "0=Z", "0=U", "0=U", "0=W", "0=L", "0=H", "0=-"}},
    {"vectors: full, extended by 0, x and z, capitals",
     "b1010 \"\nB1 \"\nb0 \"\nbx1 \"\nbZ \"\nb1xz \"\nbx0z1x0z1x0 #\nb10000001 #\nb111111111 #\n",
     {"1=1010", "1=0001", "1=0000", "1=XXX1", "1=ZZZZ", "1=01XZ", "13=X0Z1X0Z1X0", "13=0010000001",
      "13=0111111111"}},
    {"vectors with a surplus that says nothing",
     "b0000001 !\nbxxxxx0 \"\nbzzzzzz \"\nb00000x \"\n",
     {"0=1", "1=XXX0", "1=ZZZZ", "1=000X"}},
    {"scalar changes of vectors, vector changes of scalars",
     "1\"\nx\"\nb1 !\nbx !\n",
     {"1=0001", "1=XXXX", "0=1", "0=X"}},
    {"numbers, whatever their text; a change of bits leaves them alone",
     "r1.5 r!\nR-2e-3 r!\nrNaN r!\nbx r!\nr-1.797693134862316e+308 r!\nrx r!\nr1.5x r!\n",
     {"5=1.5", "5=-0.002", "5=nan", "5=nan", "5=nan", "5=nan"}},
    {"events and strings pass", "1$\nshello\\040you s\nS s\n0!\n", {"0=0"}},
    {"long codes, codes of two widths",
     "1a-long-code-indeed\nb101 2w\nb0001 2w\n12w\n",
     {"23=1", "24=101", "27=1", "24=001", "27=1", "24=001", "27=1"}},
    {"times: before the first, repeated, sparse; several changes in one step",
     "1!\n#0\n0!\n#5\n1!\n0!\n#5\n1!\n#9223372036854775807\n",
     {"0=1", "0=0", "#5", "0=1", "0=0", "0=1", "#9223372036854775807"}},
    {"sections",
     "$dumpvars\n0!\n$end\n#1\n$dumpoff\nx!\n$end\n$comment 1! $end $date x $end\n"
     "#2 $dumpall 1! $end #3\n$comment\n#4\n1!\nb1 $\n$end $vcdclose #5 $end\n",
     {"0=0", "#1", "0=X", "#2", "0=1", "#3", "#5"}},
    {"a $dumpvars that only the end of the file closes, after its time",
     "$dumpvars\n#0\n1!\n#1\n",
     {"0=1", "#1"}},
    {"blanks: CRLF, tabs, empty lines, several on a line",
     "#1\r\n1!\r\n\r\n\t0!  x! b1\t\" b0\n\"\n1\n!\n0 2w",
     {"#1", "0=1", "0=0", "0=X", "1=0001", "1=0000", "0=1", "24=000", "27=0"}},
    {"states of ports",
     "$dumpports\npDUlH 0000 6666 \"\npd0L1 6666 0000\n\"\n$end\n#1\npuhZT 0 6 \"\n"
     "pFfNX 6 6 \"\np?AaB 6 6 \"\n$dumpportsoff pbcCX 6 6 \" $end\n$dumpportson $end\n"
     "$dumpportsall pu 0 6 ! $end\n$vcdclose #9 $end",
     {"1=0101", "1=0001", "#1", "1=11ZZ", "1=ZZXX", "1=XXXX", "1=XXXX", "0=1", "#9"}},
    {"a last line without its end: a change, a time", "1!\nb1 \"", {"0=1", "1=0001"}},
    {"a time that ends the file", "1!\n#12", {"0=1", "#12"}},
    {"a time that was cut off", "#12\n1!\n#1", {"#12", "0=1"}},
    {"a time without digits", "#12\n1!\n#", {"#12", "0=1"}},
};

TEST(VcdEvents, EachStatementMeansItsEvents) {
    for (const EventRow &row : event_rows) {
        SCOPED_TRACE(row.what);
        const VcdReading reading = read_vcd(header + row.text);
        EXPECT_EQ(reading.error, "");
        EXPECT_THAT(reading.events, ElementsAreArray(row.events));
    }
}

TEST(VcdEvents, DamageIsOneMessageAndWhatCameBeforeStays) {
    const std::pair<const char *, const char *> rows[] = {
        {"1?\n", "expected an identifier code that was declared, got '?'"},
        {"1 ?\n", "expected an identifier code right after '1', got a blank"},
        {"b1012 \"\n", "expected digits 0, 1, x or z, got '2'"},
        {"b \"\n", "expected the digits of a vector, got a blank"},
        {"bx0000 \"\n", "expected at most 4 digits for '\"', got 5"},
        {"b1000 2w\n", "expected at most 3 digits for '2w', got 4"},
        {"q!\n", "expected a value change or a time, got 'q!'"},
        {"#-3\n", "expected a time of 0 to 9223372036854775807, got '#-3'"},
        {"#6\n", "expected a time of at least 7, got '#6'"},
        {"$end\n", "expected a value change or a time, got '$end'"},
        {"pUD 0 0 !\n", "expected at most 1 digits for '!', got 2"},
        {"pQ 0 0 !\n", "expected the states of a port, got 'pQ'"},
        // Cut off.
        {"1?", "expected a complete line, got '1?' and end of file"},
        {"b101", "expected a complete line, got 'b101' and end of file"},
        {"r1.5 ", "expected a complete line, got 'r1.5\\x20' and end of file"},
    };
    for (const auto &[text, message] : rows) {
        const VcdReading reading = read_vcd(header + "#7\n0!\n" + text);
        EXPECT_EQ(reading.error, "t.vcd:" + std::to_string(first_line + 2) + ": " + message);
        EXPECT_THAT(reading.events, testing::ElementsAre("#7", "0=0"));
    }
    EXPECT_EQ(read_vcd(header + "$dumpvars\n0!\n").error,
              "t.vcd:9: expected $end of $dumpvars, got end of file");
    EXPECT_EQ(read_vcd(header + "$comment\n0!\n").error,
              "t.vcd:9: expected $end of $comment, got end of file");
    const std::string many_lines = header + std::string(123456 - first_line, '\n');
    EXPECT_EQ(read_vcd(many_lines + "?\n").error,
              "t.vcd:123456: expected a value change or a time, got '?'");
}

TEST(VcdEvents, WarnsOfWhatIsReadOtherwiseThanItStands) {
    const std::string two_widths =
        "t.vcd:4: one code stands for variables of several widths; each takes the last bits of its "
        "values: 'n'";
    const std::pair<const char *, const char *> rows[] = {
        {"1!\nr1.5 \"\nr2 !\n", "8: a number for bits makes them unknown: 'r1.5'"},
        {"1!", "7: the last line has no line end and is taken as it stands: '1!'"},
        {"#7\n#6", "8: the last line has no line end and is left out: '#6'"},
    };
    for (const auto &[text, warning] : rows) {
        EXPECT_THAT(read_vcd(header + text).warnings,
                    testing::ElementsAre(two_widths, std::string("t.vcd:") + warning));
    }
    EXPECT_THAT(read_vcd(header + "r1.5 \"\n").events, testing::ElementsAre("1=XXXX"));
    EXPECT_THAT(read_vcd(header + "1!\n#12").warnings, testing::ElementsAre(two_widths));
}

// Whether `part` is how `whole` begins.
bool begins(const std::vector<std::string> &whole, const std::vector<std::string> &part) {
    return part.size() <= whole.size() && std::equal(part.begin(), part.end(), whole.begin());
}

// `t.vcd:LINE: expected ...`, LINE one of the text's own.
void expect_message(const std::string &error, const std::string &text) {
    ASSERT_THAT(error, MatchesRegex("t\\.vcd:[0-9]+: expected .+, got .+"));
    const auto lines = std::count(text.begin(), text.end(), '\n') + 1;
    EXPECT_LE(std::stol(error.substr(6)), lines) << error;
}

TEST(VcdEvents, AFileCutAnywhereGivesItsBeginningAndSaysSo) {
    const std::string whole = data_file("kinds.vcd");
    const VcdReading complete = read_vcd(whole);
    ASSERT_EQ(complete.error, "");
    ASSERT_GT(complete.events.size(), 100U);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        SCOPED_TRACE(length);
        const std::string text = whole.substr(0, length);
        VcdReading cut = read_vcd(text, 4096);
        const std::string last_line = text.substr(text.rfind('\n') + 1);
        const bool at_line = last_line.empty() || last_line.ends_with("$end");
        if (!cut.loaded || !cut.error.empty()) {
            expect_message(cut.error, text);
        } else if (!at_line) {
            ASSERT_TRUE(last_line[0] == '#' || cut.warnings.size() == 1U);
            // A cut may make a shorter time, or another code, of what is complete as it stands.
            if (!begins(complete.events, cut.events)) {
                cut.events.pop_back();
            }
        }
        ASSERT_TRUE(begins(complete.events, cut.events));
    }
}

TEST(VcdEvents, TheBuffersSizeMakesNoDifference) {
    std::string text = data_file("kinds.vcd");
    for (const EventRow &row : event_rows) {
        SCOPED_TRACE(row.what);
        const std::string own = header + row.text;
        const VcdReading expected = read_vcd(own);
        for (std::size_t block = 1; block < 40; ++block) {
            ASSERT_EQ(read_vcd(own, block, 1 + block % 7).events, expected.events) << block;
        }
    }
    const std::string damaged = text + "#9999\n?";
    const VcdReading expected = read_vcd(damaged);
    for (std::size_t block = 1; block < 200; block += 3) {
        const VcdReading reading = read_vcd(damaged, block, 1 + block % 7);
        ASSERT_EQ(reading.events, expected.events) << block;
        ASSERT_EQ(reading.design, expected.design) << block;
        ASSERT_EQ(reading.error, expected.error) << block;
    }
}

TEST(VcdEvents, WideVectorsOutgrowTheBuffer) {
    const std::string start =
        "$scope module t $end\n$var wire 100000 ! w $end $var wire 2 \" v $end\n"
        "$upscope $end\n$enddefinitions $end\n";
    const std::string digits = std::string(50000, '1') + std::string(50000, '0');
    const VcdReading reading =
        read_vcd(start + "b" + digits + " !\nb" + std::string(99999, '0') + "1 \"\n", 1000, 700);
    EXPECT_EQ(reading.error, "");
    EXPECT_THAT(reading.events, testing::ElementsAre("0=" + digits, "100000=01"));
    EXPECT_EQ(read_vcd(start + "b" + std::string(200000, '0') + " \"\n").error.substr(0, 48),
              "t.vcd:5: expected at most 100000 digits, got mor");
}

std::string code_of(uint32_t number, bool last_lowest) {
    std::string code;
    for (uint64_t rest = uint64_t{number} + 1; rest > 0; rest = (rest - 1) / 94) {
        code.insert(last_lowest ? code.begin() : code.end(),
                    static_cast<char>('!' + (rest - 1) % 94));
    }
    return code;
}

// In both orders of counting, and scattered, so that the table is an array read either way or
// hashed.
TEST(VcdIds, EveryCodeFindsItsTargetAndNoOtherDoes) {
    for (const uint32_t stride : {1U, 7919U * 9973U}) {
        for (const bool last_lowest : {false, true}) {
            SCOPED_TRACE(testing::Message() << stride << " " << last_lowest);
            constexpr uint32_t count = 30000;
            vcd::IdTable ids;
            std::vector<Target> targets;
            for (uint32_t i = 0; i < count; ++i) {
                const std::string code = code_of(i * stride, last_lowest);
                ASSERT_EQ(ids.number(code), i);
                targets.push_back({.slot = i, .shape = 1});
            }
            ASSERT_EQ(ids.number("!"), 0U);
            ids.freeze(targets, {});
            for (uint32_t i = 0; i < count; ++i) {
                const std::string code = code_of(i * stride, last_lowest) + "\nmore text";
                ASSERT_EQ(ids.find(vcd::Code::at(code.c_str())), targets[i]) << code;
            }
            for (const char *unknown : {"~~~~\n0000000", "~~~~~~~~\n00000", "\x80\n00000000",
                                        "\x7f\n00000000", "\n000000000", "!!!!!!!!!\n0000"}) {
                EXPECT_EQ(ids.find(vcd::Code::at(unknown)), Target()) << unknown;
            }
        }
    }
}

}  // namespace
}  // namespace wf::test
