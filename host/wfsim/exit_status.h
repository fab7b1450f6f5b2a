// SPDX-License-Identifier: Apache-2.0
// What the program's exit status says to the script that called it.
#ifndef WATTFORGE_HOST_WFSIM_EXIT_STATUS_H
#define WATTFORGE_HOST_WFSIM_EXIT_STATUS_H

namespace wf {

enum ExitStatus {
    exit_ok = 0,
    exit_error = 1,   // a script failed, something could not be opened or written
    exit_usage = 2,   // the command line cannot be followed; nothing was done
    exit_damaged = 3  // the waveform is damaged; what lies before the damage was used
    // and 128 with the number of the signal that interrupted it
};

}  // namespace wf

#endif
