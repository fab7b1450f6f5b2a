// SPDX-License-Identifier: Apache-2.0
// Signal state is process-wide by nature; this file is the only one that touches it.
#include "host/shell/interrupt.h"

#include <signal.h>
#include <unistd.h>

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

void install(int flags) {
    struct sigaction action;
    std::memset(&action, 0, sizeof action);
    action.sa_handler = handle_interrupt;
    action.sa_flags = flags;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
}

}  // namespace

void catch_interrupts() {
    install(SA_RESTART);
}

const volatile std::sig_atomic_t *interrupt_flag() {
    return &pending;
}

bool take_interrupt() {
    const bool taken = pending != 0;
    pending = 0;
    return taken;
}

InterruptibleReads::InterruptibleReads() {
    install(0);
}

InterruptibleReads::~InterruptibleReads() {
    install(SA_RESTART);
}

void on_interrupt(void (*notify)(void *), void *argument) {
    notify_function = nullptr;
    notify_argument = argument;
    notify_function = notify;
}

}  // namespace wf
