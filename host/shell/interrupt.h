// SPDX-License-Identifier: Apache-2.0
// The interrupt key. One press asks whatever is going on to stop at the next safe place: a run
// after its time step, a Tcl script after its command. A second press before the first has been
// answered ends the program.
#ifndef WATTFORGE_HOST_SHELL_INTERRUPT_H
#define WATTFORGE_HOST_SHELL_INTERRUPT_H

#include <signal.h>

#include <csignal>

namespace wf {

// From now on SIGINT is recorded instead of ending the program. Process-wide.
void catch_interrupts();

// What a program does with signals that has started another one and made files that must not stay
// behind. Both functions are called by the signal handler and must be safe there.
struct InterruptRelay {
    void (*pass_on)(int signal);  // a signal that came to this process alone, not from a terminal
    void (*leave)();              // the program is about to be left at once
};

// From now on SIGTERM and SIGHUP, unless they are ignored, are taken for an interrupt, too, though
// only the interrupt key, pressed twice, leaves at once; and the relay is told. Process-wide.
void relay_interrupts(const InterruptRelay &relay);

// Set to non-zero while an interrupt waits for its answer. Never null.
const volatile std::sig_atomic_t *interrupt_flag();

// Answers a waiting interrupt: true once for each.
bool take_interrupt();

// While one of these lives, the interrupt key is held back except inside wait_for_input: none gets
// lost between looking at the flag and waiting.
class HeldInterrupts {
  public:
    HeldInterrupts();
    HeldInterrupts(const HeldInterrupts &) = delete;
    HeldInterrupts &operator=(const HeldInterrupts &) = delete;
    ~HeldInterrupts();

    // Waits until the descriptor has input (or its end). False: an interrupt came first.
    bool wait_for_input(int descriptor) const;

  private:
    sigset_t before_;
};

// A function for the signal handler to call (it must be safe there), for example one that wakes
// the script interpreter; null: none.
void on_interrupt(void (*notify)(void *), void *argument);

}  // namespace wf

#endif
