// SPDX-License-Identifier: Apache-2.0
// GHW files as a source: loaded into a design with the values of time 0, replayed into a kernel to
// the time that was asked for and no further.
#include "host/source/ghw/source.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "host/design/value_text.h"
#include "host/kernel/kernel.h"
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
    std::string values() {
        std::string text;
        for (const std::string &path : watched) {
            const Signal *signal = design.find_object(path);
            text += " " + value_text(*signal->type, design.values() + signal->slot);
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

// One bit b, one integer n (-1 at first); events at 0, 10, 20 and 30.
GhwBytes small() {
    GhwBytes file;
    file.preamble().strings({"'0'", "'1'", "b", "n", "t"});
    file.section("TYP").word(2).bytes({22, 0, 2, 1, 2, 25, 0, 0});
    file.section("HIE").word(1).word(2).word(2).bytes({6, 5, 16, 3, 1, 1, 16, 4, 2, 2, 15, 0});
    file.end_of_header().snapshot(0).bytes({0, 0x7f}).text({"ESN\0", 4});
    file.cycles(0).bytes({1, 1}).advance(10).bytes({1, 0, 1, 5}).advance(10).bytes({1, 1});
    return file.advance(10).bytes({2, 6});
}

Replay replay_of(const std::string &bytes) {
    return Replay(ghw::make_source(make_memory_input("t.ghw", bytes)), {"/t/b", "/t/n"});
}

TEST(GhwSource, BeginsWithTheValuesThatTimeZeroEndsWith) {
    Replay replay = replay_of(small().advance(-1).tail());
    EXPECT_EQ(replay.values(), " 1 -1");
    EXPECT_EQ(replay.to(0), Progress::reached);
    EXPECT_THAT(replay.steps, ElementsAre());
    // A file that begins later is at its leftmost values until then.
    GhwBytes late;
    late.preamble().strings({"b", "t"}).section("TYP").word(1).bytes({25, 0, 0});
    late.section("HIE").word(1).word(1).word(1).bytes({6, 2, 16, 1, 1, 1, 15, 0}).end_of_header();
    late.snapshot(7).byte(3).text({"ESN\0", 4}).tail();
    Replay later(ghw::make_source(make_memory_input("t.ghw", late)), {"/t/b"});
    EXPECT_EQ(later.to(6), Progress::reached);
    EXPECT_EQ(later.values(), " -2147483648");
    EXPECT_EQ(later.to(forever), Progress::end_of_data);
    EXPECT_THAT(later.steps, ElementsAre("7 3"));
}

TEST(GhwSource, StopsAtTheLimitWithAllThatHappenedThen) {
    Replay replay = replay_of(small().advance(-1).tail());
    EXPECT_EQ(replay.to(9), Progress::reached);
    EXPECT_EQ(replay.kernel->now(), 9);
    EXPECT_EQ(replay.values(), " 1 -1");
    EXPECT_EQ(replay.to(10), Progress::reached);
    EXPECT_EQ(replay.values(), " 0 5");
    EXPECT_EQ(replay.to(25), Progress::reached);
    EXPECT_EQ(replay.kernel->now(), 25);
    EXPECT_EQ(replay.to(30), Progress::end_of_data);
    EXPECT_EQ(replay.to(forever), Progress::end_of_data);
    EXPECT_EQ(replay.kernel->now(), 30);
    EXPECT_THAT(replay.steps, ElementsAre("10 0 5", "20 1 5", "30 1 6"));
    EXPECT_EQ(replay.source->position().last_time, 30);
}

TEST(GhwSource, DamageKeepsWhatCameBefore) {
    const std::string whole = small().advance(-1).tail();
    Replay replay = replay_of(small().bytes({9, 9}));
    EXPECT_EQ(replay.to(15), Progress::reached);
    EXPECT_EQ(replay.source->error(), "");
    EXPECT_EQ(replay.to(40), Progress::damaged);
    EXPECT_THAT(replay.source->error(), testing::EndsWith("of at most 2, got 11"));
    EXPECT_EQ(replay.to(forever), Progress::damaged);
    EXPECT_EQ(replay.kernel->now(), 30);
    EXPECT_THAT(replay.steps, ElementsAre("10 0 5", "20 1 5", "30 1 6"));

    // At time 0 there is a design to look at all the same.
    Replay early = replay_of(whole.substr(0, whole.find("ESN")));
    EXPECT_EQ(early.values(), " 0 -1");
    EXPECT_EQ(early.to(forever), Progress::damaged);
    EXPECT_THAT(early.source->error(), testing::HasSubstr("expected the end mark ESN"));
}

TEST(GhwSource, TheStopFlagEndsARunBetweenSteps) {
    Replay replay = replay_of(small().advance(-1).tail());
    const volatile std::sig_atomic_t stop = 1;
    EXPECT_EQ(replay.to(forever, &stop), Progress::interrupted);
    EXPECT_EQ(replay.kernel->now(), 10);
    EXPECT_EQ(replay.to(forever), Progress::end_of_data);
    EXPECT_THAT(replay.steps, ElementsAre("10 0 5", "20 1 5", "30 1 6"));
}

TEST(GhwSource, TellsHowFarItIs) {
    GhwBytes file = small();
    for (int i = 1; i <= 3000; ++i) {
        file.advance(1).bytes({1, i % 2});
    }
    const std::string bytes = file.advance(-1).tail();
    const auto source = ghw::make_source(make_memory_input("t.ghw", bytes), 1024);
    std::vector<SourcePosition> positions;
    source->on_progress([&](const SourcePosition &position) { positions.push_back(position); });
    Design design;
    ASSERT_TRUE(source->load(design));
    Kernel kernel(design);
    EXPECT_EQ(source->advance_to(kernel, forever, nullptr), Progress::end_of_data);
    ASSERT_GT(positions.size(), bytes.size() / 1100);
    EXPECT_EQ(positions[3].bytes_total, bytes.size());
    EXPECT_GT(positions[3].bytes_read, positions[2].bytes_read);
    EXPECT_GT(positions[3].last_time, positions[2].last_time);
    EXPECT_EQ(positions.back().bytes_read, bytes.size());
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

}  // namespace
}  // namespace wf::test
