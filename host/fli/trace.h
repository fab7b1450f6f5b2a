// SPDX-License-Identifier: Apache-2.0
// The trace of what crosses the wall between the simulator and a plug-in. Switched off it costs one
// branch for each call.
#pragma once

#include <cstdio>
#include <string>

#include "host/fli/console.h"

namespace wf {

class Trace {
  public:
    bool is_on() const { return file_ != nullptr || console_ != nullptr; }
    void off();
    void to(Console &console);
    void to(std::FILE *file);  // stays the caller's; flushed with every line
    // Writes one line: printf's format and arguments.
    void line(const char *format, ...) __attribute__((format(printf, 2, 3)));

  private:
    Console *console_ = nullptr;
    std::FILE *file_ = nullptr;
};

}  // namespace wf
