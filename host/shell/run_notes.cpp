// SPDX-License-Identifier: Apache-2.0
// Damage is told once, when the run meets it; later runs find the same end of the data.
#include "host/shell/run_notes.h"

#include "host/shell/transcript.h"

namespace wf {

void RunNotes::tell(RunEnd end, Ticks limit) {
    if (end == RunEnd::damaged && !damage_told_) {
        damage_told_ = true;
        transcript_.print("Error: " + control_.damage());
    }
    const bool at_end = end == RunEnd::end_of_data || end == RunEnd::damaged;
    const bool short_of_limit = limit != run_to_end && control_.now() < limit;
    if (at_end && (short_of_limit || end == RunEnd::damaged)) {
        transcript_.print("Note: run stopped at " +
                          format_time(control_.now(), control_.resolution_exponent()) + ", " +
                          control_.end_name());
    }
}

void RunNotes::tell_rounding(const std::string &words, const ParsedTime &time) {
    if (time.error.empty() && !time.exact) {
        const int exponent = control_.resolution_exponent();
        transcript_.print("Warning: \"" + words + "\" is not a whole number of ticks of " +
                          format_time(1, exponent) + "; rounded to " +
                          format_time(time.ticks, exponent));
    }
}

std::string RunNotes::interruption() const {
    return "interrupted at " + format_time(control_.now(), control_.resolution_exponent());
}

}  // namespace wf
