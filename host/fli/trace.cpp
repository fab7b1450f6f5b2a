// SPDX-License-Identifier: Apache-2.0
// Writing the trace of calls across the wall.
#include "host/fli/trace.h"

#include <cstdarg>
#include <string>

namespace wf {

void Trace::off() {
    console_ = nullptr;
    file_ = nullptr;
}

void Trace::to(Console &console) {
    off();
    console_ = &console;
}

void Trace::to(std::FILE *file) {
    off();
    file_ = file;
}

void Trace::line(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    va_list again;
    va_copy(again, arguments);
    // The analyser loses sight of a list that has been started, when it reads several files.
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    std::string text(length < 0 ? 0 : static_cast<size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    va_end(arguments);
    if (console_ != nullptr) {
        console_->print("fli: " + text);
    } else if (file_ != nullptr) {
        std::fprintf(file_, "fli: %s\n", text.c_str());
        std::fflush(file_);
    }
}

}  // namespace wf
