// SPDX-License-Identifier: Apache-2.0
// Signal state is process-wide by nature; this file is the only one that touches it.
#include "host/shell/interrupt.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <initializer_list>

namespace wf {
namespace {

volatile std::sig_atomic_t pending = 0;
void (*volatile notify_function)(void *) = nullptr;
void *volatile notify_argument = nullptr;

InterruptRelay relay_to = {.pass_on = nullptr, .leave = nullptr};

// A terminal sends its signals to all of its foreground processes: those need no passing on.
bool is_from_a_process(const siginfo_t &info) {
    return info.si_code <= 0;
}

void handle_interrupt(int signal, siginfo_t *info, void *) {
    const int before = errno;
    if (relay_to.pass_on != nullptr && is_from_a_process(*info)) {
        relay_to.pass_on(signal);
    }
    errno = before;
    if (pending != 0 && signal != SIGINT) {
        return;
    }
    if (pending != 0) {
        if (relay_to.leave != nullptr) {
            relay_to.leave();
        }
        static const char text[] = "\nwfsim: interrupted twice, leaving at once\n";
        const ssize_t ignored = write(STDERR_FILENO, text, sizeof text - 1);
        (void)ignored;
        _exit(128 + SIGINT);
    }
    pending = 1;
    if (notify_function != nullptr) {
        notify_function(notify_argument);
    }
}

void catch_signal(int signal) {
    struct sigaction action;
    std::memset(&action, 0, sizeof action);
    action.sa_sigaction = handle_interrupt;
    action.sa_flags = SA_RESTART | SA_SIGINFO;  // readers of files shall not see it
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

}  // namespace

void catch_interrupts() {
    catch_signal(SIGINT);
}

void relay_interrupts(const InterruptRelay &relay) {
    relay_to = relay;
    for (const int signal : {SIGTERM, SIGHUP}) {
        struct sigaction present;
        if (sigaction(signal, nullptr, &present) == 0 && present.sa_handler != SIG_IGN) {
            catch_signal(signal);
        }
    }
}

const volatile std::sig_atomic_t *interrupt_flag() {
    return &pending;
}

bool take_interrupt() {
    const bool taken = pending != 0;
    pending = 0;
    return taken;
}

HeldInterrupts::HeldInterrupts() {
    sigset_t held;
    sigemptyset(&held);
    sigaddset(&held, SIGINT);
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
