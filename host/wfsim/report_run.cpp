// SPDX-License-Identifier: Apache-2.0
// Everything that can be checked is checked before the replay: an hour of it should not end in a
// misspelt name.
#include "host/wfsim/report_run.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "host/fli/session.h"
#include "host/shell/interrupt.h"
#include "host/shell/plugin_command.h"
#include "host/shell/transcript.h"
#include "host/wfsim/forward_file.h"

namespace wf {
namespace {

// The plug-in splits a command's arguments at these.
bool survives_splitting(const std::string &word) {
    return word.find_first_of(" ,") == std::string::npos;
}

// Those with signals, when there are any: waveforms of VHDL may show packages as modules.
std::vector<std::string> top_modules(Design &design) {
    std::vector<std::string> names;
    std::vector<std::string> with_signals;
    for (const Region *root : design.roots()) {
        if (root->kind != RegionKind::package) {
            names.push_back(design.full_name(root));
            if (Design::holds_signals(root)) {
                with_signals.push_back(names.back());
            }
        }
    }
    return with_signals.empty() ? names : with_signals;
}

std::string joined(const std::vector<std::string> &words) {
    std::string text;
    for (const std::string &word : words) {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

bool lies_within(const Region *region, const Region *outer) {
    while (region != nullptr && region != outer) {
        region = region->parent;
    }
    return region != nullptr;
}

}  // namespace

ReportRun::ReportRun(const Simulation &simulation, const ReportOptions &options)
    : simulation_(simulation),
      options_(options),
      notes_(simulation.control, simulation.transcript) {
}

int ReportRun::execute() {
    if (!settle_arguments()) {
        return status_;
    }
    if (!select_signals() || !open_window()) {
        return status_ == exit_ok ? exit_error : status_;
    }
    return close_window() && write_report() ? status_ : exit_error;
}

bool ReportRun::settle_arguments() {
    status_ = exit_usage;
    if (!settle_names() || !settle_times() || !settle_unit()) {
        return false;
    }
    status_ = exit_error;
    if (!settle_output()) {
        return false;
    }
    status_ = exit_ok;
    return true;
}

bool ReportRun::is_region(const std::string &path) const {
    return simulation_.session.design.find_region(path) != nullptr;
}

bool ReportRun::settle_names() {
    Design &design = simulation_.session.design;
    if (options_.instance.empty()) {
        const std::vector<std::string> tops = top_modules(design);
        if (tops.size() != 1) {
            return tell(tops.empty()
                            ? "the waveform holds no module"
                            : "several modules at the top; choose with -instance: " + joined(tops));
        }
        options_.instance = tops.front();
    }
    if (options_.regions.empty()) {
        options_.regions.push_back(options_.instance);
    }
    for (const std::string &path : {options_.instance, options_.testbench}) {
        if (!path.empty() && !is_region(path)) {
            return tell("no instance " + path + " in the waveform");
        }
    }
    if (!settle_regions()) {
        return false;
    }
    std::vector<std::string> words = options_.regions;
    words.insert(words.end(), {options_.saif, options_.instance, options_.rtl, options_.testbench});
    for (const std::string &word : words) {
        if (!survives_splitting(word)) {
            return tell("\"" + word +
                        "\" has a blank or a comma, where the plug-in's commands end a word");
        }
    }
    return true;
}

// The plug-in passes over a region whose name begins as that of an earlier one does, or the other
// way round: two that lie beside each other, or the wider of two nested ones, would be lost.
bool ReportRun::settle_regions() {
    Design &design = simulation_.session.design;
    std::vector<const Region *> earlier;
    for (const std::string &path : options_.regions) {
        const Region *region = design.find_region(path);
        if (region == nullptr && design.find_signal(path) == nullptr) {
            return tell("no region or signal " + path + " in the waveform");
        }
        if (region == nullptr) {
            continue;
        }
        const std::string name = design.full_name(region);
        const auto rival = std::find_if(earlier.begin(), earlier.end(), [&](const Region *other) {
            const std::string &other_name = design.full_name(other);
            return !lies_within(region, other) &&
                   (name.starts_with(other_name) || other_name.starts_with(name));
        });
        if (rival != earlier.end()) {
            return tell_passed_over(path, design.full_name(*rival));
        }
        earlier.push_back(region);
    }
    return true;
}

bool ReportRun::tell_passed_over(const std::string &path, const std::string &rival) {
    return tell("-region " + path + " would be passed over, as its name and that of " + rival +
                " begin alike; name one region around both");
}

bool ReportRun::settle_times() {
    const auto settle = [this](const std::string &text, Ticks *ticks) {
        if (text.empty()) {
            return true;
        }
        const ParsedTime time = parse_time(text, simulation_.control.resolution_exponent());
        *ticks = time.ticks;
        notes_.tell_rounding(text, time);
        return time.error.empty() || tell(time.error);
    };
    if (!settle(options_.start, &start_) || !settle(options_.stop, &stop_)) {
        return false;
    }
    return start_ < stop_ || tell("-stop " + options_.stop + " is not after the start");
}

bool ReportRun::settle_unit() {
    const int resolution = simulation_.control.resolution_exponent();
    if (options_.unit.empty()) {
        // Durations have six decimals, so that nanoseconds show every finer resolution exactly.
        options_.unit = "1.0e" + std::to_string(resolution > -9 ? resolution : -9);
        return true;
    }
    char *end = nullptr;
    const double unit = std::strtod(options_.unit.c_str(), &end);
    const double exponent = unit > 0 ? std::log10(unit) : 1.0;
    const bool usable = *end == '\0' && exponent <= 0 && exponent >= -15 &&
                        std::abs(exponent - std::round(exponent)) < 1e-9;
    return usable || tell("-unit: expected a power of ten from 1.0e-15 to 1.0 (seconds), got \"" +
                          options_.unit + "\"");
}

bool ReportRun::settle_output() {
    namespace fs = std::filesystem;
    const std::string &path = options_.saif;
    std::error_code error;
    if (fs::is_directory(path, error)) {
        return tell(path + ": cannot write the report: it is a folder");
    }
    const fs::path parent = fs::path(path).parent_path();
    const std::string folder = parent.empty() ? "." : parent.string();
    const bool there = fs::exists(path, error);
    if (access(there ? path.c_str() : folder.c_str(), W_OK) != 0) {
        return tell(path + ": cannot write the report: " + std::strerror(errno));
    }
    return true;
}

bool ReportRun::select_signals() {
    ForwardFile forward(simulation_, options_.rtl, options_.testbench);
    std::string error;
    if (!forward.read(&error)) {
        return error.empty() ? false : tell(error);
    }
    for (const std::string &policy : options_.policies) {
        if (!command("set_net_monitoring_policy", policy)) {
            return false;
        }
    }
    if (!set_region()) {
        return false;
    }
    return forward.has_matched() ||
           tell("no report: the design and the regions have no object of " + options_.rtl);
}

// Fails when the report would have no signal in it.
bool ReportRun::set_region() {
    Session &session = simulation_.session;
    const Region *instance = session.design.find_region(options_.instance);
    bool is_watched = false;
    session.on_sensitize([&](const Signal &signal) {
        is_watched = is_watched || lies_within(session.design.region_of(&signal), instance);
    });
    const bool done = command("set_toggle_region", joined(options_.regions));
    session.on_sensitize({});
    if (!done || is_watched) {
        return done;
    }
    const std::string place = "no report: nothing in " + options_.instance + " is watched";
    if (!options_.rtl.empty()) {
        return tell(place + ", no object of " + options_.rtl + " either");
    }
    return tell(place + (options_.policies.empty()
                             ? "; what is watched lies in " + joined(options_.regions)
                             : " under this policy"));
}

bool ReportRun::open_window() {
    run_until(start_);
    const RunControl &control = simulation_.control;
    if (status_ != exit_ok) {
        return tell("no report: the run ended before the window opened");
    }
    if (control.now() < start_) {
        return tell("no report: the waveform ends at " +
                    format_time(control.now(), control.resolution_exponent()) + ", before -start");
    }
    return command("toggle_start", "");
}

bool ReportRun::close_window() {
    run_until(stop_);
    return command("toggle_stop", "");
}

bool ReportRun::write_report() {
    return command("toggle_report", options_.saif + " " + options_.unit + " " + options_.instance);
}

bool ReportRun::command(const std::string &name, const std::string &arguments) {
    return run_plugin_command(simulation_, name, arguments.empty() ? name : name + " " + arguments);
}

void ReportRun::run_until(Ticks limit) {
    const RunEnd end = simulation_.control.start(limit);
    notes_.tell(end, limit);
    if (end == RunEnd::interrupted) {
        status_ = interrupted_status(take_interrupt());
        simulation_.transcript.print("Note: " + notes_.interruption());
    } else if (end == RunEnd::damaged) {
        status_ = exit_damaged;
    }
}

bool ReportRun::tell(const std::string &error) {
    simulation_.transcript.print("Error: " + error);
    return false;
}

}  // namespace wf
