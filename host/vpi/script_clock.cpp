// SPDX-License-Identifier: Apache-2.0
// A run's end takes two callbacks: one at the beginning of its last time step, from which the end
// of that step can be asked for. What a run that was interrupted has asked for still comes: it is
// told by its time.
#include "host/vpi/script_clock.h"

#include "host/shell/interrupt.h"
#include "host/source/vpi/access.h"

namespace wf {

RunEnd ScriptClock::start(Ticks limit) {
    if (ended_) {
        return *ended_;
    }
    if (termination() != 0) {
        return RunEnd::interrupted;
    }
    if (limit <= now()) {
        return RunEnd::reached;
    }
    if (limit != run_to_end) {
        vpi::call_back(cbAfterDelay, time_begins, limit - now(), this);
    }
    if (watches_interrupts_ && !watching_) {
        watching_ = true;
        vpi::call_back(cbNextSimTime, step_begins, 0, this);
    }
    limit_ = limit;
    waiting_ = true;
    return RunEnd::suspended;
}

void ScriptClock::end(bool interrupted) {
    ended_ = interrupted ? RunEnd::interrupted : RunEnd::end_of_data;
    result_ = *ended_;
}

void ScriptClock::resume(RunEnd result) {
    result_ = result;
    resume_();
}

PLI_INT32 ScriptClock::time_begins(s_cb_data *data) {
    vpi::call_back_when_settled(time_settled, data->user_data);
    return 0;
}

PLI_INT32 ScriptClock::time_settled(s_cb_data *data) {
    auto &clock = *reinterpret_cast<ScriptClock *>(data->user_data);
    if (clock.waiting_ && vpi::time_now() >= clock.limit_) {
        clock.resume(RunEnd::reached);
    }
    return 0;
}

PLI_INT32 ScriptClock::step_begins(s_cb_data *data) {
    auto &clock = *reinterpret_cast<ScriptClock *>(data->user_data);
    clock.watching_ = clock.waiting_;
    if (!clock.waiting_) {
        return 0;
    }
    if (*interrupt_flag() != 0) {
        clock.watching_ = false;
        vpi::call_back_when_settled(step_settled, &clock);
    } else {
        vpi::call_back(cbNextSimTime, step_begins, 0, &clock);
    }
    return 0;
}

PLI_INT32 ScriptClock::step_settled(s_cb_data *data) {
    auto &clock = *reinterpret_cast<ScriptClock *>(data->user_data);
    if (clock.waiting_) {
        clock.resume(RunEnd::interrupted);
    }
    return 0;
}

}  // namespace wf
