// SPDX-License-Identifier: Apache-2.0
// Where a simulator's messages go: a transcript, a terminal, a test's list.
#pragma once

#include <string_view>

namespace wf {

class Console {
  public:
    virtual ~Console() = default;
    // A message of the plug-in, without its newline; it may hold newlines of its own.
    virtual void print(std::string_view text) = 0;
    // A complaint of the host, such as "** Error: mti_GetSignalType: null signal handle".
    virtual void complain(std::string_view text) { print(text); }
};

}  // namespace wf
