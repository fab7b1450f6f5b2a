// SPDX-License-Identifier: Apache-2.0
// Checking the arguments of interface functions, and tracing their calls.
#include "host/fli/call.h"

#include <cstdarg>
#include <cstdio>

namespace wf {

void Call::complain_alone() const {
    std::fprintf(stderr, "** Error: %s: there is no simulator\n", function_);
}

void Call::reject(const void *handle, const char *what) const {
    char text[80];
    if (handle == nullptr) {
        std::snprintf(text, sizeof text, "null %s handle", what);
    } else {
        std::snprintf(text, sizeof text, "%p is not a %s handle", handle, what);
    }
    session_->complain(function_, text);
}

Region *Call::region(const void *handle) const {
    if (session_ == nullptr) {
        return nullptr;
    }
    if (!session_->design.is_region(handle)) [[unlikely]] {
        reject(handle, "region");
        return nullptr;
    }
    return static_cast<Region *>(const_cast<void *>(handle));
}

const Type *Call::type(mtiTypeIdT handle) const {
    if (session_ == nullptr) {
        return nullptr;
    }
    if (!session_->design.is_type(handle)) [[unlikely]] {
        reject(handle, "type");
        return nullptr;
    }
    return reinterpret_cast<const Type *>(handle);
}

Process *Call::process(mtiProcessIdT handle) const {
    if (session_ == nullptr) {
        return nullptr;
    }
    if (!session_->kernel.is_process(handle)) [[unlikely]] {
        reject(handle, "process");
        return nullptr;
    }
    return reinterpret_cast<Process *>(handle);
}

const char *Call::text(const char *argument, const char *what) const {
    if (session_ != nullptr && argument == nullptr) [[unlikely]] {
        session_->complain(function_, std::string("null ") + what);
    }
    return session_ == nullptr ? nullptr : argument;
}

void Call::trace(const char *format, ...) const {
    va_list arguments;
    va_start(arguments, format);
    char text[4096];
    // The analyser loses sight of a list that has been started, when it reads several files.
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    session_->trace.line("%s%s", function_, text);
}

std::string Call::name(const Region *region) const {
    return region == nullptr ? "null" : session_->design.full_name(region);
}

std::string Call::name(const Signal *signal) const {
    return signal == nullptr ? "null" : session_->design.full_name(signal);
}

}  // namespace wf
