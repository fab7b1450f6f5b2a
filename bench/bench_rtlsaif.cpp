// SPDX-License-Identifier: Apache-2.0
// The RTL flow at two sizes: reading a forward file, finding and registering its objects, and
// writing the report. The time for an object must not grow with the number of objects.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>

#include "plugin/core/entry.h"
#include "plugin/rtlsaif/parser.h"
#include "plugin/rtlsaif/rtl_table.h"
#include "plugin/support/hash_table.h"
#include "plugin/support/run_state.h"
#include "tests/support/memory_design.h"

// Objects come as instances u0, u1, ... of 100 registers count0 to count99 of eight bits each.
static constexpr int64_t BITS = 8;
static constexpr int64_t REGISTERS = 100;

template <typename... Values>
static void append(std::string &text, const char *format, Values... values) {
    char line[200];
    snprintf(line, sizeof line, format, values...);
    text += line;
}

static std::string forward_file(int64_t objects) {
    std::string text =
        "(SAIFILE (SAIFVERSION \"2.0\") (DIRECTION \"forward\") (DESIGN \"d\") (DATE) (VENDOR)\n"
        "(PROGRAM_NAME) (VERSION) (DIVIDER /)\n(INSTANCE \"d\" top\n";
    for (int64_t i = 0; i < objects; ++i) {
        if (i % (BITS * REGISTERS) == 0) {
            append(text, "%s(INSTANCE \"unit\" u%ld\n(NET\n", i > 0 ? "))\n" : "",
                   static_cast<long>(i / (BITS * REGISTERS)));
        }
        const int name = static_cast<int>(i / BITS % REGISTERS);
        const int bit = static_cast<int>(i % BITS);
        append(text, "(count%d[%d] count%d_reg\\[%d\\]/Q \"sequential\")\n", name, bit, name, bit);
    }
    return text + ")))\n)\n";
}

static void read_forward_file(benchmark::State &state) {
    std::string text = forward_file(state.range(0));
    for ([[maybe_unused]] auto round : state) {
        st_table *objects = st_alloc_abo(st_strcmp, st_strhash);
        saifrtl_parse_init(nullptr, nullptr);
        saifrtl_hash_var = objects;
        FILE *stream = fmemopen(text.data(), text.size(), "r");
        const int result = saifrtl_parse(stream, nullptr, nullptr, 1, "forward");
        saifrtl_parse_reset();
        if (result != 0 || st_count(objects) != state.range(0)) {
            state.SkipWithError("not all objects were read");
        }
        mfli_free_rtl_hash(objects);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}
BENCHMARK(read_forward_file)->Arg(20000)->Arg(200000)->Unit(benchmark::kMillisecond);

static void make_design(wf::test::MemorySimulator &sim, int64_t objects) {
    const wf::Type *type = sim.types.array(sim.types.std_logic(), BITS - 1, 0);
    for (int64_t i = 0; i < objects / BITS; ++i) {
        std::string path;
        append(path, "/tb/dut/u%ld/count%d", static_cast<long>(i / REGISTERS),
               static_cast<int>(i % REGISTERS));
        sim.signal(path, type);
    }
}

// The time of one command of the flow, everything before it left out.
static void time_command(benchmark::State &state, bool report) {
    const std::string forward = std::filesystem::temp_directory_path() / "bench.fsaif";
    const std::string saif = std::filesystem::temp_directory_path() / "bench.saif";
    FILE *file = fopen(forward.c_str(), "w");
    fputs(forward_file(state.range(0)).c_str(), file);
    fclose(file);
    for ([[maybe_unused]] auto round : state) {
        mfli_window_active = 0;
        wf::test::MemorySimulator sim;
        make_design(sim, state.range(0));
        sim.start(swfli_init);
        sim.command("read_rtl_saif " + forward + " /tb/dut");
        const auto timed = [&sim, &state](bool count, const std::string &line) {
            const auto begin = std::chrono::steady_clock::now();
            sim.command(line);
            const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
            if (count) {
                state.SetIterationTime(seconds.count());
            }
        };
        timed(!report, "set_toggle_region /tb/dut");
        sim.command("toggle_start");
        sim.run(1000);
        sim.command("toggle_stop");
        timed(report, "toggle_report " + saif + " 1.0e-9 /tb/dut");
        if (sim.lines().size() != 6) {
            state.SkipWithError("not all objects were found");
        }
        sim.quit();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    std::filesystem::remove(forward);
    std::filesystem::remove(saif);
}

static void register_objects(benchmark::State &state) {
    time_command(state, false);
}
BENCHMARK(register_objects)
    ->Arg(20000)
    ->Arg(200000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

static void report_objects(benchmark::State &state) {
    time_command(state, true);
}
BENCHMARK(report_objects)->Arg(20000)->Arg(200000)->UseManualTime()->Unit(benchmark::kMillisecond);
