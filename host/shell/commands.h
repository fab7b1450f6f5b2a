// SPDX-License-Identifier: Apache-2.0
// The shell's Tcl commands, one source file for each family; Shell's constructor adds them all.
#ifndef WATTFORGE_HOST_SHELL_COMMANDS_H
#define WATTFORGE_HOST_SHELL_COMMANDS_H

#include <tcl.h>

#include <string>
#include <string_view>

namespace wf {

class Shell;
struct Simulation;

void add_run_commands(Tcl_Interp *interp, Shell &shell);     // run, restart, now
void add_script_commands(Tcl_Interp *interp, Shell &shell);  // do, echo, transcript, quit, help
void add_design_commands(Tcl_Interp *interp, Shell &shell);  // find, examine, environment, radix
void add_absent_commands(Tcl_Interp *interp, Shell &shell);  // those of simulators that say no

inline std::string_view text_of(Tcl_Obj *word) {
    int length = 0;
    const char *text = Tcl_GetStringFromObj(word, &length);
    return {text, static_cast<size_t>(length)};
}

inline Tcl_Obj *new_text(std::string_view text) {
    return Tcl_NewStringObj(text.data(), static_cast<int>(text.size()));
}

// Sets the result to `message` and answers TCL_ERROR.
inline int fail(Tcl_Interp *interp, std::string_view message) {
    Tcl_SetObjResult(interp, new_text(message));
    return TCL_ERROR;
}

// Where plug-ins' errors are the script's: fails with the first of them, which then counts no
// more, as the script may catch it. TCL_OK without one.
int fail_if_strict(Tcl_Interp *interp, const Simulation &simulation);

// The words from `first` on with one blank between them.
std::string join_words(int first, int count, Tcl_Obj *const words[]);

}  // namespace wf

#endif
