// SPDX-License-Identifier: Apache-2.0
// Whether a report is all there. Looks at the file's brackets, not at its figures.
#ifndef WATTFORGE_HOST_WFSIM_SAIF_CHECK_H
#define WATTFORGE_HOST_WFSIM_SAIF_CHECK_H

#include <string>

namespace wf {

// Empty when the file begins as a SAIF file does and its last line closes the bracket that the
// first one opened; else `path: expected X, got Y`. Anything but a regular file (a pipe, a device)
// cannot be read back and passes.
std::string check_saif_file(const std::string &path);

}  // namespace wf

#endif
