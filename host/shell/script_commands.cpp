// SPDX-License-Identifier: Apache-2.0
// The commands about the script and the session themselves: do, echo, transcript,
// quit, exit, help.
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <optional>

#include "host/fli/session.h"
#include "host/shell/commands.h"
#include "host/shell/shell.h"
#include "host/shell/transcript.h"
#include "host/shell/used_files.h"

namespace wf {
namespace {

Shell &shell_of(ClientData data) {
    return *static_cast<Shell *>(data);
}

// --- do ---

// The variables a script finds its arguments in, with what they held before: scripts nest.
class ScriptArguments {
  public:
    ScriptArguments(Tcl_Interp *interp, int count, Tcl_Obj *const arguments[]) : interp_(interp) {
        set("argc", Tcl_NewIntObj(count));
        set("argv", Tcl_NewListObj(count, arguments));
        for (int i = 0; i < count; ++i) {
            set(std::to_string(i + 1), arguments[i]);
        }
    }
    ScriptArguments(const ScriptArguments &) = delete;
    ScriptArguments &operator=(const ScriptArguments &) = delete;

    ~ScriptArguments() {
        for (const auto &[name, value] : before_) {
            if (value == nullptr) {
                Tcl_UnsetVar(interp_, name.c_str(), TCL_GLOBAL_ONLY);
            } else {
                Tcl_SetVar2Ex(interp_, name.c_str(), nullptr, value, TCL_GLOBAL_ONLY);
                Tcl_DecrRefCount(value);
            }
        }
    }

  private:
    void set(const std::string &name, Tcl_Obj *value) {
        Tcl_Obj *old = Tcl_GetVar2Ex(interp_, name.c_str(), nullptr, TCL_GLOBAL_ONLY);
        if (old != nullptr) {
            Tcl_IncrRefCount(old);
        }
        before_.emplace_back(name, old);
        Tcl_SetVar2Ex(interp_, name.c_str(), nullptr, value, TCL_GLOBAL_ONLY);
    }

