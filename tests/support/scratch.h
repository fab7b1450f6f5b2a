// SPDX-License-Identifier: Apache-2.0
// Where tests put files: a folder of this process alone, so that two runs of the suite may go side
// by side. It is made at the first use and removed when the process ends.
#pragma once

#include <string>

namespace wf::test {

// The full name of a file in that folder; the file is the caller's to write.
std::string scratch_file(const std::string &name);

}  // namespace wf::test
