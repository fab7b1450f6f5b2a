// SPDX-License-Identifier: Apache-2.0
// Signal state is process-wide by nature; this file is the only one that touches it.
#include "host/shell/interrupt.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace wf {
namespace {

volatile std::sig_atomic_t pending = 0;
void (*volatile notify_function)(void *) = nullptr;
void *volatile notify_argument = nullptr;

void handle_interrupt(int) {
    if (pending != 0) {
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

}  // namespace

void catch_interrupts() {
    struct sigaction action;
    std::memset(&action, 0, sizeof action);
    action.sa_handler = handle_interrupt;
    action.sa_flags = SA_RESTART;  // readers of files shall not see it
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
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
