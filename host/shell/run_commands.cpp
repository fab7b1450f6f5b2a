// SPDX-License-Identifier: Apache-2.0
// The commands that move and tell simulated time. `run` is written in Tcl's non-recursive style, so
// that a host that owns no loop can have the script's coroutine wait in the middle of it.
#include <memory>

#include "host/shell/commands.h"
#include "host/shell/interrupt.h"
#include "host/shell/message_watch.h"
#include "host/shell/plugin_command.h"
#include "host/shell/run_control.h"
#include "host/shell/shell.h"
#include "host/shell/transcript.h"
#include "host/shell/words.h"

namespace wf {
namespace {

Shell &shell_of(ClientData data) {
    return *static_cast<Shell *>(data);
}

// What `run` alone stands for.
constexpr const char *default_length = "100";

// The time that a run command names, as an absolute limit; the error text otherwise.
std::string limit_of(Shell &shell, const std::string &words, Ticks *limit) {
    const RunControl &control = shell.simulation().control;
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
    // A signal that came as the run ended is the run's, too.
    if (end != RunEnd::interrupted && *interrupt_flag() == 0) {
        return fail_if_strict(interp, shell.simulation());
    }
    const std::string where = shell.run_notes().interruption();
    if (shell.note_interruption(take_interrupt())) {
        shell.simulation().transcript.print("Note: " + where);
        return TCL_OK;
    }
    shell.end_interrupted(where);
    return TCL_ERROR;
}

// What a suspended run needs when its coroutine goes on.
struct SuspendedRun {
    Shell &shell;
    Ticks limit;
};

int resume_run(ClientData data[], Tcl_Interp *interp, int code) {
    const std::unique_ptr<SuspendedRun> run(static_cast<SuspendedRun *>(data[0]));
    run->shell.wait_in_run(false);
    if (code != TCL_OK) {
        return code;
    }
    return finish_run(interp, run->shell, run->shell.simulation().control.result(), run->limit);
}

int start_run(ClientData data, Tcl_Interp *interp, int count, Tcl_Obj *const arguments[]) {
    Shell &shell = shell_of(data);
    shell.flush();
    Ticks limit = run_to_end;
    if (count == 2 && text_of(arguments[1]).starts_with('-')) {
        if (words::position(interp, arguments[1], words::run_options, "option") < 0) {
            return TCL_ERROR;
        }
    } else {
        const std::string length = count == 1 ? default_length : join_words(1, count, arguments);
        const std::string error = limit_of(shell, length, &limit);
        if (!error.empty()) {
            return fail(interp, error);
        }
    }
    const RunEnd end = shell.simulation().control.start(limit);
    if (end != RunEnd::suspended) {
        return finish_run(interp, shell, end, limit);
    }
    shell.wait_in_run(true);
    Tcl_NRAddCallback(interp, resume_run, new SuspendedRun{shell, limit}, nullptr, nullptr,
                      nullptr);
    return Tcl_NREvalObj(interp, new_text("yield"), 0);
}

int run(ClientData data, Tcl_Interp *interp, int count, Tcl_Obj *const words[]) {
    return Tcl_NRCallObjProc(interp, start_run, data, count, words);
}

// --- restart ---

// What was counted up to now is in the plug-in's figures; time that runs backwards would not be.
void close_window(const Simulation &simulation) {
    if (simulation.watch.window_open()) {
        simulation.transcript.print(
            "Note: restart closes the counting window; what it has counted is kept");
        run_plugin_command(simulation, "toggle_stop", "toggle_stop");
    }
}

int restart(ClientData data, Tcl_Interp *interp, int count, Tcl_Obj *const arguments[]) {
    for (int i = 1; i < count; ++i) {
        if (words::position(interp, arguments[i], words::restart_options, "option") < 0) {
            return TCL_ERROR;
        }
    }
    Shell &shell = shell_of(data);
    const Simulation &simulation = shell.simulation();
    shell.flush();
    std::string error = simulation.control.restart_obstacle();
    if (error.empty()) {
        close_window(simulation);
        error = simulation.control.restart();
        shell.run_notes().restart();
    }
    return error.empty() ? TCL_OK : fail(interp, "restart: " + error);
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
    Tcl_CreateObjCommand(interp, "restart", restart, &shell, nullptr);
    Tcl_CreateObjCommand(interp, "now", now, &shell, nullptr);
}

}  // namespace wf
