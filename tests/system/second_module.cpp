// SPDX-License-Identifier: Apache-2.0
// Another module beside the recorder, as test frameworks are one: it has callbacks of its own at
// the start, at every change of the top module's variables and at the end, and a system task.
// It compiles into a program too, a simulator that the recorder does not know (UNKNOWN_SIMULATOR).
#include <cstdio>

#include "host/source/vpi/interface.h"

#ifdef UNKNOWN_SIMULATOR

#include <dlfcn.h>

// A module finds all of the interface here, though only the first function answers.
extern "C" {
PLI_INT32 vpi_get_vlog_info(s_vpi_vlog_info *info) {
    static char name[] = "Other Simulator";
    info->product = name;
    return 1;
}
PLI_INT32 vpi_get(PLI_INT32, vpiHandle) {
    return 0;
}
char *vpi_get_str(PLI_INT32, vpiHandle) {
    return nullptr;
}
vpiHandle vpi_handle(PLI_INT32, vpiHandle) {
    return nullptr;
}
vpiHandle vpi_handle_by_index(vpiHandle, PLI_INT32) {
    return nullptr;
}
vpiHandle vpi_iterate(PLI_INT32, vpiHandle) {
    return nullptr;
}
vpiHandle vpi_scan(vpiHandle) {
    return nullptr;
}
PLI_INT32 vpi_free_object(vpiHandle) {
    return 0;
}
void vpi_get_value(vpiHandle, s_vpi_value *) {
}
void vpi_get_time(vpiHandle, s_vpi_time *) {
}
vpiHandle vpi_register_cb(s_cb_data *) {
    return nullptr;
}
PLI_INT32 vpi_remove_cb(vpiHandle) {
    return 0;
}
vpiHandle vpi_register_systf(const s_vpi_systf_data *) {
    return nullptr;
}
PLI_INT32 vpi_control(PLI_INT32, ...) {
    return 0;
}
}

int main(int, char **words) {
    void *module = dlopen(words[1], RTLD_NOW);
    if (module == nullptr) {
        std::puts(dlerror());
        return 99;
    }
    (*static_cast<void (**)()>(dlsym(module, "vlog_startup_routines")))();
    return 0;
}

#else

namespace {

int changes = 0;

vpiHandle register_at(PLI_INT32 reason, PLI_INT32 (*function)(s_cb_data *), vpiHandle object) {
    static s_vpi_time time{.type = vpiSuppressTime, .high = 0, .low = 0, .real = 0};
    static s_vpi_value value{.format = vpiIntVal, .value = {.integer = 0}};
    s_cb_data request{};
    request.reason = reason;
    request.cb_rtn = function;
    request.obj = object;
    request.time = &time;
    request.value = &value;
    return vpi_register_cb(&request);
}

PLI_INT32 changed(s_cb_data *) {
    return ++changes, 0;
}

PLI_INT32 starts(s_cb_data *) {
    vpiHandle variables = vpi_iterate(vpiReg, vpi_scan(vpi_iterate(vpiModule, nullptr)));
    while (vpiHandle variable = vpi_scan(variables)) {
        register_at(cbValueChange, changed, variable);
    }
    return 0;
}

PLI_INT32 ends(s_cb_data *) {
    std::printf("second module: %d changes\n", changes);
    return 0;
}

PLI_INT32 nothing(char *) {
    return 0;
}

void start() {
    static const s_vpi_systf_data task{vpiSysTask, 0,       "$second", nothing,
                                       nullptr,    nullptr, nullptr};
    vpi_register_systf(&task);
    register_at(cbStartOfSimulation, starts, nullptr);
    register_at(cbEndOfSimulation, ends, nullptr);
}

}  // namespace

extern "C" {
extern void (*vlog_startup_routines[])();
void (*vlog_startup_routines[])() = {start, nullptr};
}

#endif
