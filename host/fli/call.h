// SPDX-License-Identifier: Apache-2.0
// What every function of the interface does with its arguments: turns handles into records, and
// complains, with its own name, about those that are none.
#pragma once

#include <acc_user.h>
#include <mti.h>

#include <string>

#include "host/fli/session.h"

namespace wf {

inline mtiRegionIdT to_handle(Region *region) {
    return reinterpret_cast<mtiRegionIdT>(region);
}
inline mtiSignalIdT to_handle(Signal *signal) {
    return reinterpret_cast<mtiSignalIdT>(signal);
}
inline mtiProcessIdT to_handle(Process *process) {
    return reinterpret_cast<mtiProcessIdT>(process);
}
inline mtiTypeIdT to_handle(const Type *type) {
    return reinterpret_cast<mtiTypeIdT>(const_cast<Type *>(type));
}

// One call of an interface function.
class Call {
  public:
    // `function` is the function's name; it must be a literal.
    explicit Call(const char *function) : function_(function), session_(Session::current()) {
        if (session_ == nullptr) [[unlikely]] {
            complain_alone();
        }
    }

    // Whether there is a simulator; without one the constructor has complained on standard error,
    // and the function answers 0.
    explicit operator bool() const { return session_ != nullptr; }
    Session *operator->() const { return session_; }

    // The record behind a handle. Null after a complaint, or when there is no simulator.
    Region *region(const void *handle) const;
    Signal *signal(mtiSignalIdT handle) const {
        if (session_ == nullptr) [[unlikely]] {
            return nullptr;
        }
        if (!session_->design.is_signal(handle)) [[unlikely]] {
            reject(handle, "signal");
            return nullptr;
        }
        return reinterpret_cast<Signal *>(handle);
    }
    const Type *type(mtiTypeIdT handle) const;
    Process *process(mtiProcessIdT handle) const;
    // A text argument that must not be null; null after a complaint.
    const char *text(const char *argument, const char *what) const;
    void complain(const std::string &what) const { session_->complain(function_, what); }

    bool traced() const { return session_->trace.is_on(); }
    // One line of the trace: the function's name, then printf's format and arguments, which begin
    // with the arguments in parentheses. Only when traced().
    void trace(const char *format, ...) const __attribute__((format(printf, 2, 3)));
    // Names for the trace; "null" for none.
    std::string name(const Region *region) const;
    std::string name(const Signal *signal) const;

  private:
    void complain_alone() const;
    void reject(const void *handle, const char *what) const;

    const char *function_;
    Session *session_;
};

}  // namespace wf
