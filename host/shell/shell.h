// SPDX-License-Identifier: Apache-2.0
// The Tcl interpreter that a run script lives in. It has Tcl's own commands, the shell's
// (commands.h) and those that plug-ins registered.
//
// A host that moves time by itself calls run_file or run_text and is done when they return. A host
// inside a simulator runs the script as a coroutine ("coroutine script do FILE") with run_text, is
// given control back whenever the script waits in `run`, and resumes it with run_text("script").
#ifndef WATTFORGE_HOST_SHELL_SHELL_H
#define WATTFORGE_HOST_SHELL_SHELL_H

#include <tcl.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/shell/radix.h"
#include "host/shell/run_notes.h"
#include "host/shell/simulation.h"
#include "host/shell/tcl_channel.h"

namespace wf {

// How a script or a line came to its end. Errors have been told in the transcript by then.
enum class ScriptEnd {
    done,
    failed,
    interrupted,
    quit,  // the quit command
};

class Shell {
  public:
    // Takes over the session's command listener and the process's interrupt notification: a command
    // that a plug-in registers, now or later, is a Tcl command from then on. A Tcl installation
    // without its script library is told in the transcript; the shell works without it.
    explicit Shell(const Simulation &simulation);
    Shell(const Shell &) = delete;
    Shell &operator=(const Shell &) = delete;
    ~Shell();

    // Runs the script file with $1, $2, ... set to the arguments.
    ScriptEnd run_file(const std::string &path, const std::vector<std::string> &arguments);

    // Runs commands that came from `origin` ("-do", "<stdin>"), where they began in `first_line`.
    ScriptEnd run_text(std::string_view commands, std::string_view origin, int first_line = 1);

    // The last run_text's result, for a prompt to show.
    std::string result() const;

    // Whether the text is whole commands, no brace or quote left open.
    static bool is_complete(const std::string &commands);

    // The names of the commands that start with `prefix`, sorted.
    std::vector<std::string> command_names(std::string_view prefix) const;

    // Hands on text that the script has printed without a newline.
    void flush() { channels_.flush(); }

    // For the quit command: ends whatever script is running, past every catch. Without a status of
    // its own it leaves that to what happened before.
    void request_quit(std::optional<int> code);

    // An interrupt by that signal has been answered. Only the first of a script answers true: the
    // script may go on from the `run` that it ended.
    bool note_interruption(int signal);
    // While the script's coroutine waits in `run`, interrupts are the run's.
    void wait_in_run(bool waits) { waits_in_run_ = waits; }
    // Ends whatever script is running, past every catch, with an error of that text.
    void end_interrupted(const std::string &error);
    // For a prompt: what is typed next is a script of its own.
    void forget_interruption() { interruption_ = 0; }

    // The exit status that a script's end asks for: of the signal that interrupted it, even if it
    // went on, of an error, or quit's own.
    int exit_status(ScriptEnd end) const;

    // The radix in which examine shows vectors when it is told none.
    Radix default_radix() const { return default_radix_; }
    void set_default_radix(Radix radix) { default_radix_ = radix; }

    const Simulation &simulation() const { return simulation_; }
    RunNotes &run_notes() { return run_notes_; }

  private:
    void add_plugin_command(const std::string &name);
    static int answer_interrupt(ClientData data, Tcl_Interp *interp, int code);
    ScriptEnd conclude(int tcl_code, std::string_view origin, int first_line);
    void tell_error(std::string_view origin, int first_line, const std::string &error);

    Simulation simulation_;
    RunNotes run_notes_;
    TranscriptChannels channels_;
    Tcl_Interp *interp_;
    Tcl_AsyncHandler interrupt_handler_;
    Radix default_radix_ = Radix::symbolic;
    bool quit_requested_ = false;
    std::optional<int> quit_code_;
    bool waits_in_run_ = false;
    int interruption_ = 0;           // the signal that interrupted the script last
    std::string interrupted_error_;  // not empty: the script is being ended with it
};

}  // namespace wf

#endif
