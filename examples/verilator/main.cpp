// SPDX-License-Identifier: Apache-2.0
// Runs the Verilated test bench until $finish. Verilator could write this itself (--binary), but it
// would put a scope TOP around the design in every waveform; the empty name leaves that out.
#include "Vtb.h"
#include "verilated.h"

int main(int count, char **words) {
    VerilatedContext context;
    context.commandArgs(count, words);
    context.traceEverOn(true);
    Vtb bench(&context, "");
    while (!context.gotFinish()) {
        bench.eval();
        if (!bench.eventsPending()) {
            break;
        }
        context.time(bench.nextTimeSlot());
    }
    bench.final();
    return 0;
}
