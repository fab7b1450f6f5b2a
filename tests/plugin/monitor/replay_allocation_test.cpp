// SPDX-License-Identifier: Apache-2.0
// A whole replay through reader, kernel, interface and plug-in allocates nothing once every queue
// has had its largest step, and nothing is left when the simulator has ended. malloc and its kin
// are counted by the linker's --wrap (CMakeLists.txt), in everything that is linked from objects:
// the host library and the plug-in.
#include "host/design/design.h"
#include "host/fli/session.h"
#include "host/kernel/kernel.h"
#include "host/source/source.h"
#include "plugin/core/entry.h"
#include "plugin/select/registration.h"
#include "plugin/support/run_state.h"
#include "tests/plugin/recorder.h"
#include "tests/support/memory_design.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/types.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <new>
#include <random>
#include <string>

namespace {
uint64_t allocations;
int64_t live;  // blocks that are allocated now, and bytes that are mapped

bool is_refused() {
    return granted_allocations-- == 0;
}
}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the linker makes these names.
extern "C" {
void *__real_malloc(size_t bytes);
void *__real_calloc(size_t count, size_t bytes);
void *__real_realloc(void *block, size_t bytes);
void *__real_mmap(void *where, size_t bytes, int access, int flags, int file, off_t offset);
int __real_munmap(void *where, size_t bytes);
char *__real_strdup(const char *text);
void __real_free(void *block);

void *__wrap_malloc(size_t bytes) {
    ++allocations;
    ++live;
    return __real_malloc(bytes);
}
void *__wrap_calloc(size_t count, size_t bytes) {
    ++allocations;
    ++live;
    return __real_calloc(count, bytes);
}
void *__wrap_realloc(void *block, size_t bytes) {
    ++allocations;
    if (is_refused()) {
        return nullptr;
    }
    live += block == nullptr ? 1 : 0;
    return __real_realloc(block, bytes);
}
void *__wrap_mmap(void *where, size_t bytes, int access, int flags, int file, off_t offset) {
    if (is_refused()) {
        return MAP_FAILED;
    }
    live += static_cast<int64_t>(bytes);
    return __real_mmap(where, bytes, access, flags, file, offset);
}
int __wrap_munmap(void *where, size_t bytes) {
    live -= static_cast<int64_t>(bytes);
    return __real_munmap(where, bytes);
}
char *__wrap_strdup(const char *text) {
    if (is_refused()) {
        return nullptr;
    }
    ++live;
    return __real_strdup(text);
}
void __wrap_free(void *block) {
    live -= block != nullptr ? 1 : 0;
    __real_free(block);
}
}
// NOLINTEND(bugprone-reserved-identifier)

// The C++ library's own would call the C library's malloc past the linker.
void *operator new(size_t bytes) {
    if (void *block = std::malloc(bytes == 0 ? 1 : bytes)) {
        return block;
    }
    throw std::bad_alloc();
}
// The sanitizer has one of its own, which does not go with the operator delete below.
void *operator new(size_t bytes, const std::nothrow_t &) noexcept {
    return std::malloc(bytes == 0 ? 1 : bytes);
}
void operator delete(void *block) noexcept {
    std::free(block);
}
void operator delete(void *block, size_t) noexcept {
    std::free(block);
}

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

// A simulator's whole life, with everything in it that the plug-in has to remember.
void live_and_quit(const std::string &forward, const std::string &report) {
    mfli_window_active = 0;
    wf::test::MemorySimulator sim;
    const wf::Type *logic = sim.types.std_logic();
    sim.signal("/tb/dut/q", logic);
    sim.signal("/tb/dut/bus", sim.types.array(logic, 15, 0));
    sim.start(swfli_init);
    sim.command("toggle_debug_level 1");
    for (const char *path : {" /tb", " /tb/dut", " /tb/dut", ""}) {
        sim.command("read_rtl_saif " + forward + path);
    }
    sim.command("set_net_monitoring_policy on /tb/dut off /tb");
    sim.command("set_toggle_region /tb");
    mfli_register_net(sim.handle("/tb/dut/q"), "/tb/further/q", 0);
    for (const char *line : {"toggle_start", "toggle_stop", "toggle_report", "toggle_reset"}) {
        sim.drive(sim.now() + 5, "/tb/dut/bus", "0101010101010101");
        sim.command(line == std::string("toggle_report") ? line + (" " + report) + " 1e-9 /tb"
                                                         : line);
    }
    sim.quit();
    mfli_window_active = 0;
}

TEST(ReplayAllocation, NothingIsLeftAtTheEnd) {
    const std::string forward = wf::test::scratch_file("forward.fsaif");
    std::ofstream(forward) << "(SAIFILE (SAIFVERSION \"2\") (DIRECTION \"f\") (DESIGN) (DATE)"
                              "(VENDOR) (PROGRAM_NAME) (VERSION) (DIVIDER /) (INSTANCE top"
                              "(NET (q a/Q \"sequential\") (q b) (bus\\[3\\] c))"
                              "(MPM_INSTANCE \"ram\" m (INSTANCE n))"
                              "(MPM_INSTANCE \"rom\" m) (MPM_INSTANCE o)) (INSTANCE \"odd\"";
    const std::string report = wf::test::scratch_file("report.saif");
    live_and_quit(forward, report);
    const int64_t before = live;
    live_and_quit(forward, report);
    EXPECT_EQ(live, before);
    EXPECT_TRUE(std::ifstream(report).good());
}

}  // namespace
