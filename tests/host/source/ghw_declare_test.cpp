// SPDX-License-Identifier: Apache-2.0
// Headers of GHW files: which regions, signals, types and storage they make, and what is refused.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/source/ghw_reading.h"
#include "tests/host/source/vcd_reading.h"

namespace wf::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

// Names: 1 a, 2 ab, 3 abc, 4 time, 5 fs, 6 ns, 7 '0', 8 '1', 9 top
const std::vector<std::string> names = {"a", "ab", "abc", "time", "fs", "ns", "'0'", "'1'", "top"};

// A header with these types and this hierarchy.
std::string header(const std::string &types, const std::string &hierarchy,
                   std::endian order = std::endian::little) {
    return GhwBytes(order).preamble().strings(names).text(types).text(hierarchy).end_of_header();
}

GhwBytes types(uint32_t count, std::endian order = std::endian::little) {
    return GhwBytes(order).section("TYP").word(count);
}

GhwBytes hierarchy(uint32_t leaves, std::endian order = std::endian::little) {
    return GhwBytes(order).section("HIE").word(1).word(1).word(leaves);
}

// Types 1 bit, 2 integer, 3 its subtype 0 to 5, 4 array (3) of 1.
const std::string few_types =
    types(4).bytes({22, 1, 2, 7, 8, 25, 2, 34, 0, 2, 25, 0, 5, 31, 3, 1, 1, 3, 0});

// Made by GHDL from tests/data/kinds.vhd.
TEST(GhwDeclare, MakesTheDesignThatASimulatorWrote) {
    GhwReading reading = read_ghw(data_file("kinds.ghw"));
    // Each concurrent assignment is a process.
    std::erase_if(reading.design, [](const std::string &line) {
        return line.ends_with(" process") && line.find("/P") != line.npos;
    });
    EXPECT_EQ(reading.error, "");
    EXPECT_EQ(reading.resolution, -15);
    EXPECT_THAT(
        reading.design,
        ElementsAre(
            "/standard package", "/textio package", "/std_logic_1164 package",
            "/shared_kinds package", "  everywhere std_logic/9 @0", "/kinds instance",
            "  clock std_logic/9 @1", "  a bit/2 @2", "  b bit/2 @3", "  truth boolean/2 @4",
            "  number integer -2147483648:2147483647 @5", "  falling integer 15:-3 @13",
            "  ratio real @21", "  moment time @29", "  amount charge 0:1000 @37",
            "  sum (1:2) of std_logic/9 @45", "  nothing (0:1) of bit/2 @47",
            "  ask (0:1) of {valid std_logic/9, size integer 0:9} @47",
            "  part_of {data (3:4) of std_logic/9, flag bit/2} @65",
            "  words (5:4) of (1:0) of std_logic/9 @68", "  grid (0:1) of (1:2) of boolean/2 @72",
            "/kinds/u instance", "  clock std_logic/9 in @1", "  pair (1:0) of bit/2 in @76",
            "  sum (1:2) of std_logic/9 out @45", "  back state/4 out @78",
            "  pad std_logic/9 inout @79", "/kinds/copies(0) generate",
            "  mine (1:0) of std_logic/9 @80", "/kinds/copies(1) generate",
            "  mine (1:0) of std_logic/9 @82", "/kinds/copies(1)/only generate",
            "/kinds/copies(1)/only/v instance", "  clock std_logic/9 in @83",
            "  pair (1:0) of bit/2 in @84", "  sum (1:2) of std_logic/9 out @86",
            "  back state/4 out @88", "  pad std_logic/9 inout @89", "/kinds/nested block",
            "  inner bit/2 @90", "/kinds/nested/named process"));
}

// Each scalar is big-endian or little-endian; LEB128 numbers look alike.
TEST(GhwDeclare, ReadsBothOrdersAndBothVersions) {
    for (const std::endian order : {std::endian::little, std::endian::big}) {
        for (const int version : {0, 1}) {
            GhwBytes file(order);
            file.preamble(version).strings(names);
            // 1 real, 2 its subtype from 0.5 down to -1.0
            file.section("TYP").word(2).bytes({27, 1, 34, 2, 1, 27 + 128}).real(0.5).real(-1);
            file.byte(0).section("WKT").bytes({0}).section("HIE").word(1).word(1).word(1);
            file.bytes({6, 9, 16, 3, 2, 1, 15, 0}).end_of_header();
            file.snapshot(0).real(2.5).text({"ESN\0", 4});
            file.cycles(uint32_t{1} << 31).byte(1).real(-0.5).advance(-1).tail();
            const GhwReading reading = read_ghw(file);
            EXPECT_EQ(reading.error, "");
            EXPECT_THAT(reading.design, ElementsAre("/top instance", "  abc a @0"));
            const auto half = std::to_string(std::bit_cast<int64_t>(-0.5));
            EXPECT_THAT(reading.events,
                        ElementsAre("0=" + std::to_string(std::bit_cast<int64_t>(2.5)),
                                    "#2147483648", "0=" + half));
        }
    }
}

