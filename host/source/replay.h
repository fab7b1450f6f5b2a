// SPDX-License-Identifier: Apache-2.0
// How far a replay goes: what every waveform's source does when it is told to advance, whatever
// reads its events. A source brings a sink of its own, made from ReplaySteps.
#pragma once

#include <algorithm>
#include <string>

#include "host/kernel/kernel.h"
#include "host/source/source.h"

namespace wf {

// What a source keeps between two calls of advance_to.
struct ReplayState {
    Ticks last_time = 0;  // of the step whose changes come next
    bool ended = false;
    std::string error;
};

// The time of a sink: finishes a step when the next one begins; stops before a step beyond the
// limit.
class ReplaySteps {
  public:
    ReplaySteps(Kernel &kernel, Ticks limit, StopFlag stop, ReplayState &state)
        : kernel_(kernel), limit_(limit), stop_(stop), state_(state) {}

    bool time(Ticks time) {
        kernel_.finish_step();
        state_.last_time = time;
        if (time > limit_ || (stop_ != nullptr && *stop_ != 0)) {
            return false;
        }
        kernel_.begin_step(time);
        return true;
    }

  protected:
    Kernel &kernel_;

  private:
    Ticks limit_;
    StopFlag stop_;
    ReplayState &state_;
};

// Source::advance_to by way of `events`, whose run() feeds a Sink and says how that ended.
template <typename Sink, typename Events>
Progress replay(Events &events, Kernel &kernel, Ticks limit, StopFlag stop, const Input &input,
                ReplayState &state) {
    Sink sink(kernel, limit, stop, state);
    using End = decltype(events.run(sink));
    if (!state.error.empty()) {
        return Progress::damaged;
    }
    if (state.ended) {
        return Progress::end_of_data;
    }
    End end = End::stopped;
    if (state.last_time <= limit) {
        kernel.begin_step(std::max(state.last_time, kernel.now()));
        end = events.run(sink);
        kernel.finish_step();
    }
    if (input.stopped()) {
        state.ended = true;
        return Progress::interrupted;
    }
    if (end == End::damaged) {
        state.error = events.error();
        return Progress::damaged;
    }
    if (end == End::end_of_data) {
        state.ended = true;
        return Progress::end_of_data;
    }
    if (state.last_time <= limit) {
        return Progress::interrupted;
    }
    kernel.advance(std::max(limit, kernel.now()));
    return Progress::reached;
}

}  // namespace wf
