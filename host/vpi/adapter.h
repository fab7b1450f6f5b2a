// SPDX-License-Identifier: Apache-2.0
// A simulator of our own inside another one: design, kernel, session and shell, put together when
// the simulator loads its modules and taken apart when the simulation ends.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/design/design.h"
#include "host/fli/session.h"
#include "host/kernel/kernel.h"
#include "host/shell/message_watch.h"
#include "host/shell/shell.h"
#include "host/shell/transcript.h"
#include "host/shell/used_files.h"
#include "host/source/vpi/source.h"
#include "host/vpi/arguments.h"
#include "host/vpi/script_clock.h"

namespace wf {

// Order of calls: prepare while the simulator loads its modules, begin at the start of the
// simulation, then the simulator calls back; finish at its end.
class Adapter {
  public:
    Adapter();
    Adapter(const Adapter &) = delete;
    Adapter &operator=(const Adapter &) = delete;

    // Loads the plug-ins and offers their commands as system tasks that call `task`. Empty, or what
    // is wrong.
    std::string prepare(const Arguments &arguments, const std::string &folder,
                        void (*task)(const std::string &line));
    // Reads the design. Empty, or what is wrong.
    std::string read_design();
    // Runs the script's first part; time 0 has settled.
    void start_script();
    // Takes the command of a system task, which runs when the present time step has settled, after
    // those taken before it: commands belong between time steps. True: `tasks_settled` is to be
    // called then.
    bool take_task(const std::string &line);
    // Runs the commands taken so far.
    void run_tasks();
    // What is left of the script, then the end of the plug-ins.
    void finish();

    // The exit status that was asked for: 0, 1 after an error, or quit's.
    int status() const { return status_; }
    // Whether standard output has refused text.
    bool screen_failed() const { return transcript_.screen_failed(); }

  private:
    std::string load_plugins(const Arguments &arguments, const std::string &folder);
    Simulation simulation() { return {session_, clock_, transcript_, watch_, files_, strict_}; }
    void resume_script();
    void run_part(const std::string &commands);
    void catch_signals();
    void end_simulation();

    Transcript transcript_;
    MessageWatch watch_;
    UsedFiles files_;
    Design design_;
    vpi::Simulator simulator_;
    Kernel kernel_;
    ScriptClock clock_;
    Session session_;
    std::optional<Shell> shell_;
    std::vector<std::string> tasks_;  // commands of system tasks that wait for the step's end
    std::string script_;
    uint64_t memory_limit_ = 0;
    bool strict_ = false;
    int status_ = 0;
    bool script_started_ = false;
    bool ended_ = false;
};

}  // namespace wf
