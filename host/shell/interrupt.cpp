// SPDX-License-Identifier: Apache-2.0
// Signal state is process-wide by nature; this file is the only one that touches it.
#include "host/shell/interrupt.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <iterator>

namespace wf {
namespace {

using Flag = volatile std::sig_atomic_t;

constexpr int signals[] = {SIGINT, SIGTERM, SIGHUP};

Flag pending = 0;
Flag last = 0;        // reading has to come to its end
Flag terminated = 0;  // by SIGTERM or SIGHUP
Flag leaves = 0;      // there is nothing to save
Flag every_one_is_last = 0;
timespec pending_since;

// Inside a simulator: what it did with each signal, and whether that is still to be done.
bool in_simulator = false;
bool passes_on = false;
struct sigaction simulators_own[std::size(signals)];

void (*volatile notify_function)(void *) = nullptr;
void *volatile notify_argument = nullptr;

InterruptRelay relay_to = {.pass_on = nullptr, .leave = nullptr};

// A terminal sends its signals to all of its foreground processes: those need no passing on.
bool is_from_a_process(const siginfo_t &info) {
    return info.si_code <= 0;
}

[[noreturn]] void leave(int signal, const char *how) {
    if (relay_to.leave != nullptr) {
        relay_to.leave();
    }
    const int standard_error = STDERR_FILENO;
    for (const char *part : {in_simulator ? "\nwattforge: " : "\nwfsim: ", how, "\n"}) {
        const ssize_t ignored = write(standard_error, part, std::strlen(part));
        (void)ignored;
    }
    _exit(interrupted_status(signal));
}

bool is_repeated_at_once() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    const auto seconds = now.tv_sec - pending_since.tv_sec;
    return seconds * 1'000'000'000 + now.tv_nsec - pending_since.tv_nsec < 200'000'000;
}

void record(int signal) {
    if (pending == 0) {
        clock_gettime(CLOCK_MONOTONIC, &pending_since);
    }
    pending = signal;
    terminated = signal == SIGINT ? terminated : signal;
    last = last != 0 || signal != SIGINT || every_one_is_last != 0;
    if (notify_function != nullptr) {
        notify_function(notify_argument);
    }
}

void pass_on(int signal) {
    for (size_t i = 0; i < std::size(signals); ++i) {
        if (signals[i] == signal && simulators_own[i].sa_handler != SIG_DFL &&
            simulators_own[i].sa_handler != SIG_IGN) {
            simulators_own[i].sa_handler(signal);
        }
    }
}

void handle_interrupt(int signal, siginfo_t *info, void *) {
    const int error = errno;
    if (relay_to.pass_on != nullptr && is_from_a_process(*info)) {
        relay_to.pass_on(signal);
    }
    if (leaves != 0) {
        leave(signal, "interrupted");
    }
    // A request to end after the interrupt key asks for more than the key did.
    const bool is_new = pending == 0 || (pending == SIGINT && signal != SIGINT);
    if (!is_new && signal == SIGINT && !is_repeated_at_once()) {
        leave(signal, "interrupted twice, leaving at once");
    }
    if (is_new) {
        record(signal);
        if (passes_on) {
            pass_on(signal);
        }
    }
    errno = error;
}

sigset_t all_signals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : signals) {
        sigaddset(&set, signal);
    }
    return set;
}

void catch_signals() {
    struct sigaction action;
    std::memset(&action, 0, sizeof action);
    action.sa_sigaction = handle_interrupt;
    action.sa_flags = SA_RESTART | SA_SIGINFO;  // readers of files shall not see it
    action.sa_mask = all_signals();
    for (size_t i = 0; i < std::size(signals); ++i) {
        struct sigaction before;
        sigaction(signals[i], nullptr, &before);
        if (signals[i] != SIGINT && before.sa_handler == SIG_IGN) {
            continue;
        }
        if (before.sa_sigaction != handle_interrupt) {
            simulators_own[i] = before;
        }
        sigaction(signals[i], &action, nullptr);
    }
}

}  // namespace

void catch_interrupts(OnInterrupt what) {
    leaves = what == OnInterrupt::leave;
    catch_signals();
}

void catch_interrupts_in_simulator(bool pass_on) {
    in_simulator = true;
    passes_on = pass_on;
    catch_signals();
}

void relay_interrupts(const InterruptRelay &relay) {
    relay_to = relay;
}

void release_interrupts() {
    for (size_t i = 0; i < std::size(signals); ++i) {
        struct sigaction now;
        sigaction(signals[i], nullptr, &now);
        if (now.sa_sigaction == handle_interrupt) {
            sigaction(signals[i], &simulators_own[i], nullptr);
        }
    }
}

void ignore_closed_pipes() {
    signal(SIGPIPE, SIG_IGN);
}

const volatile std::sig_atomic_t *interrupt_flag() {
    return &pending;
}

const volatile std::sig_atomic_t *last_interrupt_flag() {
    return &last;
}

void every_interrupt_is_the_last(bool last_one) {
    every_one_is_last = last_one;
}

int take_interrupt() {
    const int taken = pending;
    pending = 0;
    return taken;
}

int termination() {
    return terminated;
}

HeldInterrupts::HeldInterrupts() {
    const sigset_t held = all_signals();
    sigprocmask(SIG_BLOCK, &held, &before_);
}

HeldInterrupts::~HeldInterrupts() {
    sigprocmask(SIG_SETMASK, &before_, nullptr);
}

bool HeldInterrupts::wait_for_input(int descriptor) const {
    pollfd wanted = {.fd = descriptor, .events = POLLIN, .revents = 0};
    while (pending == 0) {
        if (ppoll(&wanted, 1, nullptr, &before_) >= 0 || errno != EINTR) {
            return true;
        }
    }
    return false;
}

void on_interrupt(void (*notify)(void *), void *argument) {
    notify_function = nullptr;
    notify_argument = argument;
    notify_function = notify;
}

}  // namespace wf