struct HierarchyRow {
    const char *what;
    std::string section;
    std::vector<std::string> design;
};

// Signals of few_types: name, type, numbers of scalars. 31 is unbounded; its subtypes come below.
TEST(GhwDeclare, ScalarsThatAreOneAndTheSameShareStorage) {
    // 5: array (1 to 3) of bit, 6: (2 downto 1) of bit
    const std::string more =
        types(6).bytes({22, 1, 2,  7, 8, 25, 2, 34, 0,  2, 25, 0,        5, 31, 3, 1,
                        1,  3, 35, 0, 4, 25, 1, 3,  35, 0, 4,  25 + 128, 2, 1,  0});
    const HierarchyRow rows[] = {
        {"a port, a slice of it, one bit of it, the whole under another type",
         hierarchy(3).bytes({6, 9, 16, 1, 5, 1, 2, 3,  6, 1, 17, 1,  5,  1,
                             2, 3, 18, 2, 6, 2, 3, 19, 3, 1, 3,  15, 15, 0}),
         {"/top instance", "  a (1:3) of a/2 @0", "/top/a instance", "  a (1:3) of a/2 in @0",
          "  ab (2:1) of a/2 out @1", "  abc a/2 inout @2"}},
        {"another order, and scalars met one by one before: storage of its own",
         hierarchy(3).bytes(
             {6, 9, 16, 1, 1, 1, 16, 2, 1, 2, 16, 3, 6, 2, 1, 20, 2, 5, 1, 2, 3, 15, 0}),
         {"/top instance", "  a a/2 @0", "  ab a/2 @1", "  abc (2:1) of a/2 @2",
          "  ab (1:3) of a/2 out @4"}},
        {"numbers in any order, gaps that are filled later",
         hierarchy(4).bytes({6, 9, 16, 1, 6, 4, 2, 16, 2, 6, 1, 3, 21, 3, 3, 5 - 1, 15, 0}),
         {}},
        {"kinds of scopes, processes without an end, indices of generate statements",
         hierarchy(0).bytes(
             {7, 9, 15, 6, 9, 3, 1, 13, 2, 15, 4, 1, 15, 5, 2, 3, 5, 15, 5, 2, 1, 1, 15, 15, 0}),
         {"/top package", "/top instance", "/top/a block", "/top/a/ab process", "/top/a generate",
          "/top/ab(5) generate", "/top/ab('1') generate"}}};
    for (const HierarchyRow &row : rows) {
        SCOPED_TRACE(row.what);
        const GhwReading reading = read_ghw(header(more, row.section));
        if (row.design.empty()) {
            EXPECT_THAT(reading.error, testing::HasSubstr("one type for scalar 4"));
        } else {
            EXPECT_TRUE(reading.loaded) << reading.error;
            EXPECT_THAT(reading.design, ElementsAreArray(row.design));
        }
    }
}

struct Fault {
    std::string bytes;
    std::size_t offset;
    const char *message;  // see ghw_error
};

std::string with_types(std::initializer_list<int> bytes, uint32_t count = 1) {
    return header(types(count).bytes(bytes), "");
}

std::string with_hierarchy(std::initializer_list<int> bytes, uint32_t leaves = 3) {
    return header(few_types, hierarchy(leaves).bytes(bytes));
}

