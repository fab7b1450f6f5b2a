// SPDX-License-Identifier: Apache-2.0
// A whole replay through reader, kernel, interface and plug-in allocates nothing once every queue
// has had its largest step. malloc and its kin are counted by the linker's --wrap (CMakeLists.txt),
// in everything that is linked from objects: the host library and the plug-in.
#include "host/design/design.h"
#include "host/fli/session.h"
#include "host/kernel/kernel.h"
#include "host/source/source.h"
#include "plugin/core/entry.h"
#include "tests/support/memory_design.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>

namespace {
uint64_t allocations;
}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the linker makes these names.
extern "C" {
void *__real_malloc(size_t bytes);
void *__real_calloc(size_t count, size_t bytes);
void *__real_realloc(void *block, size_t bytes);

void *__wrap_malloc(size_t bytes) {
    ++allocations;
    return __real_malloc(bytes);
}
void *__wrap_calloc(size_t count, size_t bytes) {
    ++allocations;
    return __real_calloc(count, bytes);
}
void *__wrap_realloc(void *block, size_t bytes) {
    ++allocations;
    return __real_realloc(block, bytes);
}
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

constexpr wf::Ticks STEPS = 2000;
constexpr int SCALARS = 60;
constexpr int VECTORS = 9;
constexpr int WIDTH = 37;

std::string vector_value(std::minstd_rand &random) {
    std::string value = "b";
    for (int bit = 0; bit < WIDTH; ++bit) {
        value += "01xz"[random() % 4];
    }
    return value;
}

// The first step sets everything, so that no later one is larger.
std::string waveform() {
    std::minstd_rand random(7);
    std::string text = "$timescale 1ns $end\n$scope module top $end\n";
    for (int i = 0; i < SCALARS; ++i) {
        text += "$var wire 1 s" + std::to_string(i) + " s" + std::to_string(i) + " $end\n";
    }
    for (int i = 0; i < VECTORS; ++i) {
        text += "$var wire 37 v" + std::to_string(i) + " v" + std::to_string(i) + " [36:0] $end\n";
    }
    text += "$upscope $end\n$enddefinitions $end\n";
    for (wf::Ticks step = 0; step < STEPS; ++step) {
        text += "#" + std::to_string(step * 10) + "\n";
        for (int i = 0; i < SCALARS; ++i) {
            if (step < 2 || random() % 3 == 0) {
                text +=
                    std::string(1, "01xz"[step < 2 ? static_cast<uint64_t>(step) : random() % 4]) +
                    "s" + std::to_string(i) + "\n";
            }
        }
        for (int i = 0; i < VECTORS; ++i) {
            const std::string value =
                step < 2 ? "b" + std::string(WIDTH, step == 0 ? '0' : '1') : vector_value(random);
            text += value + " v" + std::to_string(i) + "\n";
        }
    }
    return text;
}

std::string write_waveform() {
    std::string path = wf::test::scratch_file("waveform.vcd");
    std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(std::fopen(path.c_str(), "w"),
                                                          std::fclose);
    std::fputs(waveform().c_str(), file.get());
    return path;
}

TEST(ReplayAllocation, NothingIsAllocatedInTheSecondHalf) {
    const std::string path = write_waveform();
    std::string error;
    const std::unique_ptr<wf::Source> source = wf::open_source(path, &error);
    ASSERT_TRUE(source) << error;
    wf::Design design;
    ASSERT_TRUE(source->load(design)) << source->error();
    wf::Kernel kernel(design);
    wf::test::RecordingConsole console;
    wf::Session session(design, kernel, console);
    wf::Session::start_plugin(swfli_init);
    session.run_command("set_toggle_region", "set_toggle_region /top");
    session.run_command("toggle_start", "toggle_start");

    const uint64_t before_any = allocations;
    ASSERT_EQ(source->advance_to(kernel, STEPS * 5, nullptr), wf::Progress::reached);
    ASSERT_GT(allocations, before_any) << "nothing is counted: was the program linked with --wrap?";
    const uint64_t before = allocations;
    ASSERT_EQ(source->advance_to(kernel, STEPS * 20, nullptr), wf::Progress::end_of_data);
    EXPECT_EQ(allocations, before);
    EXPECT_EQ(kernel.now(), (STEPS - 1) * 10);
}

}  // namespace
