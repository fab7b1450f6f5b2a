// SPDX-License-Identifier: Apache-2.0
// counter.v as Yosys translates it to C++, run like counter_tb.v, its waveform to counter.wave.
#include "counter.cc"

#include <backends/cxxrtl/cxxrtl_vcd.h>

#include <fstream>

int main() {
    cxxrtl_design::p_counter top;
    cxxrtl::debug_items items;
    top.debug_info(items, "counter ");
    cxxrtl::vcd_writer waveform;
    waveform.timescale(1, "ns");
    waveform.add(items);
    for (unsigned time = 0; time <= 420; ++time) {
        top.p_clk.set<unsigned>(time % 10 < 5);
        top.p_reset.set<unsigned>(time < 22);
        top.step();
        top.step();  // outputs of registers follow only at the next evaluation
        waveform.sample(time);
    }
    std::ofstream("counter.wave") << waveform.buffer;
    return 0;
}
