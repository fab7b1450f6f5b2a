// SPDX-License-Identifier: Apache-2.0
// The parts of the module, in the order in which the simulation needs them.
#include "host/vpi/adapter.h"

#include <tcl.h>

#include <utility>

#include "host/fli/plugins.h"
#include "host/shell/plugin_command.h"
#include "host/source/vpi/access.h"
#include "host/vpi/system_tasks.h"

namespace wf {
namespace {

constexpr int exit_error = 1;

// The script as a coroutine of this name. Empty for none.
constexpr const char *coroutine = "wattforge_script";

PLI_INT32 finish_simulation(s_cb_data *) {
    vpi_control(vpiFinish, 0);
    return 0;
}

std::string command_line(std::vector<const char *> words) {
    char *list = Tcl_Merge(static_cast<int>(words.size()), words.data());
    std::string line = list;
    Tcl_Free(list);
    return line;
}

}  // namespace

Adapter::Adapter()
    : transcript_(stdout),
      watch_(transcript_),
      kernel_(design_),
      clock_(kernel_, design_.resolution_exponent, [this] { resume_script(); }),
      session_(design_, kernel_, watch_) {
}

std::string Adapter::prepare(const Arguments &arguments, const std::string &folder,
                             void (*task)(const std::string &line)) {
    script_ = arguments.script;
    memory_limit_ = arguments.memory_limit;
    strict_ = arguments.strict;
    if (arguments.trace) {
        session_.trace_to_console();
    }
    std::string error = load_plugins(arguments, folder);
    if (error.empty() && simulator_.traits().offers_system_tasks) {
        for (const Command &command : session_.commands()) {
            add_system_task(command.name, task);
        }
    }
    return error;
}

std::string Adapter::load_plugins(const Arguments &arguments, const std::string &folder) {
    std::vector<Plugin> plugins;
    std::string error = choose_plugins(
        arguments.foreign,
        {.name = "+wf_foreign", .separator = ':', .folders = {folder, WATTFORGE_LIBDIR}}, &plugins);
    for (size_t i = 0; error.empty() && i < plugins.size(); ++i) {
        error = session_.load_plugin(plugins[i].function, plugins[i].library);
    }
    return error;
}

std::string Adapter::read_design() {
    std::string error = simulator_.load(design_, memory_limit_);
    kernel_.sync();
    simulator_.attach(kernel_);
    for (const std::string &note : simulator_.notes()) {
        transcript_.print(note);
    }
    return error;
}

void Adapter::start_script() {
    run_tasks();
    script_started_ = true;
    if (script_.empty()) {
        return;
    }
    shell_.emplace(simulation());
    run_part(command_line({"coroutine", coroutine, "do", script_.c_str()}));
}

void Adapter::resume_script() {
    run_tasks();
    clock_.stop_waiting();
    run_part(coroutine);
}

void Adapter::run_part(const std::string &commands) {
    switch (shell_->run_text(commands, {})) {
        case ScriptEnd::done:
            return;
        case ScriptEnd::quit:
            end_simulation(shell_->quit_code());
            return;
        case ScriptEnd::failed:
        case ScriptEnd::interrupted:
            end_simulation(exit_error);
            return;
    }
}

bool Adapter::take_task(const std::string &line) {
    tasks_.push_back(line);
    return tasks_.size() == 1;
}

void Adapter::run_tasks() {
    simulator_.settle();
    for (const std::string &line : std::exchange(tasks_, {})) {
        if (!run_plugin_command(simulation(), line.substr(0, line.find(' ')), line) && strict_) {
            end_simulation(exit_error);
            return;
        }
    }
}

void Adapter::end_simulation(int status) {
    clock_.stop_waiting();
    status_ = status;
    if (!ended_ && simulator_.traits().finishes_anywhere) {
        vpi_control(vpiFinish, 0);
    } else if (!ended_) {
        vpi::call_back(cbAfterDelay, finish_simulation);
    }
}

void Adapter::finish() {
    ended_ = true;
    clock_.end();
    run_tasks();
    if (!script_started_) {
        start_script();
    } else if (clock_.is_waiting()) {
        resume_script();
    }
    shell_.reset();
    watch_.tell_open_window();
    session_.quit();
    status_ = watch_.conclude(status_, /*aloud=*/true);
}

}  // namespace wf
