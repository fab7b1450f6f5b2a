// SPDX-License-Identifier: Apache-2.0
// Counts the messages before and behind.
#include "host/shell/plugin_command.h"

#include "host/fli/session.h"
#include "host/shell/message_watch.h"

namespace wf {

bool run_plugin_command(const Simulation &simulation, const std::string &name,
                        const std::string &line) {
    MessageWatch &watch = simulation.watch;
    const unsigned errors = watch.errors();
    const unsigned reports = watch.reports();
    if (!simulation.session.run_command(name, line)) {
        watch.tell_error("no plug-in has the command " + name);
    } else if (name == "toggle_report" && watch.errors() == errors && watch.reports() == reports) {
        watch.tell_error("toggle_report: the plug-in did not say that it wrote the report");
    }
    return watch.errors() == errors;
}

}  // namespace wf
