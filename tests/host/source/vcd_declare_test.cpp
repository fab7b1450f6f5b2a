// SPDX-License-Identifier: Apache-2.0
// Declarations of VCD files: which regions, signals and storage they make, and what is refused.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/source/vcd_reading.h"

namespace wf::test {
namespace {

using testing::ElementsAreArray;

std::string in_top(const std::string &variables) {
    return "$scope module top $end\n" + variables + "\n$upscope $end\n$enddefinitions $end\n";
}

struct DesignRow {
    const char *what;
    std::string declarations;
    std::vector<std::string> design;
};

const DesignRow design_rows[] = {
    {"ranges: ascending, descending, negative, missing, one bit, without a blank",
     in_top("$var wire 8 ! a [7:0] $end $var reg 4 \" b [0:3] $end $var reg 4 # c [1:-2] $end\n"
            "$var logic 3 $ d $end $var wire 1 % e [5:5] $end $var bit 2 & f[1:0] $end\n"
            "$var tri 2 ' g [ 1 : 0 ] $end\n"),
     {"/top module", "  a(7:0) @0", "  b(0:3) @8", "  c(1:-2) @12", "  d(2:0) @16", "  e(5:5) @19",
      "  f(1:0) @20", "  g(1:0) @22"}},
    {"kinds without a state of bits make no signal, numbers are kept as such",
     in_top("$var event 1 ! ev $end $var parameter 32 \" P [31:0] $end $var string 0 # s $end\n"
            "$var real 64 $ r $end $var realtime 64 % rt $end $var integer 32 & i $end\n"
            "$var time 64 ' t $end $var byte 8 ( b $end $var supply1 1 ) vdd $end\n"),
     {"/top module", "  r real @0", "  rt real @8", "  i(31:0) @16", "  t(63:0) @48",
      "  b(7:0) @112", "  vdd @120"}},
    {"bits one by one, falling, rising, jumbled, with a hole; written with and without a blank",
     in_top("$var wire 1 ! f [2] $end $var wire 1 \" f [1] $end $var wire 1 # f [0] $end\n"
            "$var wire 1 $ r[-1] $end $var wire 1 % r[0] $end\n"
            "$var wire 1 & j [0] $end $var wire 1 ' h[7] $end $var wire 1 ( j [2] $end\n"
            "$var wire 1 ) h[4] $end $var wire 1 * j [1] $end $var wire 1 + one [3] $end\n"),
     {"/top module", "  f(2:0) @0", "  r(-1:0) @3", "  j(2:0) @5", "  h(7:4) @8",
      "  one(3:3) @12"}},
    {"bits stay apart beside a variable of their name, and when far apart",
     in_top("$var wire 1 ! a $end $var wire 1 \" a [1] $end\n"
            "$var wire 1 # b [0] $end $var wire 1 $ b [1000] $end\n"),
     {"/top module", "  a @0", "  a[1] @1", "  b[0] @2", "  b[1000] @3"}},
    {"words of a memory, escaped or not, falling and rising",
     in_top("$var reg 2 ! \\m[0] [1:0] $end $var reg 2 \" \\m[1] [1:0] $end\n"
            "$var reg 3 # n[5][2:0] $end $var reg 3 $ n[4][2:0] $end $var reg 2 % k[0] $end\n"
            "$var reg 2 & k[1] $end\n"),
     {"/top module", "  m(0:1)(1:0) @0", "  n(5:4)(2:0) @4", "  k(0:1)(1:0) @10"}},
    {"words stay apart with a gap, with two ranges, alone, or beside their name",
     in_top("$var reg 2 ! \\g[0] [1:0] $end $var reg 2 \" \\g[2] [1:0] $end\n"
            "$var reg 2 # \\w[0] [1:0] $end $var reg 2 $ \\w[1] [0:1] $end\n"
            "$var reg 2 % \\a[0] [1:0] $end\n"
            "$var reg 1 & n $end $var reg 2 ' \\n[0] [1:0] $end $var reg 2 ( \\n[1] [1:0] $end\n"),
     {"/top module", "  g[0](1:0) @0", "  g[2](1:0) @2", "  w[0](1:0) @4", "  w[1](0:1) @6",
      "  a[0](1:0) @8", "  n @10", "  n[0](1:0) @11", "  n[1](1:0) @13"}},
    {"escaped names keep their brackets and odd characters",
     in_top("$var wire 1 ! \\s[0] $end $var wire 1 \" \\s[1] $end $var wire 1 # \\a.b/c $end\n"
            "$var wire 1 $ $auto$1 $end\n"),
     {"/top module", "  s[0] @0", "  s[1] @1", "  a.b/c @2", "  $auto$1 @3"}},
    {"extended names keep both backslashes, their brackets and their blanks",
     "$scope module \\u.1 (x)\\ $end $var reg 1 ! \\clk/2\\ $end $var reg 1 \" \\in port\\ $end\n"
     "$var reg 4 # \\out[1]\\[3:0] $end $var reg 2 $ \\a  b\\ [0:1] $end $var reg 1 % \\s\\[2] "
     "$end\n"
     "$var reg 1 & \\x\\y $end $var reg 2 ' \\x\\z [1:0] $end $upscope $end $enddefinitions $end\n",
     {"/\\u.1 (x)\\ module", "  \\clk/2\\ @0", "  \\in port\\ @1", "  \\out[1]\\(3:0) @2",
      "  \\a b\\(0:1) @6", "  \\s\\(2:2) @8", "  x\\y @9", "  x\\z(1:0) @10"}},
    {"one code for many names: one storage, a signal each; one set of bits in two orders",
     in_top("$var wire 1 ! a $end $var wire 2 \" v [1:0] $end $var wire 1 # p[1] $end\n"
            "$var wire 1 $ p[0] $end $scope module u $end $var wire 1 ! x $end\n"
            "$var wire 2 \" y [8:9] $end $var wire 1 # q[1] $end $var wire 1 $ q[0] $end\n"
            "$var wire 1 $ s[1] $end $var wire 1 # s[0] $end $upscope $end\n"),
     {"/top module", "  a @0", "  v(1:0) @1", "  p(1:0) @3", "/top/u module", "  x @0",
      "  y(8:9) @1", "  q(1:0) @3", "  s(1:0) @5"}},
    {"one code with two widths: storage for each",
     in_top("$var wire 4 ! a [3:0] $end $var wire 2 ! b [1:0] $end $var wire 2 ! c [1:0] $end\n"),
     {"/top module", "  a(3:0) @0", "  b(1:0) @4", "  c(1:0) @4"}},
    {"kinds of scopes, several roots, and a kind that nobody knows",
     "$scope package p $end $upscope $end $scope module t $end $scope begin b[0] $end $upscope "
     "$end\n"
     "$scope task \\k.1 $end $upscope $end $scope function f $end $upscope $end\n"
     "$scope struct s $end $upscope $end $scope interface i $end $upscope $end\n"
     "$scope generate g $end $upscope $end $scope vhdl_process v $end $upscope $end\n"
     "$scope cell c $end $upscope $end $enddefinitions $end\n",
     {"/p package", "/t module", "/t/b[0] block", "/t/k.1 task", "/t/f function", "/t/s record",
      "/t/i interface", "/t/g generate", "/t/v process", "/t/c module"}},
    {"a scope opened again goes on; the same declaration in it counts once, bits join",
     "$scope module t $end $var wire 1 ! a $end $var wire 1 \" b[1] $end $upscope $end\n"
     "$scope module t $end $var wire 1 ! a $end $var wire 1 # b[0] $end $var wire 1 \" b[1] $end\n"
     "$upscope $end $enddefinitions $end\n",
     {"/t module", "  a @0", "  b(1:0) @1"}},
    {"sections anywhere, unknown ones skipped, CRLF",
     "\r\n$date today $end\r\n$scope module t $end\r\n$comment $var $scope $end\r\n"
     "$attrbegin misc 02 x $end\r\n$var wire 1 ! p $end\r\n"
     "$upscope $end\r\n$enddefinitions $end\r\n",
     {"/t module", "  p @0"}},
    {"ports go as their first states say; later ones, strengths and comments say nothing",
     in_top(
         "$var port [3:0] <0 i $end $var port [1:0] <1 o [1:0] $end $var port 2 <2 m [0:1] $end\n"
         "$var port 1 <3 b[1] $end $var port 1 <4 b[0] $end $var port 1 <5 late $end\n"
         "$var port 1 <6 c[1] $end $var port 1 <7 c[0] $end") +
         "$comment pL 0 6 <0 $end\n#0 $dumpports\npDUNZ 6666 6666 <0\npLT 66 00 <1\n"
         "pDL 66 66 <2 pl 6 0 <3\npX 6 6 <4\npu 0 6 <6 pF 0 0 <7 $end\npL 6 6 <0 #1 pD 6 0 <5\n",
     {"/top module", "  i(3:0) in @0", "  o(1:0) out @4", "  m(0:1) inout @6", "  b(1:0) out @8",
      "  late inout @10", "  c(1:0) inout @11"}},
};

TEST(VcdDeclare, MakesTheDesignThatTheDeclarationsMean) {
    for (const DesignRow &row : design_rows) {
        SCOPED_TRACE(row.what);
        const VcdReading reading = read_vcd(row.declarations);
        EXPECT_EQ(reading.error, "");
        EXPECT_THAT(reading.design, ElementsAreArray(row.design));
    }
}

// What other readers' writers get wrong: the design and the events that are left, and the warning.
TEST(VcdDeclare, PassesOverWhatCannotBeShownAndSaysSo) {
    const struct {
        std::string text;
        std::vector<std::string> reading;  // the design, then the events
        const char *warning;
    } rows[] = {
        {"$var wire 1 ! a $end\n" + in_top("$var wire 1 ! b $end") + "1!\n",
         {"/top module", "  b @0", "0=1"},
         "1: a variable outside of all scopes is passed over: 'a'"},
        {in_top("$upscope $end\n$var wire 1 ! a $end $var wire 2 \" b $end\n$scope module u $end") +
             "1!\nb11 \"\n",
         {"/top module", "/u module"},
         "3: a variable outside of all scopes is passed over: 'a' and 1 more"},
        {in_top("$var wire 0 ! n [-1:0] $end\n$var reg 1 \" a $end") + "b !\nb  !\n1\"\n",
         {"/top module", "  a @0", "0=1"},
         "2: a vector of no bits is passed over: 'n[-1:0]'"},
        {in_top("$var reg 1 \" a $end\n$var logic 8 ! n[3:0] $end") + "b11110000 !\n1\"\n",
         {"/top module", "  a @0", "0=1"},
         "3: a variable whose range does not fit its width is passed over: 'n[3:0]'"},
        {in_top("$var wirr 2 ! a [1:0] $end") + "b10 !\n",
         {"/top module", "  a(1:0) @0", "0=10"},
         "2: a variable of an unknown kind is taken for bits: 'a[1:0]'"},
        {in_top("$var wire 2 ! a $end $var wire 2 ! a $end\n$var wire 2 \" a $end\n"
                "$var wire 2 ! a [0:1] $end") +
             "b10 !\nb01 \"\n",
         {"/top module", "  a(1:0) @0", "0=10"},
         "3: another signal of a name that its scope has already is passed over: 'a' and 1 more"},
        {in_top("$var wire 1 % c [0] $end\n$var wire 1 & c [0] $end") + "1%\n1&\n",
         {"/top module", "  c[0] @0", "0=1"},
         "3: another signal of a name that its scope has already is passed over: 'c[0]'"},
        {in_top("$var wire 1 \" a [1] $end\n$var wire 1 # \\a[2] $end $var wire 2 ! a [1:0] $end\n"
                "$var wire 1 $ b [0] $end $var wire 1 % \\b[0] $end") +
             "1\"\n1#\nb10 !\n1$\n1%\n",
         {"/top module", "  a[2] @0", "  a(1:0) @1", "  b(0:0) @3", "0=1", "1=10", "3=1"},
         "2: another signal of a name that its scope has already is passed over: 'a[1]' and 1 "
         "more"},
        {in_top("$var wire 4 ! a $end\n$var wire 2 ! b $end") + "b1001 !\n",
         {"/top module", "  a(3:0) @0", "  b(1:0) @4", "0=1001", "4=01"},
         "3: one code stands for variables of several widths; each takes the last bits of its "
         "values: 'b'"},
    };
    for (const auto &row : rows) {
        VcdReading reading = read_vcd(row.text);
        EXPECT_EQ(reading.error, "");
        reading.design.insert(reading.design.end(), reading.events.begin(), reading.events.end());
        EXPECT_THAT(reading.design, ElementsAreArray(row.reading)) << row.text;
        EXPECT_THAT(reading.warnings, testing::ElementsAre("t.vcd:" + std::string(row.warning)));
    }
}

TEST(VcdDeclare, TimescaleIsThePowerOfTen) {
    const std::pair<const char *, int> rows[] = {
        {"1 s", 0},    {"10s", 1},    {"100 s", 2},   {"1ms", -3},  {"100ms", -1},  {"10 us", -5},
        {"1\nns", -9}, {"100ns", -7}, {"10 ps", -11}, {"1fs", -15}, {"100 fs", -13}};
    for (const auto &[text, exponent] : rows) {
        const std::string timescale = std::string("$timescale ") + text + " $end ";
        EXPECT_EQ(read_vcd(timescale + in_top("")).resolution, exponent) << text;
    }
    EXPECT_EQ(read_vcd(in_top("")).resolution, -9);
}

TEST(VcdDeclare, RefusesWhatMakesNoSenseInOneMessage) {
    const struct {
        std::string text;
        int line;
        const char *expected;
    } rows[] = {
        {"", 1, "$enddefinitions, got end of file"},
        {"$date\n", 2, "$end of $date, got end of file"},
        {"$scope module t $end\n#0\n", 2, "$enddefinitions, got '#0'"},
        {"$end\n", 1, "a section, got '$end'"},
        {"$timescale 2ns $end", 1,
         "a timescale of 1, 10 or 100 s, ms, us, ns, ps or fs, got '2ns'"},
        {"$timescale 1ns\n$scope module t $end", 2, "$end of $timescale, got '$scope'"},
        {"$scope $end", 1, "the kind of a scope, got '$end'"},
        {"$scope module $end", 1, "the name of a scope, got '$end'"},
        {"$scope module \\a b $end", 1, "$end of $scope, got 'b'"},
        {"$upscope $end", 1, "an open $scope, got '$upscope'"},
        {in_top("$var $end"), 2, "the kind of a variable, got '$end'"},
        {in_top("$var wire x ! a $end"), 2, "a width in bits, got 'x'"},
        {in_top("$var wire 1 ! [3] $end"), 2, "the name of a variable, got '[3]'"},
        {in_top("$var wire 1 $end"), 2, "an identifier code, got '$end'"},
        {in_top("$var wire 1 ! a\n$var wire 1 \" b $end"), 3, "$end of $var, got '$var'"},
    };
    for (const auto &[text, line, expected] : rows) {
        const VcdReading reading = read_vcd(text);
        EXPECT_EQ(reading.error, "t.vcd:" + std::to_string(line) + ": expected " + expected);
        EXPECT_FALSE(reading.loaded);
    }
}

}  // namespace
}  // namespace wf::test
