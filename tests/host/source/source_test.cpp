// SPDX-License-Identifier: Apache-2.0
// Files of both formats as sources: recognised by content, loaded into a design, replayed into a
// kernel to the time that was asked for and no further.
#include "host/source/source.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "host/design/value_text.h"
#include "host/kernel/kernel.h"
#include "host/source/ghw/source.h"
#include "host/source/vcd/source.h"
#include "tests/host/source/ghw_reading.h"
#include "tests/host/source/vcd_reading.h"

namespace wf::test {
namespace {

using testing::ElementsAre;

constexpr Ticks forever = std::numeric_limits<Ticks>::max();

// A source with its design and its kernel, and what a process that watches some signals has seen.
struct Replay {
    Replay(std::unique_ptr<Source> opened, std::vector<std::string> paths)
        : source(std::move(opened)), watched(std::move(paths)) {
        if (source == nullptr || !source->load(design)) {
            throw std::runtime_error(source == nullptr ? "not opened" : source->error());
        }
        kernel = std::make_unique<Kernel>(design);
        Process *watcher = kernel->create_process("watcher", &Replay::note, this);
        for (const std::string &path : watched) {
            kernel->sensitize(watcher, *design.find_object(path));
        }
    }
    static void note(void *replay) {
        auto *self = static_cast<Replay *>(replay);
        self->steps.push_back(std::to_string(self->kernel->now()) + self->values());
    }
    std::string value(const std::string &path) {
        const Signal *signal = design.find_object(path);
        return value_text(*signal->type, design.values() + signal->slot);
    }
    // All that is watched, a blank before each.
    std::string values() {
        std::string text;
        for (const std::string &path : watched) {
            text += " " + value(path);
        }
        return text;
    }
    Progress to(Ticks limit, StopFlag stop = nullptr) {
        return source->advance_to(*kernel, limit, stop);
    }

