// SPDX-License-Identifier: Apache-2.0
// The parts of a host that the shell works on; the main program makes them, and they outlive the
// shell. Design and kernel are reached through the session.
#ifndef WATTFORGE_HOST_SHELL_SIMULATION_H
#define WATTFORGE_HOST_SHELL_SIMULATION_H

namespace wf {

class RunControl;
class Session;
class Transcript;

struct Simulation {
    Session &session;
    RunControl &control;
    Transcript &transcript;
};

}  // namespace wf

#endif
