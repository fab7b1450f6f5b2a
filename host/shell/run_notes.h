// SPDX-License-Identifier: Apache-2.0
// What the transcript says about how a run ended; the same words whether a script asked for the run
// or the program's one-command form.
#ifndef WATTFORGE_HOST_SHELL_RUN_NOTES_H
#define WATTFORGE_HOST_SHELL_RUN_NOTES_H

#include <string>

#include "host/shell/run_control.h"

namespace wf {

class Transcript;

class RunNotes {
  public:
    // Both must outlive this.
    RunNotes(const RunControl &control, Transcript &transcript)
        : control_(control), transcript_(transcript) {}

    // Says what is worth a line about a run that was to reach `limit`: that the data ended before,
    // and, the first time, what is wrong with it.
    void tell(RunEnd end, Ticks limit);

    // Says when a time, as the user wrote it, is not a whole number of ticks.
    void tell_rounding(const std::string &words, const ParsedTime &time);

    // Time went back to 0: damage is told again when it is met again.
    void restart() { damage_told_ = false; }

    // "interrupted at 5 us".
    std::string interruption() const;

  private:
    const RunControl &control_;
    Transcript &transcript_;
    bool damage_told_ = false;
};

}  // namespace wf

#endif
