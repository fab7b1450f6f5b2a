// SPDX-License-Identifier: Apache-2.0
// One simulator as a plug-in sees it: a design, a kernel, a console, the commands that the plug-in
// registered and the plug-ins themselves. The mti_* functions work on the current session.
#pragma once

#include <mti.h>

#include <cstdio>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/design/design.h"
#include "host/fli/byte_values.h"
#include "host/fli/console.h"
#include "host/fli/ledger.h"
#include "host/fli/trace.h"
#include "host/kernel/kernel.h"

namespace wf {

// A command that a plug-in has registered with mti_AddCommand.
struct Command {
    std::string name;
    mtiVoidFuncPtrT function;
};

// One session at a time is the process's current simulator, from its construction to its end;
// making a second one meanwhile is an error of the program (std::logic_error). Design, kernel and
// console belong to the caller and outlive the session.
class Session {
  public:
    Session(Design &design, Kernel &kernel, Console &console);
    // Quits (if that has not been done), then unloads the plug-ins.
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    // The process's current simulator, or null.
    static Session *current() { return current_; }
    // Values of the current simulator's signals; knows none without one, or while calls are traced.
    static const ByteValues &byte_values() { return byte_values_; }
    // Has byte_values() know the signals around this one.
    void open_byte_values(const void *signal);

    // Opens a library and calls its init function with a null region, parameter, generics and
    // ports. A library name without a '/' is looked for in the current folder first, then where the
    // system looks. Returns an empty text, or what went wrong; an interface function that the
    // library needs and this simulator lacks is named.
    std::string load_plugin(const std::string &function, const std::string &library);
    // Calls the init function of a plug-in that is part of the program.
    using InitFunction = void (*)(mtiRegionIdT, char *, mtiInterfaceListT *, mtiInterfaceListT *);
    static void start_plugin(InitFunction init);

    // The registered commands in the order of registration. A command registered again replaces the
    // function.
    const std::vector<Command> &commands() const { return commands_; }
    // Runs a command with a copy of the whole line (its own name included). False when there is no
    // such command. Belongs between time steps: finish the step first.
    bool run_command(std::string_view name, std::string_view line);
    // Called for every newly registered command, and at once for those that exist.
    void on_command(std::function<void(const Command &)> listener);

    // Called for each signal that a process is made sensitive to; empty: nobody is told.
    void on_sensitize(std::function<void(const Signal &)> listener);
    void tell_sensitized(const Signal &signal) const {
        if (sensitize_listener_) {
            sensitize_listener_(signal);
        }
    }

    // Runs the quit callbacks in the order of registration, once; later calls do nothing. Memory
    // that the plug-in did not release is released then.
    void quit();

    // The switch that traces every call across the wall, every process that wakes and every
    // command: off, to the console, or to a file of the caller's. A traced line begins with "fli:
    // ".
    void trace_off();
    void trace_to_console();
    void trace_to_file(std::FILE *file);

    // What the interface's functions work on.
    Design &design;
    Kernel &kernel;
    Console &console;
    Ledger ledger;  // memory that the plug-in releases with mti_VsimFree
    Trace trace;

    void add_command(std::string_view name, mtiVoidFuncPtrT function);
    void add_quit_callback(mtiVoidFuncPtrT function, void *parameter);
    // Complains about a use of an interface function.
    void complain(const char *function, std::string_view what);
    // The cursor that mti_FirstSignal and mti_NextSignal share.
    struct Cursor {
        const Region *region = nullptr;
        size_t position = 0;
    } cursor;

  private:
    static void trace_wake(void *session, const Process &process);

    static inline Session *current_ = nullptr;
    static inline ByteValues byte_values_;

    struct QuitCallback {
        mtiVoidFuncPtrT function;
        void *parameter;
    };

    std::vector<Command> commands_;
    std::vector<QuitCallback> quit_callbacks_;
    std::vector<void *> libraries_;
    std::function<void(const Command &)> listener_;
    std::function<void(const Signal &)> sensitize_listener_;
    bool has_quit_ = false;
};

}  // namespace wf
