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
    quit,  // the quit command: quit_code() is the exit status that it asked for
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

    // For the quit command: ends whatever script is running, past every catch.
    void request_quit(int code);
    int quit_code() const { return quit_code_; }

    // The radix in which examine shows vectors when it is told none.
    Radix default_radix() const { return default_radix_; }
    void set_default_radix(Radix radix) { default_radix_ = radix; }

    const Simulation &simulation() const { return simulation_; }
    RunNotes &run_notes() { return run_notes_; }

  private:
    void add_plugin_command(const std::string &name);
    ScriptEnd conclude(int tcl_code, std::string_view origin, int first_line);
    void tell_error(std::string_view origin, int first_line);

    Simulation simulation_;
    RunNotes run_notes_;
    TranscriptChannels channels_;
    Tcl_Interp *interp_;
    Tcl_AsyncHandler interrupt_handler_;
    Radix default_radix_ = Radix::symbolic;
    bool quit_requested_ = false;
    int quit_code_ = 0;
};

}  // namespace wf

#endif
