// SPDX-License-Identifier: Apache-2.0
// The interrupt key, and the signals by which a process is asked to end: SIGINT, SIGTERM, SIGHUP.
// One of them asks whatever is going on to stop at the next safe place: a run after its time step,
// a Tcl script after its command. A second press of the key, while the first signal still waits for
// its answer, ends the program at once; what comes within a fifth of a second counts as the same
// one, as a terminal and the programs between send it to several processes, each of which may pass
// it on.
#ifndef WATTFORGE_HOST_SHELL_INTERRUPT_H
#define WATTFORGE_HOST_SHELL_INTERRUPT_H

#include <signal.h>

#include <csignal>

namespace wf {

// From now on the signals end the program at once with a line of its own (`leave`), as long as
// there is nothing to save, or are recorded. A SIGTERM or SIGHUP that is ignored stays ignored.
// Process-wide.
enum class OnInterrupt { leave, record };
void catch_interrupts(OnInterrupt what);

// What a program does with signals that has started another one and made files that must not stay
// behind. Both functions are called by the signal handler and must be safe there.
struct InterruptRelay {
    void (*pass_on)(int signal);  // a signal that came to this process alone, not from a terminal
    void (*leave)();              // the program is about to be left at once
};

// From now on the relay is told of the signals that are caught.
void relay_interrupts(const InterruptRelay &relay);

// The same inside a simulator: records. With `pass_on` the simulator's own answer to the signal,
// which ends the simulation, comes after that.
void catch_interrupts_in_simulator(bool pass_on);
// Gives the signals back to the simulator.
void release_interrupts();

// From now on a reader that goes away is an error of the writing, not the end of the process.
void ignore_closed_pipes();

// Not zero while an interrupt waits for its answer: the signal's number. Never null.
const volatile std::sig_atomic_t *interrupt_flag();

// Not zero once reading has to come to its end even inside a time step, because nobody will carry
// on from there: after SIGTERM and SIGHUP, and with `last` after SIGINT, too. Never null.
const volatile std::sig_atomic_t *last_interrupt_flag();
void every_interrupt_is_the_last(bool last_one);

// Answers a waiting interrupt: its signal, once for each; 0 for none.
int take_interrupt();

// SIGTERM or SIGHUP once one has come, answered or not: nothing new is to begin. Else 0.
int termination();

// The exit status that tells of that signal.
inline int interrupted_status(int signal) {
    return 128 + signal;
}

// While one of these lives, the signals are held back except inside wait_for_input: none gets lost
// between looking at the flag and waiting.
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
