// SPDX-License-Identifier: Apache-2.0
// Interface functions: commands, messages, memory and the end of the simulation.
#include <mti.h>

#include "host/fli/call.h"

using wf::Call;

extern "C" {

void mti_AddCommand(char *name, mtiVoidFuncPtrT function) {
    const Call call("mti_AddCommand");
    if (call.text(name, "command name") == nullptr) {
        return;
    }
    if (function == nullptr) {
        call.complain("null function for the command " + std::string(name));
        return;
    }
    if (call.traced()) [[unlikely]] {
        call.trace("(%s)", name);
    }
    call->add_command(name, function);
}

void mti_AddQuitCB(mtiVoidFuncPtrT function, void *parameter) {
    const Call call("mti_AddQuitCB");
    if (!call) {
        return;
    }
    if (function == nullptr) {
        call.complain("null function");
        return;
    }
    if (call.traced()) [[unlikely]] {
        call.trace("(%p)", parameter);
    }
    call->add_quit_callback(function, parameter);
}

void mti_PrintMessage(char *text) {
    const Call call("mti_PrintMessage");
    if (call.text(text, "text") == nullptr) {
        return;
    }
    if (call.traced()) [[unlikely]] {
        call.trace("({%s})", text);
    }
    call->console.print(text);
}

void mti_VsimFree(void *memory) {
    const Call call("mti_VsimFree");
    if (!call || memory == nullptr) {
        return;
    }
    if (call.traced()) [[unlikely]] {
        call.trace("(%p)", memory);
    }
    if (!call->ledger.release(memory)) {
        char text[80];
        std::snprintf(text, sizeof text, "%p is not memory that the simulator gave", memory);
        call.complain(text);
    }
}

}  // extern "C"
