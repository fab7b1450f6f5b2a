// SPDX-License-Identifier: Apache-2.0
// Opening a plug-in's library as a simulator does.
#pragma once

#include <string>

namespace wf {

// What became of it: a handle to be closed with dlclose and the function's address, or a null
// handle and one line that names the library and the cause.
struct OpenedLibrary {
    void *handle = nullptr;
    void *function = nullptr;
    std::string error;
};

// Opens a library with all of its symbols bound at once and its own symbols kept to itself, and
// finds its init function. A name without a '/' is taken from the current folder when such a file
// is there, else from where the system looks.
OpenedLibrary open_library(const std::string &library, const std::string &function);

}  // namespace wf
