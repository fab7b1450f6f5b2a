// SPDX-License-Identifier: Apache-2.0
// A command of a plug-in, run so that what goes wrong is known: by the messages, and where there
// was to be one and none came. One way for scripts, system tasks and the one-command form.
#ifndef WATTFORGE_HOST_SHELL_PLUGIN_COMMAND_H
#define WATTFORGE_HOST_SHELL_PLUGIN_COMMAND_H

#include <string>

#include "host/shell/simulation.h"

namespace wf {

// Runs the command with the whole line, its name included. False when there were errors; the
// transcript shows them, and the watch has counted them.
bool run_plugin_command(const Simulation &simulation, const std::string &name,
                        const std::string &line);

}  // namespace wf

#endif
