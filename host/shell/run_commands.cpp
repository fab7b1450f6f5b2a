// SPDX-License-Identifier: Apache-2.0
// The commands that move and tell simulated time. `run` is written in Tcl's non-recursive style, so
// that a host that owns no loop can have the script's coroutine wait in the middle of it.
#include <memory>

#include "host/shell/commands.h"
#include "host/shell/interrupt.h"
#include "host/shell/run_control.h"
#include "host/shell/shell.h"
#include "host/shell/transcript.h"

namespace wf {
namespace {

Shell &shell_of(ClientData data) {
    return *static_cast<Shell *>(data);
}

// The time that the words of a run command name, as an absolute limit; the error text otherwise.
std::string limit_of(Shell &shell, const std::string &words, Ticks *limit) {
    const RunControl &control = shell.simulation().control;
    if (words == "-all" || words == "-a") {
        *limit = run_to_end;
        return {};
    }
    if (words.empty()) {
        return "usage: run TIME | run -all";
    }
    const ParsedTime time = parse_time(words, control.resolution_exponent());
    if (!time.error.empty()) {
        return "run: " + time.error;
    }
    if (time.ticks >= run_to_end - control.now()) {
        return "run: the time \"" + words + "\" is more than the simulator can count";
    }
    shell.run_notes().tell_rounding(words, time);
    *limit = control.now() + time.ticks;
    return {};
}

int finish_run(Tcl_Interp *interp, Shell &shell, RunEnd end, Ticks limit) {
    Tcl_ResetResult(interp);
    shell.run_notes().tell(end, limit);
    if (end != RunEnd::interrupted) {
        return fail_if_strict(interp, shell.simulation());
    }
    take_interrupt();
    return fail_interrupted(interp, shell.run_notes().interruption());
}

// What a suspended run needs when its coroutine goes on.
struct SuspendedRun {
    Shell &shell;
    Ticks limit;
};

int resume_run(ClientData data[], Tcl_Interp *interp, int code) {
    const std::unique_ptr<SuspendedRun> run(static_cast<SuspendedRun *>(data[0]));
    if (code != TCL_OK) {
        return code;
    }
    return finish_run(interp, run->shell, run->shell.simulation().control.result(), run->limit);
}

int start_run(ClientData data, Tcl_Interp *interp, int count, Tcl_Obj *const words[]) {
    Shell &shell = shell_of(data);
    shell.flush();
    Ticks limit = 0;
    const std::string error = limit_of(shell, join_words(1, count, words), &limit);
    if (!error.empty()) {
        return fail(interp, error);
    }
    const RunEnd end = shell.simulation().control.start(limit);
    if (end != RunEnd::suspended) {
        return finish_run(interp, shell, end, limit);
    }
    Tcl_NRAddCallback(interp, resume_run, new SuspendedRun{shell, limit}, nullptr, nullptr,
                      nullptr);
    return Tcl_NREvalObj(interp, new_text("yield"), 0);
}

int run(ClientData data, Tcl_Interp *interp, int count, Tcl_Obj *const words[]) {
    return Tcl_NRCallObjProc(interp, start_run, data, count, words);
}

int now(ClientData data, Tcl_Interp *interp, int count, Tcl_Obj *const words[]) {
    if (count != 1) {
        Tcl_WrongNumArgs(interp, 1, words, nullptr);
        return TCL_ERROR;
    }
    const RunControl &control = shell_of(data).simulation().control;
    Tcl_SetObjResult(interp, new_text(format_ticks(control.now(), control.resolution_exponent())));
    return TCL_OK;
}

}  // namespace

void add_run_commands(Tcl_Interp *interp, Shell &shell) {
    Tcl_NRCreateCommand(interp, "run", run, start_run, &shell, nullptr);
    Tcl_CreateObjCommand(interp, "now", now, &shell, nullptr);
}

}  // namespace wf
