// SPDX-License-Identifier: Apache-2.0
// What a report costs for each bit: the tree alone, and the whole report to a null device, for
// designs of one instance, of 50,000 instances side by side and of 1,000 levels, and for bits that
// a forward file maps to sequential elements. Cost for each bit must not grow with their number.
#include "plugin/saif/report.h"

#include <benchmark/benchmark.h>

#include "plugin/monitor/monitor_table.h"
#include "plugin/rtlsaif/rtl_table.h"
#include "plugin/saif/report_tree.h"
#include "plugin/support/run_state.h"
#include "plugin/support/text.h"
#include "tests/support/memory_design.h"

#include <malloc.h>

#include <cstdlib>
#include <string>

namespace {

enum Shape { flat, wide, deep };

constexpr int64_t WIDE_CHILDREN = 50000;
constexpr int64_t DEEP_LEVELS = 1000;

std::string bit_name(Shape shape, int64_t bit, int64_t bits) {
    const std::string leaf = "/signal_" + std::to_string(bit);
    const int64_t group = bit * (shape == wide ? WIDE_CHILDREN : DEEP_LEVELS) / bits;
    std::string path = "/top";
    if (shape == wide) {
        path += "/unit_" + std::to_string(group);
    }
    for (int64_t level = 0; shape == deep && level < group; ++level) {
        path += "/u";
    }
    return path + leaf;
}

// A monitor table of bits with some activity. They share one signal of the simulator's: a report
// asks only for its mode.
class Monitored {
  public:
    Monitored(Shape shape, int64_t bits) {
        sim_.signal("/top/any", sim_.types.std_logic());
        const mtiSignalIdT signal = sim_.handle("/top/any");
        mfli_init_monitor_table();
        for (int64_t bit = 0; bit < bits; ++bit) {
            MonitorElement *element =
                mfli_init_monitor_element(signal, bit_name(shape, bit, bits).c_str());
            BitActivity *activity = mfli_bit(element, 0);
            activity->t0 = static_cast<double>(bit * 7919 % 2000000000);
            activity->t1 = 2e9 - activity->t0;
            activity->tc = static_cast<double>(bit % 100000);
            st_insert_kptr_vptr(mfli_monitor_table, element, element);
        }
    }
    ~Monitored() { mfli_free_monitor_table(); }
    Monitored(const Monitored &) = delete;
    Monitored &operator=(const Monitored &) = delete;

  private:
    wf::test::MemorySimulator sim_{-12};
};

void per_bit(benchmark::State &state, int64_t bits) {
    state.counters["per_bit"] = benchmark::Counter(
        static_cast<double>(bits),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void report_to_null_device(benchmark::State &state) {
    static char buffer[256 * 1024];
    while (state.KeepRunning()) {
        FILE *stream = fopen("/dev/null", "w");
        setvbuf(stream, buffer, _IOFBF, sizeof buffer);
        if (!saif_process(stream, -9.0, "/top")) {
            state.SkipWithError("the report failed");
        }
        fclose(stream);
    }
}

template <Shape shape>
void BM_ReportTree(benchmark::State &state) {
    const Monitored monitored(shape, state.range(0));
    size_t heap = 0;
    while (state.KeepRunning()) {
        const size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
        SaifTree *tree = saifout_create_tree(nullptr, nullptr, nullptr, nullptr);
        build_saif_tree("/top", tree);
        heap = mallinfo2().uordblks + mallinfo2().hblkhd - before;
        saifout_free_tree(tree);
    }
    per_bit(state, state.range(0));
    state.counters["bytes_per_bit"] =
        static_cast<double>(heap) / static_cast<double>(state.range(0));
}

template <Shape shape>
void BM_Report(benchmark::State &state) {
    const Monitored monitored(shape, state.range(0));
    report_to_null_device(state);
    per_bit(state, state.range(0));
}

// One sequential element for each bit, as synthesis names them.
void map_bits(int64_t bits) {
    mfli_rtl_table = st_alloc_abo(st_strcmp, st_strhash);
    st_table *objects = get_rtl_hash(mfli_rtl_table, "/top");
    for (int64_t bit = 0; bit < bits; ++bit) {
        const std::string name = "top" + bit_name(wide, bit, bits).substr(4);
        RtlObject *object = mfli_create_rtl_object();
        object->second_full_name = string_alloc((name + "_reg/Q").c_str());
        object->kind = RTL_SEQUENTIAL;
        list *of_bit = list_alloc();
        list_append(of_bit, object);
        st_insert_kptr_vptr(objects, mfli_strdup(name.c_str()), of_bit);
    }
}

void BM_RtlReport(benchmark::State &state) {
    const Monitored monitored(wide, state.range(0));
    map_bits(state.range(0));
    const uint32_t commands_done = mfli_window_active;
    mfli_set_read_rtl_status();
    report_to_null_device(state);
    mfli_window_active = commands_done;
    mfli_free_rtl_table();
    per_bit(state, state.range(0));
}

BENCHMARK(BM_ReportTree<flat>)->RangeMultiplier(10)->Range(10000, 1000000);
BENCHMARK(BM_ReportTree<wide>)->RangeMultiplier(10)->Range(10000, 1000000);
BENCHMARK(BM_ReportTree<deep>)->RangeMultiplier(10)->Range(10000, 100000);
BENCHMARK(BM_Report<flat>)->RangeMultiplier(10)->Range(10000, 1000000);
BENCHMARK(BM_Report<wide>)->RangeMultiplier(10)->Range(10000, 1000000);
BENCHMARK(BM_Report<deep>)->RangeMultiplier(10)->Range(10000, 100000);
BENCHMARK(BM_RtlReport)->Arg(20000)->Arg(200000);

}  // namespace
