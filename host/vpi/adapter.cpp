// SPDX-License-Identifier: Apache-2.0
// The parts of the module, in the order in which the simulation needs them.
#include "host/vpi/adapter.h"

#include <tcl.h>

#include <utility>

#include "host/fli/plugins.h"
#include "host/shell/interrupt.h"
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
    if (!script_.empty()) {
        files_.reads(script_, "the script");
    }
    ignore_closed_pipes();
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
    if (!script_.empty()) {
        catch_signals();
    }
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
    catch_signals();  // the simulator may have put its own in their place
    shell_.emplace(simulation());
    run_part(command_line({"coroutine", coroutine, "do", script_.c_str()}));
}

void Adapter::resume_script() {
    run_tasks();
    clock_.stop_waiting();
    run_part(coroutine);
}

void Adapter::run_part(const std::string &commands) {
    const ScriptEnd end = shell_->run_text(commands, {});
    if (end == ScriptEnd::done && clock_.is_waiting()) {
        return;
    }
    release_interrupts();
    clock_.stop_waiting();
    status_ = shell_->exit_status(end);
    // A script that has ended leaves the simulation to go on, unless it was interrupted.
    if (end != ScriptEnd::done || status_ != 0) {
        end_simulation();
    }
}

// From here on a signal ends the script's run and not the process.
void Adapter::catch_signals() {
    catch_interrupts_in_simulator(simulator_.traits().ends_at_interrupts);
    if (!simulator_.traits().ends_at_interrupts) {
        clock_.watch_interrupts();
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
            clock_.stop_waiting();
            status_ = exit_error;
            end_simulation();
            return;
        }
    }
}

void Adapter::end_simulation() {
    if (!ended_ && simulator_.traits().finishes_anywhere) {
        vpi_control(vpiFinish, 0);
    } else if (!ended_) {
        vpi::call_back(cbAfterDelay, finish_simulation);
    }
}

void Adapter::finish() {
    ended_ = true;
    clock_.end(*interrupt_flag() != 0);
    run_tasks();
    if (!script_started_) {
        start_script();
    } else if (clock_.is_waiting()) {
        catch_signals();  // the simulator may have taken its own back
        resume_script();
    }
    shell_.reset();
    watch_.tell_open_window();
    session_.quit();
    status_ = watch_.conclude(status_, /*aloud=*/true);
}

}  // namespace wf
