// SPDX-License-Identifier: Apache-2.0
// Interface functions: processes and time.
#include <mti.h>

#include "host/fli/call.h"

using wf::Call;
using wf::Priority;
using wf::Process;

namespace {

// Anything that is no priority of the interface is refused.
bool to_priority(mtiProcessPriorityT code, Priority *priority) {
    switch (code) {
        case MTI_PROC_NORMAL:
            *priority = Priority::normal;
            return true;
        case MTI_PROC_IMMEDIATE:
            *priority = Priority::immediate;
            return true;
        case MTI_PROC_POSTPONED:
            *priority = Priority::postponed;
            return true;
    }
    return false;
}

mtiProcessIdT create(const Call &call, const char *name, mtiVoidFuncPtrT function, void *parameter,
                     mtiProcessPriorityT priority_code) {
    if (!call) {
        return nullptr;
    }
    if (function == nullptr) {
        call.complain("null function");
        return nullptr;
    }
    Priority priority{};
    if (!to_priority(priority_code, &priority)) {
        call.complain("there is no priority " + std::to_string(priority_code));
        return nullptr;
    }
    Process *process =
        call->kernel.create_process(name == nullptr ? "" : name, function, parameter, priority);
    if (process == nullptr) {
        call.complain("too many processes");
    } else if (call.traced()) [[unlikely]] {
        call.trace("(%s, %p, %d) = %p", name == nullptr ? "null" : name, parameter,
                   static_cast<int>(priority_code), static_cast<void *>(process));
    }
    return wf::to_handle(process);
}

}  // namespace

extern "C" {

mtiProcessIdT mti_CreateProcess(char *name, mtiVoidFuncPtrT function, void *parameter) {
    return create(Call("mti_CreateProcess"), name, function, parameter, MTI_PROC_NORMAL);
}

mtiProcessIdT mti_CreateProcessWithPriority(char *name, mtiVoidFuncPtrT function, void *parameter,
                                            mtiProcessPriorityT priority) {
    return create(Call("mti_CreateProcessWithPriority"), name, function, parameter, priority);
}

void mti_Sensitize(mtiProcessIdT process_handle, mtiSignalIdT signal_handle,
                   mtiProcessTriggerT trigger) {
    const Call call("mti_Sensitize");
    Process *process = call.process(process_handle);
    const wf::Signal *signal = process == nullptr ? nullptr : call.signal(signal_handle);
    if (signal == nullptr) {
        return;
    }
    if (trigger != MTI_EVENT && trigger != MTI_ACTIVE) {
        call.complain("there is no trigger " + std::to_string(trigger));
        return;
    }
    if (call.traced()) [[unlikely]] {
        call.trace("(%p, %s, %d)", static_cast<void *>(process), call.name(signal).c_str(),
                   static_cast<int>(trigger));
    }
    call->kernel.sensitize(process, *signal,
                           trigger == MTI_EVENT ? wf::Trigger::event : wf::Trigger::active);
    call->tell_sensitized(*signal);
}

mtiTime64T *mti_NowIndirect(mtiTime64T *buf) {
    const Call call("mti_NowIndirect");
    if (!call) {
        return nullptr;
    }
    const wf::Ticks now = call->kernel.now();
    if (call.traced()) [[unlikely]] {
        call.trace("(%s) = %lld", buf == nullptr ? "null" : "buffer", static_cast<long long>(now));
    }
    if (buf == nullptr) {
        buf = static_cast<mtiTime64T *>(call->ledger.allocate(sizeof *buf));
    }
    MTI_TIME64_ASGN(*buf, static_cast<mtiInt32T>(now >> 32), static_cast<mtiUInt32T>(now));
    return buf;
}

int mti_GetResolutionLimit(void) {
    const Call call("mti_GetResolutionLimit");
    if (!call) {
        return 0;
    }
    if (call.traced()) [[unlikely]] {
        call.trace("() = %d", call->design.resolution_exponent);
    }
    return call->design.resolution_exponent;
}

}  // extern "C"
