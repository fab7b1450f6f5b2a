// SPDX-License-Identifier: Apache-2.0
// Commands that are typed or piped in instead of being read from a script file.
#ifndef WATTFORGE_HOST_SHELL_PROMPT_H
#define WATTFORGE_HOST_SHELL_PROMPT_H

#include "host/shell/shell.h"

namespace wf {

// Reads commands from the terminal, with line editing, a history kept in ~/.wfsim_history, and
// completion (completion.h), until `quit` or the end of the input.
// An error is told and the prompt comes back; the interrupt key clears the line. Answers `quit` or
// `done`; the latter after SIGTERM and SIGHUP, too.
ScriptEnd run_prompt(Shell &shell);

// Reads commands from standard input to its end and runs each as soon as it is complete. The first
// error ends it, as it ends a script.
ScriptEnd run_stream(Shell &shell);

}  // namespace wf

#endif
