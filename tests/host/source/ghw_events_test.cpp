// SPDX-License-Identifier: Apache-2.0
// Events of GHW files: what reaches a sink, wherever the buffer ends; damage; cuts at every byte.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iterator>
#include <sstream>

#include "tests/host/source/ghw_reading.h"
#include "tests/host/source/vcd_reading.h"

namespace wf::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

// Scalars 1 and 2 are the bits of p at slots 0 and 1, 3 is the integer n at 2, 4 the real r at 10;
// q is 2 and 1 in another order, at 18 and 19, and m is n once more, with a bit of its own before
// it: the numbers 5 at 20 and 3 at 21.
GhwBytes with_design() {
    GhwBytes file;
    file.preamble().strings({"'0'", "'1'", "n", "p", "q", "r", "t"});
    file.section("TYP").word(6).bytes({22, 0, 2, 1, 2, 25, 0, 27, 0, 31, 0, 1, 1, 2});
    file.bytes({35, 0, 4, 25, 1, 2, 32, 0, 2, 4, 1, 3, 2, 0});
    file.section("HIE").word(1).word(5).word(5).bytes({6, 7, 16, 4, 5, 1, 2, 16, 3, 2, 3});
    return file.bytes({16, 6, 3, 4, 16, 5, 5, 2, 1, 16, 3, 6, 5, 3, 15, 0}).end_of_header();
}

GhwBytes with_snapshot() {
    return with_design().snapshot(0).bytes({0, 1, 0x7f}).real(1).bytes({1}).text({"ESN\0", 4});
}

// The events of the snapshot and then these, a blank between two.
std::vector<std::string> first_and(const std::string &more) {
    std::istringstream words("0=0 19=0 1=1 18=1 2=-1 21=-1 10=" +
                             std::to_string(std::bit_cast<int64_t>(1.0)) + " 20=1 " + more);
    return {std::istream_iterator<std::string>(words), {}};
}

TEST(GhwEvents, ReachTheSinkInTheirOrder) {
    GhwBytes file = with_snapshot();
    file.cycles(0).bytes({1, 1}).advance(70000).bytes({2, 0, 1}).signed_number(INT64_MIN);
    file.advance(0).bytes({5, 0}).advance(5).advance(1).bytes({4}).real(0).advance(-1);
    file.snapshot(70006).bytes({1, 1, 0}).real(0).bytes({1}).text({"ESN\0", 4});
    file.cycles(70010).bytes({1, 0}).advance(-1).tail();
    const std::vector<std::string> expected = first_and(
        "0=1 19=1 #70000 1=0 18=0 2=-9223372036854775808 21=-9223372036854775808 20=0 #70005 "
        "#70006 10=0 0=1 19=1 1=1 18=1 2=0 21=0 10=0 20=1 #70010 0=0 19=0");
    for (const std::size_t block :
         {std::size_t{0}, std::size_t{1}, std::size_t{33}, std::size_t{1} << 20}) {
        for (const std::size_t piece : {std::size_t{1}, std::size_t{7}, SIZE_MAX}) {
            const GhwReading reading = read_ghw(file, block, piece);
            EXPECT_EQ(reading.error, "");
            EXPECT_THAT(reading.events, ElementsAreArray(expected));
        }
    }
}

TEST(GhwEvents, DamageIsNamedAndWhatStandsBeforeItCounts) {
    const std::size_t start = static_cast<const std::string &>(with_snapshot()).size();
    struct Row {
        std::string behind;
        std::size_t offset;
        const char *message;
    };
    const Row rows[] = {
        {GhwBytes(), 0, "events: a section SNP, CYC, DIR or TAI, got end of file"},
        {GhwBytes().text("ECY").byte(0), 0,
         "events: a section SNP, CYC, DIR or TAI, got the bytes 45 43 59 00"},
        {GhwBytes().cycles(-1), 4, "CYC: a time of at least 0, got -1"},
        {GhwBytes().cycles(0).bytes({6, 0}), 12, "CYC: the number of a scalar of at most 5, got 6"},
        {GhwBytes().cycles(0).bytes({1, 2, 0, 0, 0, 0, 0, 0, 0, 0}), 12,
         "CYC: a value of scalar 1, a position of at most 1, got the bytes 01 02 00 00 00 00 00 00 "
         "00 00"},
        {GhwBytes().cycles(0).bytes({3, 0x80}), 12,
         "CYC: a value of scalar 3, got 2 bytes and end of file"},
        {GhwBytes().cycles(0).byte(0), 12,
         "CYC: the end of a cycle and the time to the next, got 1 bytes and end of file"},
        {GhwBytes().cycles(5).advance(-2), 13,
         "CYC: a time to the next cycle of 0 to 9223372036854775802, got -2"},
        {GhwBytes().snapshot(0).bytes({0, 0, 0}).real(0).byte(0).text("E"), 28,
         "SNP: the end mark ESN, got 1 bytes and end of file"},
        {GhwBytes().text({"DIR\0", 4}).word(0).word(0).text("EOF"), 12,
         "DIR: the end mark EOD, got 3 bytes and end of file"},
        {GhwBytes().text({"TAI\0", 4}).word(0), 8,
         "TAI: the place of the directory, got end of file"},
        {GhwBytes().tail().byte(0), 44, "events: the end of the file, got 1 bytes and end of file"},
    };
    for (const auto &[behind, offset, message] : rows) {
        GhwBytes file = with_snapshot();
        const GhwReading reading = read_ghw(file.text(behind));
        EXPECT_EQ(reading.error, ghw_error(start + offset, message));
        const std::vector<std::string> expected = first_and("");
        ASSERT_GE(reading.events.size(), expected.size());
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), reading.events.begin()));
    }
}

// Everything before the cut is told, and what is cut is told of.
TEST(GhwEvents, AFileThatIsCutAnywhereGivesItsBeginningAndOneMessage) {
    const std::string whole = data_file("kinds.ghw");
    const GhwReading complete = read_ghw(whole);
    ASSERT_EQ(complete.error, "");
    ASSERT_GT(complete.events.size(), 50U);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const GhwReading cut = read_ghw(whole.substr(0, length), length % 100, 1 + length % 50);
        ASSERT_THAT(cut.error, testing::ContainsRegex("^t.ghw: byte [0-9]+, section [A-Za-z]+: "
                                                      "expected .*, got .*end of file$"))
            << length;
        ASSERT_LE(cut.events.size(), complete.events.size());
        ASSERT_TRUE(std::equal(cut.events.begin(), cut.events.end(), complete.events.begin()))
            << length;
    }
}

}  // namespace
}  // namespace wf::test
