// SPDX-License-Identifier: Apache-2.0
// The part of the simulators' procedural interface (VPI, IEEE 1364 and 1800) that is used here, in
// the standard's names and numbers: one module serves every simulator, so none of their own headers
// is taken.
#pragma once

#include <cstdint>

extern "C" {

using PLI_INT32 = int32_t;
using PLI_UINT32 = uint32_t;

using vpiHandle = struct VpiObject *;

// --- objects ---
constexpr PLI_INT32 vpiConstant = 7;
constexpr PLI_INT32 vpiFunction = 20;
constexpr PLI_INT32 vpiIntegerVar = 25;
constexpr PLI_INT32 vpiMemory = 29;
constexpr PLI_INT32 vpiModule = 32;
constexpr PLI_INT32 vpiNamedBegin = 33;
constexpr PLI_INT32 vpiNamedFork = 35;
constexpr PLI_INT32 vpiNet = 36;
constexpr PLI_INT32 vpiParameter = 41;
constexpr PLI_INT32 vpiPort = 44;
constexpr PLI_INT32 vpiRealVar = 47;
constexpr PLI_INT32 vpiReg = 48;
constexpr PLI_INT32 vpiTask = 59;
constexpr PLI_INT32 vpiTimeVar = 63;
constexpr PLI_INT32 vpiGenScope = 134;
constexpr PLI_INT32 vpiPackage = 600;
constexpr PLI_INT32 vpiLongIntVar = 610;
constexpr PLI_INT32 vpiShortIntVar = 611;
constexpr PLI_INT32 vpiIntVar = 612;
constexpr PLI_INT32 vpiByteVar = 614;
constexpr PLI_INT32 vpiBitVar = 620;

// --- relations ---
constexpr PLI_INT32 vpiLeftRange = 79;
constexpr PLI_INT32 vpiRightRange = 83;
constexpr PLI_INT32 vpiSysTfCall = 85;
constexpr PLI_INT32 vpiArgument = 89;
constexpr PLI_INT32 vpiInternalScope = 92;
constexpr PLI_INT32 vpiVariables = 100;

// --- properties ---
constexpr PLI_INT32 vpiType = 1;
constexpr PLI_INT32 vpiName = 2;
constexpr PLI_INT32 vpiSize = 4;
constexpr PLI_INT32 vpiTimePrecision = 12;
constexpr PLI_INT32 vpiVector = 18;
constexpr PLI_INT32 vpiDirection = 20;
constexpr PLI_INT32 vpiInput = 1;
constexpr PLI_INT32 vpiOutput = 2;
constexpr PLI_INT32 vpiInout = 3;
constexpr PLI_INT32 vpiConstType = 40;
constexpr PLI_INT32 vpiRealConst = 2;
constexpr PLI_INT32 vpiStringConst = 6;

// --- values ---
constexpr PLI_INT32 vpiBinStrVal = 1;
constexpr PLI_INT32 vpiDecStrVal = 3;
constexpr PLI_INT32 vpiScalarVal = 5;
constexpr PLI_INT32 vpiIntVal = 6;
constexpr PLI_INT32 vpiRealVal = 7;
constexpr PLI_INT32 vpiStringVal = 8;
constexpr PLI_INT32 vpiVectorVal = 9;
constexpr PLI_INT32 vpiObjTypeVal = 12;
constexpr PLI_INT32 vpiSuppressVal = 13;

// 32 bits of a vector, the rightmost first; (aval, bval) 00: 0, 10: 1, 01: Z, 11: X.
struct s_vpi_vecval {
    PLI_UINT32 aval;
    PLI_UINT32 bval;
};

constexpr PLI_INT32 vpiSimTime = 2;
constexpr PLI_INT32 vpiSuppressTime = 3;

struct s_vpi_time {
    PLI_INT32 type;
    PLI_UINT32 high;
    PLI_UINT32 low;
    double real;
};

struct s_vpi_value {
    PLI_INT32 format;
    union {
        char *str;
        PLI_INT32 scalar;
        PLI_INT32 integer;
        double real;
        s_vpi_time *time;
        s_vpi_vecval *vector;
    } value;
};

// --- callbacks ---
constexpr PLI_INT32 cbValueChange = 1;
constexpr PLI_INT32 cbReadWriteSynch = 6;
constexpr PLI_INT32 cbReadOnlySynch = 7;
constexpr PLI_INT32 cbNextSimTime = 8;
constexpr PLI_INT32 cbAfterDelay = 9;
constexpr PLI_INT32 cbStartOfSimulation = 11;
constexpr PLI_INT32 cbEndOfSimulation = 12;

struct s_cb_data {
    PLI_INT32 reason;
    PLI_INT32 (*cb_rtn)(s_cb_data *);
    vpiHandle obj;
    s_vpi_time *time;
    s_vpi_value *value;
    PLI_INT32 index;
    char *user_data;
};

// --- system tasks ---
constexpr PLI_INT32 vpiSysTask = 1;

struct s_vpi_systf_data {
    PLI_INT32 type;
    PLI_INT32 sysfunctype;
    const char *tfname;
    PLI_INT32 (*calltf)(char *);
    PLI_INT32 (*compiletf)(char *);
    PLI_INT32 (*sizetf)(char *);
    char *user_data;
};

// --- the simulator ---
constexpr PLI_INT32 vpiFinish = 67;

struct s_vpi_vlog_info {
    PLI_INT32 argc;
    char **argv;
    char *product;
    char *version;
};

// The texts that vpi_get_str and vpi_get_value answer last until the next call of either.
PLI_INT32 vpi_get(PLI_INT32 property, vpiHandle object);
char *vpi_get_str(PLI_INT32 property, vpiHandle object);
vpiHandle vpi_handle(PLI_INT32 relation, vpiHandle object);
vpiHandle vpi_handle_by_index(vpiHandle object, PLI_INT32 index);
vpiHandle vpi_iterate(PLI_INT32 relation, vpiHandle object);
vpiHandle vpi_scan(vpiHandle iterator);
PLI_INT32 vpi_free_object(vpiHandle object);
void vpi_get_value(vpiHandle object, s_vpi_value *value);
void vpi_get_time(vpiHandle object, s_vpi_time *time);
vpiHandle vpi_register_cb(s_cb_data *data);
PLI_INT32 vpi_remove_cb(vpiHandle callback);
vpiHandle vpi_register_systf(const s_vpi_systf_data *data);
PLI_INT32 vpi_get_vlog_info(s_vpi_vlog_info *info);
PLI_INT32 vpi_control(PLI_INT32 operation, ...);

}  // extern "C"
