// SPDX-License-Identifier: Apache-2.0
// counter.v in SystemC, run like counter_tb.v, its waveform to counter.vcd.
#include <systemc.h>

SC_MODULE(Counter) {
    sc_signal<bool> clk{"clk"}, reset{"reset"}, odd{"odd"};
    sc_signal<sc_uint<4>> count{"count"};

    void drive() {
        for (int time = 0;; ++time) {
            clk = time % 10 < 5;
            reset = time < 22;
            wait(1, SC_NS);
        }
    }
    void step() {
        count = reset ? sc_uint<4>(0) : sc_uint<4>(count.read() + 1);
    }
    void combine() {
        odd = count.read().xor_reduce();
    }

    SC_CTOR(Counter) {
        SC_THREAD(drive);
        SC_METHOD(step);
        sensitive << clk.posedge_event();
        dont_initialize();
        SC_METHOD(combine);
        sensitive << count;
    }
};

int sc_main(int, char *[]) {
    Counter counter("counter");
    sc_trace_file *file = sc_create_vcd_trace_file("counter");
    file->set_time_unit(1, SC_NS);
    sc_trace(file, counter.clk, "counter.clk");
    sc_trace(file, counter.reset, "counter.reset");
    sc_trace(file, counter.count, "counter.count");
    sc_trace(file, counter.odd, "counter.odd");
    sc_start(420, SC_NS);
    sc_close_vcd_trace_file(file);
    return 0;
}
