// SPDX-License-Identifier: Apache-2.0
// What a watched bit costs from the simulator's side of the wall: choosing it, opening and closing
// the window, one change through marking and counting, and the end. Items are bits.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <string>
#include <vector>

#include "plugin/core/window_commands.h"
#include "plugin/monitor/monitor_table.h"
#include "plugin/monitor/value_change.h"
#include "plugin/select/policy.h"
#include "plugin/select/registration.h"
#include "plugin/support/run_state.h"
#include "tests/support/memory_design.h"

namespace {

constexpr uint8_t LEVEL_0 = 2;
constexpr uint8_t LEVEL_1 = 3;

// One-bit signals in one region and the plug-in's operations over them, without its commands, which
// guard their order for the whole process.
class Recording {
  public:
    explicit Recording(int64_t bits) {
        wf::Region &region = sim_.region("/top");
        wf::Design &design = sim_.design();
        for (int64_t bit = 0; bit < bits; ++bit) {
            const wf::Type *type = design.types.std_logic();
            slots_.push_back(design.new_storage(type));
            design.add_signal(&region, "signal_" + std::to_string(bit), type, wf::Mode::internal,
                              slots_.back());
        }
        sim_.kernel().sync();
        mfli_policy_table = st_alloc_abo(st_strcmp, st_strhash);
        mfli_init_monitor_table();
        mfli_init_speed_lists();
        mfli_set_toggle_region_status();
    }
    ~Recording() {
        mfli_free_monitor_table();
        mfli_free_speed_lists();
        mfli_free_policy_table();
        mfli_window_active = 0;
    }
    Recording(const Recording &) = delete;
    Recording &operator=(const Recording &) = delete;

    void choose() { register_region(sim_.region_handle("/top")); }
    static void open() { mfli_start(nullptr); }
    static void close() { mfli_stop(nullptr); }

    // Toggles the next `count` bits of the order in one time step.
    void step(int count) {
        wf::Kernel &kernel = sim_.kernel();
        kernel.begin_step(kernel.now() + 1);
        for (int i = 0; i < count; ++i) {
            const wf::Slot slot = slots_[next_];
            next_ = next_ + 1 < slots_.size() ? next_ + 1 : 0;
            kernel.set_byte(slot, kernel.byte(slot) == LEVEL_0 ? LEVEL_1 : LEVEL_0);
        }
        kernel.finish_step();
    }
    // Makes the order of changes one that no cache foresees.
    void shuffle() { std::shuffle(slots_.begin(), slots_.end(), std::minstd_rand(1)); }

  private:
    wf::test::MemorySimulator sim_;
    std::vector<wf::Slot> slots_;
    size_t next_ = 0;
};

void count_bits(benchmark::State &state, int64_t bits) {
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * bits);
}

void choose_bits(benchmark::State &state) {
    while (state.KeepRunning()) {
        Recording recording(state.range(0));
        const auto before = std::chrono::steady_clock::now();
        recording.choose();
        const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - before;
        state.SetIterationTime(spent.count());
    }
    count_bits(state, state.range(0));
}
BENCHMARK(choose_bits)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

void open_and_close_window(benchmark::State &state) {
    Recording recording(state.range(0));
    recording.choose();
    while (state.KeepRunning()) {
        Recording::open();
        Recording::close();
    }
    count_bits(state, state.range(0));
}
BENCHMARK(open_and_close_window)->Arg(10000)->Arg(100000)->Arg(1000000);

// First argument: watched bits; second: changes in a time step; third: 1 for a random order.
void count_changes(benchmark::State &state) {
    Recording recording(state.range(0));
    recording.choose();
    Recording::open();
    if (state.range(2) != 0) {
        recording.shuffle();
    }
    const auto changes = static_cast<int>(state.range(1));
    while (state.KeepRunning()) {
        recording.step(changes);
    }
    count_bits(state, changes);
}
BENCHMARK(count_changes)
    ->Args({1000, 1, 0})
    ->Args({1000, 100, 0})
    ->Args({100000, 1, 1})
    ->Args({100000, 1000, 0})
    ->Args({100000, 1000, 1})
    ->Args({1000000, 1000, 1});

void change_outside_window(benchmark::State &state) {
    Recording recording(state.range(0));
    recording.choose();
    while (state.KeepRunning()) {
        recording.step(1000);
    }
    count_bits(state, 1000);
}
BENCHMARK(change_outside_window)->Arg(100000);

}  // namespace
