// SPDX-License-Identifier: Apache-2.0
// The line that shows how far a long run has got, on a terminal only: share of the file, simulated
// time, megabytes a second. It is drawn over itself and taken away before anything else is shown.
#ifndef WATTFORGE_HOST_SHELL_PROGRESS_METER_H
#define WATTFORGE_HOST_SHELL_PROGRESS_METER_H

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>

#include "host/shell/times.h"

namespace wf {

// How far a run has got.
struct RunPosition {
    std::uint64_t bytes_read = 0;
    std::uint64_t bytes_total = 0;  // 0: not known
    Ticks time = 0;
    int resolution_exponent = 0;
    double megabytes_per_second = 0;  // 0: not known yet
};

// The line's text, without any control characters.
std::string progress_text(const RunPosition &position);

class ProgressMeter {
  public:
    // Draws on `screen` (the caller's) if that is a terminal and `wanted`; else does nothing.
    ProgressMeter(std::FILE *screen, bool wanted);
    ProgressMeter(const ProgressMeter &) = delete;
    ProgressMeter &operator=(const ProgressMeter &) = delete;
    ~ProgressMeter() { clear(); }

    bool active() const { return screen_ != nullptr; }

    // Call as often as you like: it draws a few times a second. The speed is filled in here.
    void update(RunPosition position);

    // Takes the line away.
    void clear();

  private:
    using Clock = std::chrono::steady_clock;

    std::FILE *screen_;
    bool drawn_ = false;
    Clock::time_point last_draw_;
    std::uint64_t last_bytes_ = 0;
};

}  // namespace wf

#endif
