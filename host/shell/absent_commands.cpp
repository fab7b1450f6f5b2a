// SPDX-License-Identifier: Apache-2.0
// Commands that every simulator's script may hold and that make no sense here. Each says so in a
// Tcl error: a script that counts on a forced value must not go on without it.
#include "host/shell/commands.h"
#include "host/shell/run_control.h"
#include "host/shell/shell.h"

namespace wf {
namespace {

struct Absent {
    const char *command;
    const char *what;
};

constexpr Absent absent_commands[] = {
    {"add", "wave, list or log windows"},
    {"bd", "breakpoints"},
    {"bp", "breakpoints"},
    {"change", "forced values"},
    {"force", "forced values"},
    {"log", "signal log"},
    {"next", "source to step through"},
    {"noforce", "forced values"},
    {"nolog", "signal log"},
    {"nowhen", "breakpoints"},
    {"step", "source to step through"},
    {"vcd", "waveform output"},
    {"view", "windows"},
    {"wave", "windows"},
    {"when", "breakpoints"},
};

struct AbsentCommand {
    const Shell &shell;
    const Absent &absent;
};

int refuse(ClientData data, Tcl_Interp *interp, int, Tcl_Obj *const[]) {
    const auto &[shell, absent] = *static_cast<AbsentCommand *>(data);
    return fail(interp, std::string(absent.command) + ": " +
                            shell.simulation().control.host_name() + " has no " + absent.what);
}

void delete_command(ClientData data) {
    delete static_cast<AbsentCommand *>(data);
}

}  // namespace

void add_absent_commands(Tcl_Interp *interp, Shell &shell) {
    for (const Absent &absent : absent_commands) {
        Tcl_CreateObjCommand(interp, absent.command, refuse, new AbsentCommand{shell, absent},
                             delete_command);
    }
}

}  // namespace wf
