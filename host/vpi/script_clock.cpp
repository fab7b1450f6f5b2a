// SPDX-License-Identifier: Apache-2.0
// A run's end takes two callbacks: one at the beginning of its last time step, from which the end
// of that step can be asked for.
#include "host/vpi/script_clock.h"

#include "host/source/vpi/access.h"

namespace wf {

RunEnd ScriptClock::start(Ticks limit) {
    if (ended_) {
        return RunEnd::end_of_data;
    }
    if (limit <= now()) {
        return RunEnd::reached;
    }
    if (limit != run_to_end) {
        vpi::call_back(cbAfterDelay, time_begins, limit - now(), this);
    }
    result_ = RunEnd::reached;
    waiting_ = true;
    return RunEnd::suspended;
}

void ScriptClock::end() {
    ended_ = true;
    result_ = RunEnd::end_of_data;
}

PLI_INT32 ScriptClock::time_begins(s_cb_data *data) {
    vpi::call_back_when_settled(time_settled, data->user_data);
    return 0;
}

PLI_INT32 ScriptClock::time_settled(s_cb_data *data) {
    const auto &clock = *reinterpret_cast<ScriptClock *>(data->user_data);
    if (clock.waiting_) {
        clock.resume_();
    }
    return 0;
}

}  // namespace wf
