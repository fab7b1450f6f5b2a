// SPDX-License-Identifier: Apache-2.0
// Quitting unwinds the interpreter instead of leaving the process from inside a command, so that
// the host's own clean-up always runs; Tcl's cancellation is what no `catch` can stop.
#include "host/shell/shell.h"

#include <algorithm>
#include <utility>

#include "host/fli/session.h"
#include "host/shell/commands.h"
#include "host/shell/interrupt.h"
#include "host/shell/message_watch.h"
#include "host/shell/plugin_command.h"
#include "host/shell/transcript.h"

// Tcl's main loop makes an interpreter whose script was unwound usable again with this function of
// its library, which no public header declares.
extern "C" int TclResetCancellation(Tcl_Interp *interp, int force);

namespace wf {
namespace {

// A command of a plug-in, as Tcl keeps it.
struct PluginCommand {
    Shell &shell;
    std::string name;
};

int answer_plugin_command(ClientData data, Tcl_Interp *interp, int count, Tcl_Obj *const words[]) {
    const auto &command = *static_cast<PluginCommand *>(data);
    const std::string arguments = join_words(1, count, words);
    const std::string line = arguments.empty() ? command.name : command.name + " " + arguments;
    Tcl_ResetResult(interp);
    command.shell.flush();
    run_plugin_command(command.shell.simulation(), command.name, line);
    return fail_if_strict(interp, command.shell.simulation());
}

void delete_plugin_command(ClientData data) {
    delete static_cast<PluginCommand *>(data);
}

// Scripts, names and output are UTF-8 whatever the locale says: what stands in a file comes out. A
// channel takes over the encoding of the moment when it is made, so this comes before them.
Transcript &prepared(Transcript &transcript) {
    Tcl_FindExecutable(nullptr);
    Tcl_SetSystemEncoding(nullptr, "utf-8");
    return transcript;
}

// The place in the innermost script file that an error trace speaks of: "run.tcl:12", or nothing.
std::string place_in_file(const std::string &trace) {
    static constexpr std::string_view opening = "(file \"";
    static constexpr std::string_view middle = "\" line ";
    const size_t start = trace.find(opening);
    if (start == std::string::npos) {
        return {};
    }
    const size_t name = start + opening.size();
    const size_t name_end = trace.find(middle, name);
    const size_t number_end = trace.find(')', name_end);
    if (name_end == std::string::npos || number_end == std::string::npos) {
        return {};
    }
    const size_t number = name_end + middle.size();
    return trace.substr(name, name_end - name) + ":" + trace.substr(number, number_end - number);
}

std::string variable(Tcl_Interp *interp, const char *name) {
    const char *value = Tcl_GetVar(interp, name, TCL_GLOBAL_ONLY);
    return value == nullptr ? "" : value;
}

}  // namespace

int fail_if_strict(Tcl_Interp *interp, const Simulation &simulation) {
    const bool failed = simulation.strict && simulation.watch.errors() > 0;
    return failed ? fail(interp, simulation.watch.take_errors()) : TCL_OK;
}

std::string join_words(int first, int count, Tcl_Obj *const words[]) {
    std::string text;
    for (int i = first; i < count; ++i) {
        text += i > first ? " " : "";
        text += text_of(words[i]);
    }
    return text;
}

Shell::Shell(const Simulation &simulation)
    : simulation_(simulation),
      run_notes_(simulation.control, simulation.transcript),
      channels_(prepared(simulation.transcript)),
      interp_(Tcl_CreateInterp()),
      interrupt_handler_(Tcl_AsyncCreate(answer_interrupt, this)) {
    if (Tcl_Init(interp_) != TCL_OK) {
        simulation_.transcript.print(std::string("Warning: Tcl's library was not found: ") +
                                     Tcl_GetStringResult(interp_));
    }
    // A mistyped command is an error, not a program to look for.
    Tcl_SetVar(interp_, "auto_noexec", "1", TCL_GLOBAL_ONLY);
    add_run_commands(interp_, *this);
    add_script_commands(interp_, *this);
    add_design_commands(interp_, *this);
    add_absent_commands(interp_, *this);
    simulation_.session.on_command(
        [this](const Command &command) { add_plugin_command(command.name); });
    on_interrupt([](void *handler) { Tcl_AsyncMark(static_cast<Tcl_AsyncHandler>(handler)); },
                 interrupt_handler_);
    if (*interrupt_flag() != 0) {
        Tcl_AsyncMark(interrupt_handler_);
    }
}

Shell::~Shell() {
    on_interrupt(nullptr, nullptr);
    simulation_.session.on_command([](const Command &) {});
    Tcl_AsyncDelete(interrupt_handler_);
    Tcl_DeleteInterp(interp_);
}

void Shell::add_plugin_command(const std::string &name) {
    Tcl_CreateObjCommand(interp_, name.c_str(), answer_plugin_command,
                         new PluginCommand{*this, name}, delete_plugin_command);
}

ScriptEnd Shell::run_file(const std::string &path, const std::vector<std::string> &arguments) {
    Tcl_Obj *command = Tcl_NewListObj(0, nullptr);
    Tcl_IncrRefCount(command);
    Tcl_ListObjAppendElement(nullptr, command, new_text("do"));
    Tcl_ListObjAppendElement(nullptr, command, new_text(path));
    for (const std::string &argument : arguments) {
        Tcl_ListObjAppendElement(nullptr, command, new_text(argument));
    }
    const int code = Tcl_EvalObjEx(interp_, command, TCL_EVAL_GLOBAL | TCL_EVAL_DIRECT);
    Tcl_DecrRefCount(command);
    return conclude(code, {}, 1);
}

ScriptEnd Shell::run_text(std::string_view commands, std::string_view origin, int first_line) {
    const int code =
        Tcl_EvalEx(interp_, commands.data(), static_cast<int>(commands.size()), TCL_EVAL_GLOBAL);
    return conclude(code, origin, first_line);
}

ScriptEnd Shell::conclude(int tcl_code, std::string_view origin, int first_line) {
    channels_.flush();
    if (quit_requested_) {
        return ScriptEnd::quit;
    }
    const std::string interrupted = std::exchange(interrupted_error_, std::string());
    if (!interrupted.empty()) {
        TclResetCancellation(interp_, /*force=*/1);
    }
    if (tcl_code != TCL_ERROR) {
        return ScriptEnd::done;
    }
    tell_error(origin, first_line, interrupted.empty() ? result() : interrupted);
    return interrupted.empty() ? ScriptEnd::failed : ScriptEnd::interrupted;
}

void Shell::tell_error(std::string_view origin, int first_line, const std::string &error) {
    std::string place = place_in_file(variable(interp_, "errorInfo"));
    if (place.empty() && !origin.empty()) {
        place =
            std::string(origin) + ":" + std::to_string(first_line - 1 + Tcl_GetErrorLine(interp_));
    }
    simulation_.transcript.print("Error: " + (place.empty() ? "" : place + ": ") + error);
}

std::string Shell::result() const {
    return Tcl_GetStringResult(interp_);
}

bool Shell::is_complete(const std::string &commands) {
    return Tcl_CommandComplete(commands.c_str()) != 0;
}

std::vector<std::string> Shell::command_names(std::string_view prefix) const {
    std::vector<std::string> names;
    Tcl_InterpState state = Tcl_SaveInterpState(interp_, TCL_OK);
    if (Tcl_EvalEx(interp_, "info commands", -1, TCL_EVAL_GLOBAL) == TCL_OK) {
        int count = 0;
        Tcl_Obj **words = nullptr;
        Tcl_ListObjGetElements(nullptr, Tcl_GetObjResult(interp_), &count, &words);
        for (int i = 0; i < count; ++i) {
            if (text_of(words[i]).starts_with(prefix)) {
                names.emplace_back(text_of(words[i]));
            }
        }
    }
    Tcl_RestoreInterpState(interp_, state);
    std::sort(names.begin(), names.end());
    return names;
}

void Shell::request_quit(std::optional<int> code) {
    quit_requested_ = true;
    quit_code_ = code;
    Tcl_CancelEval(interp_, nullptr, nullptr, TCL_CANCEL_UNWIND);
}

// Tcl calls this between commands once the handler has been marked, and while it waits for events.
int Shell::answer_interrupt(ClientData data, Tcl_Interp *, int code) {
    auto &shell = *static_cast<Shell *>(data);
    const int signal = shell.waits_in_run_ ? 0 : take_interrupt();
    if (signal == 0) {
        return code;
    }
    shell.note_interruption(signal);
    shell.end_interrupted("interrupted");
    return TCL_ERROR;
}

bool Shell::note_interruption(int signal) {
    const bool is_first = interruption_ == 0;
    interruption_ = signal == 0 ? interruption_ : signal;
    return is_first;
}

void Shell::end_interrupted(const std::string &error) {
    interrupted_error_ = error;
    Tcl_CancelEval(interp_, nullptr, nullptr, TCL_CANCEL_UNWIND);
}

int Shell::exit_status(ScriptEnd end) const {
    if (end == ScriptEnd::failed) {
        return 1;
    }
    if (end == ScriptEnd::quit && quit_code_) {
        return *quit_code_;
    }
    return interruption_ == 0 ? 0 : interrupted_status(interruption_);
}

}  // namespace wf
