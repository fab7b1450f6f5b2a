// SPDX-License-Identifier: Apache-2.0
// Simulated time for a run script inside a simulator: `run` asks the simulator to come back at the
// end of a time step and suspends the script until then.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "host/kernel/kernel.h"
#include "host/shell/run_control.h"
#include "host/source/vpi/interface.h"

namespace wf {

class ScriptClock final : public RunControl {
  public:
    // `resume` is called, inside the read-only synchronisation of the time that the script waits
    // for. Both outlive this.
    ScriptClock(const Kernel &kernel, const int &resolution_exponent, std::function<void()> resume)
        : kernel_(kernel), resolution_exponent_(resolution_exponent), resume_(std::move(resume)) {}

    // For a simulator that does not end at an interrupt by itself: looks for one at every time step
    // of a run.
    void watch_interrupts() { watches_interrupts_ = true; }

    Ticks now() const override { return kernel_.now(); }
    int resolution_exponent() const override { return resolution_exponent_; }
    RunEnd start(Ticks limit) override;
    RunEnd result() const override { return result_; }
    std::string restart_obstacle() const override {
        return "the simulator cannot go back in time; start the simulation again";
    }
    std::string restart() override { return restart_obstacle(); }
    const char *host_name() const override { return "a recording"; }
    const char *end_name() const override { return "the end of the simulation"; }
    std::string damage() const override { return {}; }

    // Whether the script waits in `run`.
    bool is_waiting() const { return waiting_; }
    // The wait is over, and the script about to go on, or not going on any more.
    void stop_waiting() { waiting_ = false; }
    // The simulator moves time no further: every run ends where it is, as interrupted when that is
    // why.
    void end(bool interrupted);

  private:
    static PLI_INT32 time_begins(s_cb_data *data);
    static PLI_INT32 time_settled(s_cb_data *data);
    static PLI_INT32 step_begins(s_cb_data *data);
    static PLI_INT32 step_settled(s_cb_data *data);
    void resume(RunEnd result);

    const Kernel &kernel_;
    const int &resolution_exponent_;
    std::function<void()> resume_;
    bool watches_interrupts_ = false;
    RunEnd result_ = RunEnd::reached;
    Ticks limit_ = 0;  // of the run that the script waits in
    bool waiting_ = false;
    bool watching_ = false;        // the next step's begin has been asked for
    std::optional<RunEnd> ended_;  // as what every run ends
};

}  // namespace wf
