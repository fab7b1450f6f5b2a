// SPDX-License-Identifier: Apache-2.0
// VCD files as a source: recognised by content, loaded into a design, replayed into a kernel to the
// time that was asked for and no further.
#include "host/source/vcd/source.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "host/kernel/kernel.h"
#include "tests/host/source/vcd_reading.h"

namespace wf::test {
namespace {

using testing::ElementsAre;

constexpr Ticks forever = std::numeric_limits<Ticks>::max();

const std::string small =
    "$scope module t $end\n$var wire 1 ! a $end\n$var wire 2 \" v $end\n$var real 64 # r $end\n"
    "$upscope $end\n$enddefinitions $end\n";

// A source with its design and its kernel, and what a process that watches everything has seen.
struct Replay {
    explicit Replay(std::unique_ptr<Source> opened) : source(std::move(opened)) {
        if (source == nullptr || !source->load(design)) {
            throw std::runtime_error(source == nullptr ? "not opened" : source->error());
        }
        kernel = std::make_unique<Kernel>(design);
        Process *watcher = kernel->create_process("watcher", &Replay::note, this);
        for (const Signal *signal : design.top()->signals) {
            kernel->sensitize(watcher, *signal);
        }
    }
    static void note(void *replay) {
        auto *self = static_cast<Replay *>(replay);
        self->steps.push_back(std::to_string(self->kernel->now()) + " " + self->values());
    }
    // The bits of the top region's signals.
    std::string values() {
        std::string text;
        for (const Signal *signal : design.top()->signals) {
            for (Slot i = 0; signal->type->kind != TypeKind::real && i < signal->type->slots; ++i) {
                text += std::string_view("UX01ZWLH-").at(kernel->byte(signal->slot + i));
            }
        }
        return text;
    }
    Progress to(Ticks limit, StopFlag stop = nullptr) {
        return source->advance_to(*kernel, limit, stop);
    }

    std::unique_ptr<Source> source;
    Design design;
    std::unique_ptr<Kernel> kernel;
    std::vector<std::string> steps;
};

Replay replay_of(const std::string &text) {
    return Replay(vcd::make_source(make_memory_input("t.vcd", text)));
}

TEST(VcdSource, StopsAtTheLimitWithAllThatHappenedThen) {
    Replay replay = replay_of(small + "1!\n#10\n0!\nb1 \"\n#20\nb10 \"\nb11 \"\nr2.5 #\n#30\n");
    EXPECT_EQ(replay.values(), "UUU");
    EXPECT_EQ(replay.to(0), Progress::reached);
    EXPECT_EQ(replay.values(), "1UU");
    EXPECT_EQ(replay.to(9), Progress::reached);
    EXPECT_EQ(replay.kernel->now(), 9);
    EXPECT_EQ(replay.to(10), Progress::reached);
    EXPECT_EQ(replay.values(), "001");
    EXPECT_EQ(replay.to(25), Progress::reached);
    EXPECT_EQ(replay.kernel->now(), 25);
    EXPECT_EQ(replay.kernel->real(replay.design.find_signal("/t/r")->slot), 2.5);
    EXPECT_EQ(replay.to(30), Progress::end_of_data);
    EXPECT_EQ(replay.to(forever), Progress::end_of_data);
    EXPECT_EQ(replay.kernel->now(), 30);
    EXPECT_THAT(replay.steps, ElementsAre("0 1UU", "10 001", "20 011"));
    EXPECT_EQ(replay.source->position().last_time, 30);
}

TEST(VcdSource, EndsAtTheLastRecordedTime) {
    Replay replay = replay_of(small + "#10\n0!\n#70\n");
    EXPECT_EQ(replay.to(1000), Progress::end_of_data);
    EXPECT_EQ(replay.kernel->now(), 70);
    EXPECT_EQ(replay_of(small).to(forever), Progress::end_of_data);
}

TEST(VcdSource, DamageKeepsWhatCameBefore) {
    Replay replay = replay_of(small + "#10\n0!\n#20\n1!\n?\n#30\n");
    EXPECT_EQ(replay.to(15), Progress::reached);
    EXPECT_EQ(replay.to(25), Progress::damaged);
    EXPECT_EQ(replay.source->error(), "t.vcd:11: expected a value change or a time, got '?'");
    EXPECT_EQ(replay.to(forever), Progress::damaged);
    EXPECT_EQ(replay.kernel->now(), 20);
    EXPECT_THAT(replay.steps, ElementsAre("10 0UU", "20 1UU"));
}

TEST(VcdSource, TheStopFlagEndsARunBetweenSteps) {
    Replay replay = replay_of(small + "#10\n0!\n1!\n#20\n0!\n#30\n1!\n");
    const volatile std::sig_atomic_t stop = 1;
    EXPECT_EQ(replay.to(forever, &stop), Progress::interrupted);
    EXPECT_EQ(replay.to(forever, &stop), Progress::interrupted);
    EXPECT_EQ(replay.kernel->now(), 10);
    EXPECT_THAT(replay.steps, ElementsAre("10 1UU"));
    EXPECT_EQ(replay.to(forever), Progress::end_of_data);
    EXPECT_THAT(replay.steps, ElementsAre("10 1UU", "20 0UU", "30 1UU"));
}

TEST(VcdSource, TellsHowFarItIs) {
    std::string text = small;
    for (int i = 1; i <= 3000; ++i) {
        text += "#" + std::to_string(i) + "\n" + std::to_string(i % 2) + "!\n";
    }
    const auto source = vcd::make_source(make_memory_input("t.vcd", text), 4096);
    std::vector<SourcePosition> positions;
    source->on_progress([&](const SourcePosition &position) { positions.push_back(position); });
    Design design;
    ASSERT_TRUE(source->load(design));
    Kernel kernel(design);
    EXPECT_EQ(source->advance_to(kernel, forever, nullptr), Progress::end_of_data);
    ASSERT_GT(positions.size(), text.size() / 4096);
    EXPECT_EQ(positions[3].bytes_total, text.size());
    EXPECT_GT(positions[3].bytes_read, positions[2].bytes_read);
    EXPECT_GT(positions[3].last_time, positions[2].last_time);
    EXPECT_EQ(positions.back().bytes_read, text.size());
}

// Made by Icarus Verilog from tests/data/kinds.v.
TEST(VcdSource, ReadsWhatASimulatorWrote) {
    std::string error;
    Replay replay(open_source(data_path("kinds.vcd"), &error));
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
    const auto value = [&](const char *path) {
        const Signal *signal = replay.design.find_object(path);
        std::string text;
        for (Slot i = 0; i < signal->type->slots; ++i) {
            text += std::string_view("UX01ZWLH-").at(replay.kernel->byte(signal->slot + i));
        }
        return text;
    };
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
    std::string error;
    Replay plain(open_source(temporary_file("kinds.txt", " \n" + text), &error));
    Replay packed(open_source(temporary_file("kinds.fst", gzipped(text)), &error));
    Replay packed_well(open_source(temporary_file("kinds.gz", bzipped(text)), &error));
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
    Replay replay(open_source(path, &error));
    EXPECT_EQ(replay.to(forever), Progress::damaged);
    EXPECT_THAT(replay.source->error(), testing::EndsWith("a truncated gzip stream"));
    EXPECT_GT(replay.kernel->now(), 2000);
}

}  // namespace
}  // namespace wf::test
