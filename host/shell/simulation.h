// SPDX-License-Identifier: Apache-2.0
// The parts of a host that the shell works on; the main program makes them, and they outlive the
// shell. Design and kernel are reached through the session.
#ifndef WATTFORGE_HOST_SHELL_SIMULATION_H
#define WATTFORGE_HOST_SHELL_SIMULATION_H

namespace wf {

class MessageWatch;
class RunControl;
class Session;
class Transcript;
class UsedFiles;

struct Simulation {
    Session &session;  // whose console is the watch
    RunControl &control;
    Transcript &transcript;
    MessageWatch &watch;
    UsedFiles &files;
    bool strict = false;  // the first error of a plug-in is an error of the script
};

}  // namespace wf

#endif
