// SPDX-License-Identifier: Apache-2.0
// The interrupt key. One press asks whatever is going on to stop at the next safe place: a run
// after its time step, a Tcl script after its command. A second press before the first has been
// answered ends the program.
#ifndef WATTFORGE_HOST_SHELL_INTERRUPT_H
#define WATTFORGE_HOST_SHELL_INTERRUPT_H

#include <csignal>

namespace wf {

// From now on SIGINT is recorded instead of ending the program. Process-wide.
void catch_interrupts();

// Set to non-zero while an interrupt waits for its answer. Never null.
const volatile std::sig_atomic_t *interrupt_flag();

// Answers a waiting interrupt: true once for each.
bool take_interrupt();

// While one of these lives, a blocking read is broken off by the interrupt key instead of being
// taken up again: the prompt needs that, readers of files must not see it.
class InterruptibleReads {
  public:
    InterruptibleReads();
    InterruptibleReads(const InterruptibleReads &) = delete;
    InterruptibleReads &operator=(const InterruptibleReads &) = delete;
    ~InterruptibleReads();
};

// A function for the signal handler to call (it must be safe there), for example one that wakes
// the script interpreter; null: none.
void on_interrupt(void (*notify)(void *), void *argument);

}  // namespace wf

#endif