TEST(GhwDeclare, RefusesWhatMakesNoSenseInOneMessage) {
    const GhwBytes start = GhwBytes().preamble();
    const auto string_section = [](std::initializer_list<int> bytes) {
        return GhwBytes().preamble().section("STR").word(2).word(0).bytes(bytes);
    };
    const Fault rows[] = {
        {"GHDLwave", 0, "header: GHDLwave and a line end, got 8 bytes and end of file"},
        {GhwBytes().preamble(2), 11, "header: version 0.0 or 0.1, got 0.2"},
        {GhwBytes().text("GHDLwave\n").bytes({16, 0, 1, 3, 4, 1, 0}), 12,
         "header: the order of bytes, 1 or 2, got 3"},
        {GhwBytes().text("GHDLwave\n").bytes({16, 0, 1, 1, 8, 1, 0}).word(0).word(0), 13,
         "header: words of 4 bytes and offsets of 1, got the bytes 08 01 00 00 00 00 00 00 00 "
         "00"},
        {GhwBytes(start).strings({"a"}).strings({"a"}), 38,
         "header: a section STR (once), TYP, WKT, HIE or EOH, got the bytes 53 54 52 00"},
        {string_section({'a', 2, 'b', 0}), 33,
         "STR: at most 1 characters of the string before, got 2"},
        {string_section({'a', 0x82, 'b', 0}), 34,
         "STR: the length of what strings share, got byte 98"},
        {GhwBytes(start).section("STR").word(1).word(0).text(std::string(20000, 'a')), 4129,
         "STR: a string of at most 4096 characters, got a longer one"},
        {with_types({99}), 76, "TYP: the kind of a type, got 99"},
        {with_types({24, 1}), 76, "TYP: an enumeration of at most 256 literals, got a larger one"},
        {with_types({23, 1, 0}), 78, "TYP: a literal, got an enumeration without any"},
        {with_types({34, 1, 1}), 78, "TYP: the number of a base type of at most 0, got 1"},
        {with_types({27, 1, 31, 2, 1, 1, 1}, 2), 82,
         "TYP: the number of a discrete type, got another type"},
        {with_types({25, 1, 31, 2, 1, 0}, 2), 81, "TYP: a number of dimensions, got 0"},
        {with_types({25, 1, 31, 2, 1, 1, 1, 35, 0, 2, 25, 0, 0xff, 0xff, 0xff, 0xff, 0x1f}, 3), 88,
         "TYP: bounds of 32 bits, got wider ones"},
        // 2^28 elements of eight bytes are the limit
        {with_types({25, 1, 31, 2, 1, 1, 1, 35, 0, 2, 25, 0, 0x80, 0x80, 0x80, 0x80, 1}, 3), 88,
         "TYP: a type of at most 2147483648 bytes, got a larger one"},
        // a great many elements of an array without any
        {with_types({25, 1, 31, 2, 1,  1, 1, 35, 0, 2,    25,   1,    0,    31,
                     0,  3, 1,  1, 35, 0, 4, 25, 0, 0xff, 0xff, 0xff, 0xff, 3},
                    5),
         99, "TYP: a type of at most 64 levels and 65536 empty elements, got a larger one"},
        {with_hierarchy({16}), 115, "HIE: a scope, got a signal outside of all scopes"},
        {with_hierarchy({15}), 115, "HIE: a scope, got the end of one"},
        {with_hierarchy({6, 9, 0}), 117, "HIE: the end of a scope, got the end of the hierarchy"},
        {with_hierarchy({6, 9, 16, 1, 4}), 119, "HIE: a type with bounds, got one without"},
        {with_hierarchy({6, 9, 16, 1, 1, 0}), 120,
         "HIE: the number of a scalar of at least 1, got 0"},
        {with_hierarchy({6, 9, 16, 1, 1, 1, 16, 2, 2, 1}), 124,
         "HIE: one type for scalar 1, got another one"},
        {with_hierarchy({6, 9, 16, 1, 1, 3, 15, 0}), 123,
         "EOH: a signal for each scalar up to 3, got none for 1"},
        {with_hierarchy({6, 9, 16, 1, 1, 0xff, 0xff, 0xff, 0x7f}, UINT32_MAX), 120,
         "HIE: the numbers of scalars one after the other, got 268435455"},
        {with_hierarchy({5, 9, 1, 2}), 118, "HIE: a position below 2, got 2"},
        {with_hierarchy(
             {6, 9, 16, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0}),
         118, "HIE: the name of a signal, got the bytes 80 80 80 80 80 80 80 80 80 80"},
    };
    for (const auto &[bytes, offset, message] : rows) {
        const GhwReading reading = read_ghw(bytes);
        EXPECT_EQ(reading.error, ghw_error(offset, message));
        EXPECT_FALSE(reading.loaded);
    }
}

// A file of few bytes may say that it is large; what is believed is what is there.
TEST(GhwDeclare, NestingHasItsLimits) {
    GhwBytes deep = types(2000).bytes({25, 1});
    for (int type = 2; type < 400; type += 2) {
        deep.bytes({31, 0}).number(static_cast<uint64_t>(type) - 1).bytes({1, 1, 35, 0});
        deep.number(static_cast<uint64_t>(type)).bytes({25, 0, 0});
    }
    EXPECT_THAT(read_ghw(header(deep, "")).error,
                testing::HasSubstr("expected a type of at most 64 levels and"));
    GhwBytes scopes = hierarchy(0);
    for (int i = 0; i < 2000; ++i) {
        scopes.bytes({6, 1});
    }
    EXPECT_THAT(read_ghw(header(few_types, scopes)).error,
                testing::HasSubstr("expected at most 1000 levels of hierarchy, got more"));
}

// More scalars than may be left out, in the order that has the highest number first.
TEST(GhwDeclare, ASignalMayBeLarge) {
    constexpr uint32_t count = (1U << 20) + 40000;
    const GhwBytes memory =
        types(3).bytes({25, 1, 31, 2, 1, 1, 1, 35, 0, 2, 25, 0}).signed_number(count - 1).byte(0);
    GhwBytes one = hierarchy(count).bytes({6, 9, 16, 1, 3});
    for (uint32_t number = count; number > 0; --number) {
        one.number(number);
    }
    const GhwReading reading = read_ghw(header(memory, one.bytes({15, 0})));
    EXPECT_TRUE(reading.loaded) << reading.error;
}

}  // namespace
}  // namespace wf::test
