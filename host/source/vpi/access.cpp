// SPDX-License-Identifier: Apache-2.0
// The simulators' calls, with what their records want.
#include "host/source/vpi/access.h"

namespace wf::vpi {

std::string text_of(PLI_INT32 property, vpiHandle object) {
    const char *text = vpi_get_str(property, object);
    return text == nullptr ? "" : text;
}

int32_t integer_of(vpiHandle object) {
    s_vpi_value value{.format = vpiIntVal, .value = {.integer = 0}};
    vpi_get_value(object, &value);
    return value.value.integer;
}

bool range_of(vpiHandle object, int32_t *left, int32_t *right) {
    vpiHandle first = vpi_handle(vpiLeftRange, object);
    vpiHandle last = first == nullptr ? nullptr : vpi_handle(vpiRightRange, object);
    if (last == nullptr) {
        return false;
    }
    *left = integer_of(first);
    *right = integer_of(last);
    return true;
}

std::string product() {
    s_vpi_vlog_info info{};
    vpi_get_vlog_info(&info);
    return info.product == nullptr ? "" : info.product;
}

Ticks time_now() {
    s_vpi_time time{.type = vpiSimTime, .high = 0, .low = 0, .real = 0};
    vpi_get_time(nullptr, &time);
    return static_cast<Ticks>(uint64_t{time.high} << 32 | time.low);
}

s_vpi_time time_record(Ticks time) {
    const auto ticks = static_cast<uint64_t>(time);
    return {.type = vpiSimTime,
            .high = static_cast<PLI_UINT32>(ticks >> 32),
            .low = static_cast<PLI_UINT32>(ticks),
            .real = 0};
}

vpiHandle call_back(PLI_INT32 reason, Callback function, Ticks delay, void *data) {
    // Icarus Verilog keeps the pointer of the request for the end of the simulation, and writes the
    // time through it when that has come.
    static s_vpi_time time;
    time = time_record(delay);
    s_cb_data request{};
    request.reason = reason;
    request.cb_rtn = function;
    request.time = &time;
    request.user_data = static_cast<char *>(data);
    return vpi_register_cb(&request);
}

// GHDL does not advance the time after a read-only synchronisation. Its read-write one comes after
// the last delta cycle just as well, and nothing is written there.
vpiHandle call_back_when_settled(Callback function, void *data) {
    static const PLI_INT32 reason = product() == "GHDL" ? cbReadWriteSynch : cbReadOnlySynch;
    return call_back(reason, function, 0, data);
}

}  // namespace wf::vpi
