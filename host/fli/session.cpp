// SPDX-License-Identifier: Apache-2.0
// The process's simulator: commands, quit callbacks, complaints and the trace switch.
#include "host/fli/session.h"

#include <dlfcn.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "host/fli/library.h"

namespace wf {

Session::Session(Design &the_design, Kernel &the_kernel, Console &the_console)
    : design(the_design), kernel(the_kernel), console(the_console) {
    if (current_ != nullptr) {
        throw std::logic_error("a process has one simulator at a time");
    }
    current_ = this;
}

Session::~Session() {
    quit();
    trace_off();
    current_ = nullptr;
    byte_values_.close();
    std::for_each(libraries_.rbegin(), libraries_.rend(), dlclose);
}

std::string Session::load_plugin(const std::string &function, const std::string &library) {
    const OpenedLibrary opened = open_library(library, function);
    if (opened.handle == nullptr) {
        return opened.error;
    }
    libraries_.push_back(opened.handle);
    start_plugin(reinterpret_cast<InitFunction>(opened.function));
    return {};
}

void Session::start_plugin(InitFunction init) {
    init(nullptr, nullptr, nullptr, nullptr);
}

void Session::add_command(std::string_view name, mtiVoidFuncPtrT function) {
    const auto known =
        std::find_if(commands_.begin(), commands_.end(),
                     [name](const Command &command) { return command.name == name; });
    if (known != commands_.end()) {
        known->function = function;
        return;
    }
    commands_.push_back({std::string(name), function});
    if (listener_) {
        listener_(commands_.back());
    }
}

bool Session::run_command(std::string_view name, std::string_view line) {
    const auto known =
        std::find_if(commands_.begin(), commands_.end(),
                     [name](const Command &command) { return command.name == name; });
    if (known == commands_.end()) {
        return false;
    }
    // The plug-in gets a copy of its own: it may cut the line up.
    std::string copy(line);
    if (trace.is_on()) [[unlikely]] {
        trace.line("command {%s} at %lld", copy.c_str(), static_cast<long long>(kernel.now()));
    }
    known->function(copy.data());
    return true;
}

void Session::on_command(std::function<void(const Command &)> listener) {
    listener_ = std::move(listener);
    if (listener_) {
        std::for_each(commands_.begin(), commands_.end(), listener_);
    }
}

void Session::on_sensitize(std::function<void(const Signal &)> listener) {
    sensitize_listener_ = std::move(listener);
}

void Session::add_quit_callback(mtiVoidFuncPtrT function, void *parameter) {
    quit_callbacks_.push_back({function, parameter});
}

void Session::quit() {
    if (std::exchange(has_quit_, true)) {
        return;
    }
    // By number: a callback may register another one.
    for (size_t i = 0; i < quit_callbacks_.size(); ++i) {
        if (trace.is_on()) [[unlikely]] {
            trace.line("quit callback (%p)", quit_callbacks_[i].parameter);
        }
        quit_callbacks_[i].function(quit_callbacks_[i].parameter);
    }
    if (trace.is_on() && ledger.outstanding() != 0) [[unlikely]] {
        trace.line("%zu blocks were not released with mti_VsimFree", ledger.outstanding());
    }
    ledger.release_all();
}

void Session::complain(const char *function, std::string_view what) {
    console.complain("** Error: " + std::string(function) + ": " + std::string(what));
}

void Session::open_byte_values(const void *signal) {
    if (!trace.is_on()) {
        byte_values_.open(design.signals_around(signal), kernel);
    }
}

void Session::trace_off() {
    trace.off();
    kernel.trace_wakes(nullptr, nullptr);
}

void Session::trace_to_console() {
    byte_values_.close();
    trace.to(console);
    kernel.trace_wakes(trace_wake, this);
}

void Session::trace_to_file(std::FILE *file) {
    byte_values_.close();
    trace.to(file);
    kernel.trace_wakes(trace_wake, this);
}

void Session::trace_wake(void *session, const Process &process) {
    auto &self = *static_cast<Session *>(session);
    self.trace.line("process %s(%p) wakes at %lld", self.kernel.name_of(process).c_str(),
                    process.parameter, static_cast<long long>(self.kernel.now()));
}

}  // namespace wf
