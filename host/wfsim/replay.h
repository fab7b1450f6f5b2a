// SPDX-License-Identifier: Apache-2.0
// Moves simulated time by replaying a waveform, with a progress line on the way.
#ifndef WATTFORGE_HOST_WFSIM_REPLAY_H
#define WATTFORGE_HOST_WFSIM_REPLAY_H

#include <string>

#include "host/design/design.h"
#include "host/kernel/kernel.h"
#include "host/shell/run_control.h"
#include "host/source/source.h"

namespace wf {

class Replay final : public RunControl {
  public:
    // All of them outlive this; the design has been loaded from the source.
    Replay(Source &source, Design &design, Kernel &kernel)
        : source_(source), design_(design), kernel_(kernel) {}

    Ticks now() const override { return kernel_.now(); }
    int resolution_exponent() const override { return design_.resolution_exponent; }
    RunEnd start(Ticks limit) override;
    RunEnd result() const override { return result_; }
    std::string restart_obstacle() const override { return source_.rewind_obstacle(); }
    std::string restart() override;
    std::string damage() const override { return damage_; }

  private:
    Source &source_;
    Design &design_;
    Kernel &kernel_;
    RunEnd result_ = RunEnd::reached;
    std::string damage_;
};

}  // namespace wf

#endif
