// SPDX-License-Identifier: Apache-2.0
// Counts the messages before and behind; knows the commands that name files.
#include "host/shell/plugin_command.h"

#include "host/fli/session.h"
#include "host/shell/message_watch.h"
#include "host/shell/used_files.h"

namespace wf {
namespace {

// The recorder's commands end their words at blanks and commas.
std::string first_argument(const std::string &name, const std::string &line) {
    constexpr const char *separators = " ,";
    const size_t start = line.find_first_not_of(separators, name.size());
    return start == std::string::npos
               ? ""
               : line.substr(start, line.find_first_of(separators, start) - start);
}

// Why the command must not be run.
std::string obstacle(const Simulation &simulation, const std::string &name,
                     const std::string &file) {
    if (name == "read_rtl_saif" && !file.empty()) {
        simulation.files.reads(file, "the forward file");
    }
    if (name != "toggle_report" || file.empty()) {
        return {};
    }
    const std::string text = simulation.files.obstacle(file, report_name);
    return text.empty() ? "" : "toggle_report: " + text;
}

}  // namespace

bool run_plugin_command(const Simulation &simulation, const std::string &name,
                        const std::string &line) {
    MessageWatch &watch = simulation.watch;
    const unsigned errors = watch.errors();
    const unsigned reports = watch.reports();
    const std::string refusal = obstacle(simulation, name, first_argument(name, line));
    if (!refusal.empty()) {
        watch.tell_error(refusal);
    } else if (!simulation.session.run_command(name, line)) {
        watch.tell_error("no plug-in has the command " + name);
    } else if (name == "toggle_report" && watch.errors() == errors && watch.reports() == reports) {
        watch.tell_error("toggle_report: the plug-in did not say that it wrote the report");
    }
    return watch.errors() == errors;
}

}  // namespace wf