    std::unique_ptr<Source> source;
    Design design;
    std::unique_ptr<Kernel> kernel;
    std::vector<std::string> watched;
    std::vector<std::string> steps;
};

const std::string vcd_header =
    "$scope module t $end\n$var wire 1 ! b $end\n$var wire 1 \" c $end\n$var real 64 # r $end\n"
    "$upscope $end\n$enddefinitions $end\n";

// Two bits b and c, 1 and 0 at first.
GhwBytes ghw_header() {
    GhwBytes file;
    file.preamble().strings({"'0'", "'1'", "b", "c", "t"});
    file.section("TYP").word(1).bytes({22, 0, 2, 1, 2, 0});
    file.section("HIE").word(1).word(2).word(2).bytes({6, 5, 16, 3, 1, 1, 16, 4, 1, 2, 15, 0});
    return file.end_of_header().snapshot(0).bytes({1, 0}).text({"ESN\0", 4}).cycles(0);
}

// One history in either format: changes at 10, 20 and 30, several of them at 10.
struct Format {
    const char *name;
    std::unique_ptr<Source> (*make)(std::unique_ptr<Input>, std::size_t block);
    std::string whole;
    std::string damaged;  // behind the last change
    const char *message;
    std::string lengthy;  // a change of b at each time from 1 to 3000
};

std::vector<Format> formats() {
    // The header is longer than a block.
    const std::string vcd = "$comment " + std::string(200000, '.') + " $end " + vcd_header +
                            "#10\n1!\n0!\n1\"\n#20\n1!\n#30\n0\"\n";
    GhwBytes ghw = ghw_header();
    ghw.advance(10).bytes({1, 0, 1, 1}).advance(10).bytes({1, 1}).advance(10).bytes({2, 0});
    GhwBytes damaged = ghw;
    std::string lengthy_vcd = vcd_header;
    GhwBytes lengthy_ghw = ghw_header();
    for (int i = 1; i <= 3000; ++i) {
        lengthy_vcd += "#" + std::to_string(i) + "\n" + std::to_string(i % 2) + "!\n";
        lengthy_ghw.advance(1).bytes({1, i % 2});
    }
    return {
        {"vcd", vcd::make_source, vcd, vcd + "?\n#40\n",
         "t:15: expected a value change or a time, got '?'", lengthy_vcd},
        {"ghw", ghw::make_source, ghw.advance(-1).tail(), damaged.bytes({9, 9}),
         "expected the number of a scalar of at most 2, got 11", lengthy_ghw.advance(-1).tail()}};
}

Replay replay_of(const Format &format, const std::string &bytes) {
    return {format.make(make_memory_input("t", bytes), 65536), {"/t/b", "/t/c"}};
}

TEST(Sources, GoBackToTheirFirstEvent) {
    for (const Format &format : formats()) {
        for (const std::string &whole : {format.whole, format.damaged, format.lengthy}) {
            Replay once = replay_of(format, whole);
            const std::string first = once.values();
            const Progress end = once.to(forever);
            for (const std::string &file : {whole, gzipped(whole), bzipped(whole)}) {
                SCOPED_TRACE(format.name);
                std::string error;
                Replay again(open_source(temporary_file("t", file), &error), once.watched);
                for (const Ticks reached : {Ticks{15}, forever, forever}) {
                    again.to(reached);
                    ASSERT_EQ(again.source->rewind_obstacle(), "");
                    ASSERT_TRUE(again.source->rewind(again.design));
                    again.kernel->restart();
                    EXPECT_EQ(again.values(), first);
                    EXPECT_EQ(again.source->error(), "");
                    again.steps.clear();
                }
                EXPECT_EQ(again.to(forever), end);
                EXPECT_EQ(again.steps, once.steps);
                EXPECT_EQ(again.source->error().substr(again.source->error().find(": ") + 1),
                          once.source->error().substr(once.source->error().find(": ") + 1));
            }
        }
    }
}

TEST(Sources, AreStoppedBetweenStepsByTheFlag) {
    for (const Format &format : formats()) {
        SCOPED_TRACE(format.name);
        Replay replay = replay_of(format, format.whole);
        const volatile std::sig_atomic_t stop = 1;
        // A VCD file has a step at time 0 as well.
        for (int calls = 0; calls < 2 && replay.kernel->now() < 10; ++calls) {
            EXPECT_EQ(replay.to(forever, &stop), Progress::interrupted);
        }
        EXPECT_EQ(replay.kernel->now(), 10);
        EXPECT_THAT(replay.steps, ElementsAre("10 0 1"));
        EXPECT_EQ(replay.to(forever), Progress::end_of_data);
        EXPECT_THAT(replay.steps, ElementsAre("10 0 1", "20 1 1", "30 1 0"));
    }
}

TEST(Sources, TellHowFarTheyAre) {
    for (const auto &[name, make, whole, damaged, message, lengthy] : formats()) {
        SCOPED_TRACE(name);
        const auto source = make(make_memory_input("t", lengthy), 1024);
        std::vector<SourcePosition> positions;
        source->on_progress([&](const SourcePosition &at) { positions.push_back(at); });
        Design design;
        ASSERT_TRUE(source->load(design));
        Kernel kernel(design);
        EXPECT_EQ(source->advance_to(kernel, forever, nullptr), Progress::end_of_data);
        ASSERT_GT(positions.size(), lengthy.size() / 1100);
        EXPECT_EQ(positions[3].bytes_total, lengthy.size());
        EXPECT_GT(positions[3].bytes_read, positions[2].bytes_read);
        EXPECT_GT(positions[3].last_time, positions[2].last_time);
        EXPECT_EQ(positions.back().bytes_read, lengthy.size());
    }
}

TEST(GhwSource, BeginsWithTheValuesThatTimeZeroEndsWith) {
    const std::string whole = ghw_header().bytes({2, 1}).advance(5).advance(-1).tail();
    Replay replay(ghw::make_source(make_memory_input("t", whole)), {"/t/b", "/t/c"});
    EXPECT_EQ(replay.values(), " 1 1");
    EXPECT_EQ(replay.to(0), Progress::reached);
    EXPECT_THAT(replay.steps, ElementsAre());
    // A file that begins later is at its leftmost values until then.
    GhwBytes late;
    late.preamble().strings({"b", "t"}).section("TYP").word(1).bytes({25, 0, 0});
    late.section("HIE").word(1).word(1).word(1).bytes({6, 2, 16, 1, 1, 1, 15, 0}).end_of_header();
    late.snapshot(7).byte(3).text({"ESN\0", 4}).tail();
    Replay later(ghw::make_source(make_memory_input("t", late)), {"/t/b"});
    EXPECT_EQ(later.to(6), Progress::reached);
    EXPECT_EQ(later.values(), " -2147483648");
    EXPECT_EQ(later.to(forever), Progress::end_of_data);
    EXPECT_THAT(later.steps, ElementsAre("7 3"));
    // After damage at time 0 there is a design to look at all the same.
    const std::string cut = whole.substr(0, whole.find("ESN"));
    Replay early(ghw::make_source(make_memory_input("t", cut)), {"/t/b", "/t/c"});
    EXPECT_EQ(early.values(), " 1 0");
    EXPECT_EQ(early.to(forever), Progress::damaged);
    EXPECT_THAT(early.source->error(), testing::HasSubstr("expected the end mark ESN"));
}

// Made by GHDL from tests/data/kinds.vhd; the packed files go by their content.
TEST(GhwSource, ReadsWhatASimulatorWrote) {
    const std::string content = data_file("kinds.ghw");
    for (const std::string &file : {content, gzipped(content), bzipped(content)}) {
        std::string error;
        Replay replay(open_source(temporary_file("kinds.vcd", file), &error),
                      {"/kinds/number", "/kinds/truth", "/kinds/ask", "/kinds/part_of",
                       "/kinds/words", "/kinds/grid", "/kinds/u/back", "/kinds/u/pair"});
        EXPECT_EQ(replay.values(),
                  " 7 FALSE {{U 0} {U 0}} {0L 0} {UU UU} {{FALSE FALSE} {FALSE FALSE}} idle 00");
        EXPECT_EQ(replay.to(3000000), Progress::reached);
        EXPECT_EQ(replay.values(),
                  " -7 TRUE {{U 0} {U 5}} {1L 0} {UU 1Z} {{FALSE FALSE} {FALSE TRUE}} x 10");
        EXPECT_EQ(replay.to(forever), Progress::end_of_data);
        EXPECT_EQ(replay.kernel->now(), 4000000);
        EXPECT_EQ(replay.kernel->real(replay.design.find_object("/kinds/ratio")->slot), 2.0);
        EXPECT_EQ(replay.kernel->word(replay.design.find_object("/kinds/falling")->slot), -3);
    }
}

// Made by Icarus Verilog from tests/data/kinds.v.
TEST(VcdSource, ReadsWhatASimulatorWrote) {
    std::string error;
    Replay replay(open_source(data_path("kinds.vcd"), &error), {});
    EXPECT_EQ(replay.design.resolution_exponent, -11);
    EXPECT_THAT(
        describe(replay.design),
        ElementsAre("/kinds module", "  gnd @0", "  odd.name[3] @1", "  single(3:3) @2", "  y @3",
                    "  q(0:3) @4", "  a(7:0) @8", "  clk @16", "  count(31:0) @17",
                    "  level real @49", "  mem(0:3)(7:0) @57", "  flags[0] @89", "  flags[1] @90",
                    "/kinds/gen[0] block", "/kinds/gen[0]/u module", "  a(7:0) @91", "  clk @16",
                    "  y @99", "  q(0:3) @100", "/kinds/gen[0]/u/inverted function", "  z @104",
                    "/kinds/gen[0]/u/note task", "  seen @105", "/kinds/gen[1] block",
                    "/kinds/gen[1]/u module", "  a(7:0) @106", "  clk @16", "  y @114",
                    "  q(0:3) @115", "/kinds/gen[1]/u/inverted function", "  z @119",
                    "/kinds/gen[1]/u/note task", "  seen @120", "/kinds/u1 module", "  a(7:0) @121",
                    "  clk @16", "  y @3", "  q(0:3) @129", "/kinds/u1/inverted function",
                    "  z @133", "/kinds/u1/note task", "  seen @134", "/kinds/main block",
                    "  k(31:0) @135", "/kinds/main/both block"));
    const auto value = [&](const char *path) { return replay.value(path); };
    EXPECT_EQ(replay.to(2400), Progress::reached);  // before $dumpoff
    EXPECT_EQ(value("/kinds/a") + value("/kinds/q") + value("/kinds/y"), "0000001XZZZZX");
    EXPECT_EQ(replay.to(2600), Progress::reached);  // between $dumpoff and $dumpon
    EXPECT_EQ(value("/kinds/a") + value("/kinds/gnd"), "XXXXXXXXX");
    EXPECT_EQ(replay.to(3400), Progress::reached);
    EXPECT_EQ(value("/kinds/mem(1)") + value("/kinds/mem(2)"), "1000000000000011");
    EXPECT_EQ(replay.to(forever), Progress::end_of_data);
    EXPECT_EQ(replay.kernel->now(), 4500);
    EXPECT_EQ(value("/kinds/gen[1]/u/a(6)") + value("/kinds/u1/q"), "11010");
}

TEST(OpenSource, GoesByContent) {
    const std::string text = data_file("kinds.vcd");
    const std::vector<std::string> watched = {"/kinds/a", "/kinds/q", "/kinds/clk", "/kinds/count"};
    std::string error;
    Replay plain(open_source(temporary_file("kinds.txt", " \n" + text), &error), watched);
    Replay packed(open_source(temporary_file("kinds.fst", gzipped(text)), &error), watched);
    Replay packed_well(open_source(temporary_file("kinds.gz", bzipped(text)), &error), watched);
    plain.to(forever);
    packed.to(forever);
    packed_well.to(forever);
    EXPECT_EQ(plain.steps, packed.steps);
    EXPECT_EQ(plain.steps, packed_well.steps);
    EXPECT_GT(plain.steps.size(), 10U);

    const std::pair<std::string, const char *> rows[] = {
        {"", "an empty file"},
        {std::string("\0\0\0\0\0\0\0\1\x49", 9), "an FST file; fst2vcd FILE | wfsim - reads it"},
        {"\xfe" + std::string(16, '\0') + gzipped("x"),
         "an FST file; fst2vcd FILE | wfsim - reads it"},
        {"PK\3\4zip", "a ZIP archive"},
        {gzipped("BZh9x"), "something else, beginning with 'BZh9x'"},
        {"BZh9x", "a damaged bzip2 stream (its checksum or its codes are wrong)"},
        {gzipped(text).substr(0, 5), "a truncated gzip stream"},
        {"library ieee;\nuse", "something else, beginning with 'library\\x20ieee;\\x0aus'"}};
    for (const auto &[content, got] : rows) {
        const std::string path = temporary_file("unknown.vcd", content);
        EXPECT_EQ(open_source(path, &error), nullptr);
        EXPECT_EQ(error, path +
                             ": expected a VCD or GHW file (plain, or compressed with gzip or "
                             "bzip2), got " +
                             got);
    }
}

TEST(OpenSource, ACutGzipFileIsReplayedUpToTheCut) {
    const std::string compressed = gzipped(data_file("kinds.vcd"));
    std::string error;
    const std::string path =
        temporary_file("cut.vcd.gz", compressed.substr(0, compressed.size() - 100));
    Replay replay(open_source(path, &error), {});
    EXPECT_EQ(replay.to(forever), Progress::damaged);
    EXPECT_THAT(replay.source->error(), testing::EndsWith("a truncated gzip stream"));
    EXPECT_GT(replay.kernel->now(), 2000);
}

}  // namespace
}  // namespace wf::test
