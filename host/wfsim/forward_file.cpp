// SPDX-License-Identifier: Apache-2.0
// The listing has a line for each entry, "OBJECT:   NAME", the entries of one object together.
#include "host/wfsim/forward_file.h"

#include <filesystem>
#include <utility>

#include "host/fli/session.h"
#include "host/shell/message_watch.h"
#include "host/shell/plugin_command.h"

namespace wf {

ForwardFile::ForwardFile(const Simulation &simulation, std::string path, std::string testbench)
    : simulation_(simulation), path_(std::move(path)), testbench_(std::move(testbench)) {
    if (!path_.empty()) {
        simulation_.watch.hide([this](std::string_view message) { return see(message); });
    }
}

ForwardFile::~ForwardFile() {
    simulation_.watch.hide({});
}

// A plug-in without levels shows what it shows.
void ForwardFile::set_level(const char *level) const {
    const std::string name = "toggle_debug_level";
    simulation_.session.run_command(name, name + " " + level);
}

bool ForwardFile::read(std::string *error) {
    if (path_.empty()) {
        return true;
    }
    std::error_code ignored;
    const bool is_folder = std::filesystem::is_directory(path_, ignored);
    if (is_folder || std::filesystem::is_empty(path_, ignored)) {
        *error = path_ + ": expected a forward SAIF file, got " +
                 (is_folder ? "a folder" : "an empty file");
        return false;
    }
    set_level("2");
    const bool done = run_plugin_command(simulation_, "read_rtl_saif",
                                         "read_rtl_saif " + path_ + " " + testbench_);
    set_level("0");
    *error = fault();
    return done && error->empty();
}

std::string ForwardFile::fault() const {
    if (damaged_) {
        // The plug-in's words end in the number of the line.
        const std::string &words = simulation_.watch.first_error();
        return path_ + ":" + words.substr(words.rfind(' ') + 1) +
               ": expected a forward SAIF file, got a syntax error";
    }
    return stray_.empty() ? ""
                          : path_ + ": expected top as the outermost instance, got " + stray_ +
                                "; its objects would not be found or lose their names";
}

bool ForwardFile::has_matched() const {
    return !listed_ || skipped_ < objects_;
}

// Whether the message is not to be shown.
bool ForwardFile::see(std::string_view message) {
    if (message.starts_with("Warning (KLVA-PWR): could not find signal ") ||
        message.starts_with("Warning (KLVA-PWR): Signal ")) {
        ++skipped_;
        return false;
    }
    if (message.starts_with("Syntax error")) {
        damaged_ = true;
        return true;
    }
    return message.starts_with("Setting debug level") || see_listing(message);
}

bool ForwardFile::see_listing(std::string_view message) {
    if (message.starts_with("-------- addpath:")) {
        listed_ = true;
        return true;
    }
    const size_t end = message.find(":   ");
    if (!listed_ || end == std::string_view::npos) {
        return false;
    }
    if (message.substr(0, end) != last_object_) {
        last_object_ = message.substr(0, end);
        ++objects_;
        if (stray_.empty() && !message.starts_with("top/")) {
            stray_ = message.substr(0, message.find('/'));
        }
    }
    return true;
}

}  // namespace wf
