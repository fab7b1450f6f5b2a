// SPDX-License-Identifier: Apache-2.0
// Speed is that of the stretch since the line was last drawn: an average over all hides a stall.
#include "host/shell/progress_meter.h"

#include <unistd.h>

namespace wf {
namespace {

constexpr auto interval = std::chrono::milliseconds(250);
constexpr const char *erase_line = "\r\033[K";

std::string formatted(const char *format, double value) {
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

}  // namespace

std::string progress_text(const RunPosition &position) {
    const double megabytes = static_cast<double>(position.bytes_read) / 1e6;
    std::string text;
    if (position.bytes_total != 0) {
        const double share = 100.0 * static_cast<double>(position.bytes_read) /
                             static_cast<double>(position.bytes_total);
        text = formatted("%3.0f%%", share < 100.0 ? share : 100.0);
    } else {
        text = formatted("%.0f MB", megabytes);
    }
    text += ", at " + format_time(position.time, position.resolution_exponent);
    if (position.megabytes_per_second > 0) {
        text += formatted(", %.0f MB/s", position.megabytes_per_second);
    }
    return text;
}

ProgressMeter::ProgressMeter(std::FILE *screen, bool wanted)
    : screen_(wanted && isatty(fileno(screen)) != 0 ? screen : nullptr), last_draw_(Clock::now()) {
}

void ProgressMeter::update(RunPosition position) {
    if (screen_ == nullptr) {
        return;
    }
    const auto now = Clock::now();
    const auto elapsed = now - last_draw_;
    if (elapsed < interval) {
        return;
    }
    if (position.bytes_read > last_bytes_) {
        const double seconds = std::chrono::duration<double>(elapsed).count();
        position.megabytes_per_second =
            static_cast<double>(position.bytes_read - last_bytes_) / 1e6 / seconds;
    }
    last_draw_ = now;
    last_bytes_ = position.bytes_read;
    std::fprintf(screen_, "%s%s", erase_line, progress_text(position).c_str());
    std::fflush(screen_);
    drawn_ = true;
}

void ProgressMeter::clear() {
    if (drawn_) {
        std::fputs(erase_line, screen_);
        std::fflush(screen_);
        drawn_ = false;
    }
}

}  // namespace wf