    Tcl_Interp *interp_;
    std::vector<std::pair<std::string, Tcl_Obj *>> before_;
};

// A script's name is taken from the current folder; a script that is not there is looked for beside
// the one that calls it.
std::string locate_script(Tcl_Interp *interp, const std::string &name) {
    if (access(name.c_str(), F_OK) == 0 || name.starts_with('/')) {
        return name;
    }
    Tcl_InterpState state = Tcl_SaveInterpState(interp, TCL_OK);
    Tcl_EvalEx(interp, "info script", -1, TCL_EVAL_GLOBAL);
    const std::string caller = Tcl_GetStringResult(interp);
    Tcl_RestoreInterpState(interp, state);
    const size_t slash = caller.rfind('/');
    const std::string beside = slash == std::string::npos ? "" : caller.substr(0, slash + 1) + name;
    return !beside.empty() && access(beside.c_str(), F_OK) == 0 ? beside : name;
}

int end_do(ClientData data[], Tcl_Interp *, int code) {
    delete static_cast<ScriptArguments *>(data[0]);
    return code;
}

int start_do(ClientData data, Tcl_Interp *interp, int count, Tcl_Obj *const words[]) {
    if (count < 2) {
        return fail(interp, "usage: do FILE [ARGUMENT]...");
    }
    const std::string path = locate_script(interp, std::string(text_of(words[1])));
    if (access(path.c_str(), R_OK) != 0) {
        return fail(interp, "do: cannot read " + path + ": " + std::strerror(errno));
    }
    shell_of(data).simulation().files.reads(path, "the script");
    auto arguments = std::make_unique<ScriptArguments>(interp, count - 2, words + 2);
    Tcl_NRAddCallback(interp, end_do, arguments.release(), nullptr, nullptr, nullptr);
    Tcl_Obj *command = Tcl_NewListObj(0, nullptr);
    Tcl_ListObjAppendElement(nullptr, command, new_text("::source"));
    Tcl_ListObjAppendElement(nullptr, command, new_text(path));
    return Tcl_NREvalObj(interp, command, TCL_EVAL_GLOBAL);
}

int do_script(ClientData data, Tcl_Interp *interp, int count, Tcl_Obj *const words[]) {
    return Tcl_NRCallObjProc(interp, start_do, data, count, words);
}

// --- echo ---

int echo(ClientData, Tcl_Interp *, int count, Tcl_Obj *const words[]) {
    const std::string line = join_words(1, count, words) + "\n";
    Tcl_WriteChars(Tcl_GetStdChannel(TCL_STDOUT), line.data(), static_cast<int>(line.size()));
    return TCL_OK;
}

// --- transcript ---

int transcript(ClientData data, Tcl_Interp *interp, int count, Tcl_Obj *const words[]) {
    Shell &shell = shell_of(data);
    Transcript &transcript = shell.simulation().transcript;
    const std::string_view action = count > 1 ? text_of(words[1]) : "";
    shell.flush();
    if (count == 1) {
        Tcl_SetObjResult(interp, new_text(transcript.recording() ? "on" : "off"));
    } else if (count == 2 && (action == "on" || action == "off")) {
        transcript.set_recording(action == "on");
    } else if (count == 2 && action == "file") {
        Tcl_SetObjResult(interp, new_text(transcript.file_name()));
    } else if (count == 3 && action == "file") {
        const std::string path(text_of(words[2]));
        UsedFiles &files = shell.simulation().files;
        std::string error = path.empty() ? "" : files.obstacle(path, transcript_name);
        if (!error.empty() || !transcript.set_file(path, &error)) {
            return fail(interp, error);
        }
        files.writes(path, transcript_name);
    } else {
        return fail(interp, "usage: transcript file [NAME] | transcript on | transcript off");
    }
    return TCL_OK;
}

// --- quit ---

int quit(ClientData data, Tcl_Interp *interp, int count, Tcl_Obj *const words[]) {
    std::optional<int> status;
    for (int i = 1; i < count; ++i) {
        const std::string_view option = text_of(words[i]);
        if (option == "-f" || option == "-force") {
            continue;
        }
        if (option == "-sim") {
            return fail(interp,
                        "quit: -sim is not offered, as a run has one design; quit without it "
                        "ends the run");
        }
        if (option != "-code" || ++i == count) {
            return fail(interp, "usage: quit [-f] [-code STATUS]");
        }
        int code = 0;
        if (Tcl_GetIntFromObj(interp, words[i], &code) != TCL_OK || code < 0 || code > 255) {
            return fail(interp, "quit: expected a status from 0 to 255, got \"" +
                                    std::string(text_of(words[i])) + "\"");
        }
        status = code;
    }
    shell_of(data).request_quit(status);
    return TCL_ERROR;
}

// Tcl's own exit would leave the plug-ins without their quit callbacks.
int exit_as_quit(ClientData data, Tcl_Interp *interp, int count, Tcl_Obj *const words[]) {
    int code = 0;
    if (count > 2) {
        Tcl_WrongNumArgs(interp, 1, words, "?returnCode?");
        return TCL_ERROR;
    }
    if (count == 2 && Tcl_GetIntFromObj(interp, words[1], &code) != TCL_OK) {
        return TCL_ERROR;
    }
    shell_of(data).request_quit(count == 2 ? std::optional(code & 0xff) : std::nullopt);
    return TCL_ERROR;
}

// --- help ---

constexpr const char *help_text =
    "Time\n"
    "  run [TIME]           simulate for a time: 100 (ticks), 100ns, 1.5 us; alone: 100 ticks\n"
    "  run -all             simulate to the end\n"
    "  restart              go back to time 0; what is watched stays\n"
    "  now                  the simulated time\n"
    "Design\n"
    "  find regions PATTERN the regions that match; -r: in all levels below, too\n"
    "  find signals PATTERN the signals that match; -r -in -out -inout -internal -ports\n"
    "  examine PATH...      the value of signals; -hex and its like, or -radix hex\n"
    "  radix [NAME]         how examine shows vectors when it is not told: symbolic, binary, "
    "octal,\n"
    "                       hexadecimal, unsigned, decimal\n"
    "  environment [PATH]   the region in which paths without a leading / start; env for short\n"
    "Scripts\n"
    "  do FILE [ARG]...     run a script; it finds its arguments in $1, $2, ...\n"
    "  echo WORD...         print words\n"
    "  transcript file NAME write the transcript to a file; transcript on, transcript off\n"
    "  quit [-f] [-code N]  end the program\n"
    "  help                 this list\n"
    "All of Tcl; and the commands of the plug-in";

int help(ClientData data, Tcl_Interp *, int, Tcl_Obj *const[]) {
    const Simulation &simulation = shell_of(data).simulation();
    std::string text = help_text;
    for (const Command &command : simulation.session.commands()) {
        text += "\n  " + command.name;
    }
    shell_of(data).flush();
    simulation.transcript.print(text);
    return TCL_OK;
}

}  // namespace

void add_script_commands(Tcl_Interp *interp, Shell &shell) {
    Tcl_NRCreateCommand(interp, "do", do_script, start_do, &shell, nullptr);
    Tcl_CreateObjCommand(interp, "echo", echo, &shell, nullptr);
    Tcl_CreateObjCommand(interp, "transcript", transcript, &shell, nullptr);
    Tcl_CreateObjCommand(interp, "quit", quit, &shell, nullptr);
    Tcl_CreateObjCommand(interp, "exit", exit_as_quit, &shell, nullptr);
    Tcl_CreateObjCommand(interp, "help", help, &shell, nullptr);
}

}  // namespace wf
