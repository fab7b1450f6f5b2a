// SPDX-License-Identifier: Apache-2.0
// The plug-in's commands as system tasks of the simulator's language.
#pragma once

#include <string>
#include <vector>

#include "host/source/vpi/interface.h"

namespace wf {

// Registers $NAME for a command; possible only while the simulator loads its modules, and not in
// every simulator. A call becomes `run(line)` with the line as it would stand in a script: the name
// without the dollar and the arguments, numbers in decimal. `name` is kept for ever.
void add_system_task(const std::string &name, void (*run)(const std::string &line));

}  // namespace wf
