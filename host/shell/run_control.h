// SPDX-License-Identifier: Apache-2.0
// The one thing that differs between the hosts of the shell: who moves simulated time. A host that
// replays a waveform moves it inside start(); one that lives inside a simulator cannot, since the
// simulator owns the loop: it answers `suspended`, and the script, a Tcl coroutine, waits in `run`.
#ifndef WATTFORGE_HOST_SHELL_RUN_CONTROL_H
#define WATTFORGE_HOST_SHELL_RUN_CONTROL_H

#include <limits>
#include <string>

#include "host/shell/times.h"

namespace wf {

// How a run came to its end.
enum class RunEnd {
    reached,      // now() is the limit
    end_of_data,  // nothing further to simulate; now() may lie before the limit
    damaged,      // the waveform cannot be read any further; damage() tells
    interrupted,  // the user pressed the interrupt key; now() is a finished time step
    suspended,  // not ended: the host resumes the script's coroutine when it is, then asks result()
};

class RunControl {
  public:
    RunControl() = default;
    RunControl(const RunControl &) = delete;
    RunControl &operator=(const RunControl &) = delete;
    virtual ~RunControl() = default;

    virtual Ticks now() const = 0;

    // A tick is ten to this power of seconds.
    virtual int resolution_exponent() const = 0;

    // Moves simulated time until everything up to and including `limit` has happened; run_to_end
    // as the limit means as far as it goes. Called between time steps only.
    virtual RunEnd start(Ticks limit) = 0;

    // What the last run came to, for a script that was suspended.
    virtual RunEnd result() const = 0;

    // Why time cannot go back to 0, a whole sentence without its full stop; empty: it can.
    virtual std::string restart_obstacle() const = 0;

    // Goes back to time 0 and to the values that were there before the first run, where nothing
    // stands in the way. Empty, or what went wrong.
    virtual std::string restart() = 0;

    // What the host calls itself: "a replay".
    virtual const char *host_name() const { return "a replay"; }

    // What a run meets when there is nothing further to simulate.
    virtual const char *end_name() const { return "the end of the data"; }

    // `file:line: expected X, got Y` once a run has ended `damaged`, after a restart too; else
    // empty.
    virtual std::string damage() const = 0;
};

constexpr Ticks run_to_end = std::numeric_limits<Ticks>::max();

}  // namespace wf

#endif
