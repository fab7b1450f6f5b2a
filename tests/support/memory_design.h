// SPDX-License-Identifier: Apache-2.0
// A simulator in memory for tests: designs built line by line, values driven by path, messages kept
// in a list. It serves plug-in code that is part of the program and libraries that are opened
// alike.
#pragma once

#include <mti.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/design/design.h"
#include "host/fli/console.h"
#include "host/fli/session.h"
#include "host/kernel/kernel.h"

namespace wf::test {

// Keeps every message, the plug-in's and the host's, one line each.
class RecordingConsole : public Console {
  public:
    void print(std::string_view text) override { lines.emplace_back(text); }
    std::vector<std::string> lines;
};

// Typical use:
//
//     MemorySimulator sim(-9);
//     sim.region("/top/u1");                              // makes the levels that are missing
//     sim.signal("/top/clk", sim.types.std_logic());      // its region is made when it is missing
//     sim.start(swfli_init);                              // or sim.load("swfli_init", path)
//     sim.command("set_toggle_region /top");
//     sim.drive(100, "/top/clk", "1");                    // at time 100
//     sim.run_to(200);
//     EXPECT_THAT(sim.output_of("toggle_stop"), ElementsAre("..."));
//
// A wrong path, value or command name throws std::invalid_argument, which fails the test.
class MemorySimulator {
  public:
    explicit MemorySimulator(int resolution_exponent = -9);

  private:
    void set_scalar(const Signal &signal, std::string_view value);
    void set_number(const Signal &signal, int64_t value);

    Design design_;
    Kernel kernel_;
    RecordingConsole console_;
    Session session_;

  public:
    TypeTable &types;
    Design &design() { return design_; }
    Kernel &kernel() { return kernel_; }
    Session &session() { return session_; }

    // --- the design ---
    // The region of that absolute path; levels that do not exist are made, the last one of `kind`,
    // those above it as modules.
    Region &region(std::string_view path, RegionKind kind = RegionKind::module);
    // A new signal with storage of its own, every std_logic in it at 'U' and so on.
    Signal &signal(std::string_view path, const Type *type, Mode mode = Mode::internal);
    // A new signal that shares the storage of another one, with a handle of its own: what a
    // waveform with one id code for two names gives.
    Signal &shared_signal(std::string_view path, std::string_view existing,
                          Mode mode = Mode::internal);
    // The same handle in a second region: a port that the simulator has merged with the signal
    // above it. `path` ends in the name by which it is found there.
    Signal &alias(std::string_view path, std::string_view existing);
    // The exact object of a path, elements included.
    Signal &find(std::string_view path);
    mtiSignalIdT handle(std::string_view path);
    mtiRegionIdT region_handle(std::string_view path);

    // --- values and time (ticks) ---
    // Set a value in the step that is now: a literal ('1' or "1" for std_logic, "idle"), a number,
    // or for an array of character literals one character for each element ("10XZ").
    void set(std::string_view path, char literal);
    void set(std::string_view path, std::string_view value);
    void set(std::string_view path, const char *value) { set(path, std::string_view(value)); }
    void set(std::string_view path, int value) { set(path, static_cast<int64_t>(value)); }
    void set(std::string_view path, int64_t value);
    void set(std::string_view path, double value);
    // Runs to a time and sets a value there; the step stays open for more.
    template <typename Value>
    void drive(Ticks time, std::string_view path, Value value) {
        run_to(time);
        set(path, value);
    }
    // Finishes the step that is now and moves time to `time` (not before now).
    void run_to(Ticks time);
    void run(Ticks ticks) { run_to(kernel_.now() + ticks); }
    // Lets what was set take effect: runs the processes of this step.
    void settle() { kernel_.finish_step(); }
    Ticks now() const { return kernel_.now(); }

    // --- plug-ins ---
    using InitFunction = void (*)(mtiRegionIdT, char *, mtiInterfaceListT *, mtiInterfaceListT *);
    void start(InitFunction init) { session_.start_plugin(init); }
    // The error text, empty when it was loaded.
    std::string load(const std::string &function, const std::string &library) {
        return session_.load_plugin(function, library);
    }
    // Settles, then runs the command whose name the line begins with.
    void command(std::string_view line);
    // The same; returns the messages of this command alone (lines() will not repeat them).
    std::vector<std::string> output_of(std::string_view line);
    // Runs the quit callbacks (the end of the simulator does that too).
    void quit() { session_.quit(); }

    // All messages since the last call.
    std::vector<std::string> lines();
};

}  // namespace wf::test
