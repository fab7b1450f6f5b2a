// SPDX-License-Identifier: Apache-2.0
// The words that the shell's commands know besides paths, times and files: what Tcl looks them up
// in (unique beginnings will do) and what completion offers. Each list ends with a null.
#ifndef WATTFORGE_HOST_SHELL_WORDS_H
#define WATTFORGE_HOST_SHELL_WORDS_H

#include <tcl.h>

namespace wf::words {

inline constexpr const char *run_options[] = {"-all", nullptr};

// Simulators ask before they restart, and drop or keep what a replay does not have: these options
// are theirs, and change nothing here.
inline constexpr const char *restart_options[] = {"-force", "-nobreakpoint", "-nolist",
                                                  "-nolog", "-nowave",       nullptr};

inline constexpr const char *find_kinds[] = {"instances", "nets", "regions", "signals", nullptr};
inline constexpr const char *find_options[] = {"-in",    "-inout",     "-internal", "-out",
                                               "-ports", "-recursive", nullptr};

inline constexpr const char *transcript_actions[] = {"file", "off", "on", nullptr};

// The position of a word in one of the lists, or -1 with Tcl's message as the result. `what` is
// what the message calls the word.
inline int position(Tcl_Interp *interp, Tcl_Obj *word, const char *const *list, const char *what) {
    int found = -1;
    return Tcl_GetIndexFromObj(interp, word, list, what, 0, &found) == TCL_OK ? found : -1;
}

}  // namespace wf::words

#endif
