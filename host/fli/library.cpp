// SPDX-License-Identifier: Apache-2.0
// Opening a plug-in's library, and saying clearly why one cannot be opened.
#include "host/fli/library.h"

#include <dlfcn.h>
#include <unistd.h>

namespace wf {

namespace {

std::string quoted(const std::string &text) {
    return "\"" + text + "\"";
}

// The symbol that the dynamic linker's message says is undefined, or an empty text.
std::string undefined_symbol(const std::string &message) {
    const std::string marker = "undefined symbol: ";
    const size_t found = message.find(marker);
    if (found == std::string::npos) {
        return {};
    }
    const size_t start = found + marker.size();
    return message.substr(start, message.find_first_of(" ,\t\n", start) - start);
}

std::string opening_error(const std::string &library) {
    const char *text = dlerror();
    const std::string message = text == nullptr ? "unknown cause" : text;
    const std::string symbol = undefined_symbol(message);
    const std::string cause =
        symbol.empty() ? message : "it needs " + symbol + ", which this simulator does not offer";
    return "cannot load the plug-in " + quoted(library) + ": " + cause;
}

}  // namespace

OpenedLibrary open_library(const std::string &library, const std::string &function) {
    const bool is_here =
        library.find('/') == std::string::npos && access(library.c_str(), F_OK) == 0;
    const std::string path = is_here ? "./" + library : library;
    OpenedLibrary opened;
    opened.handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (opened.handle == nullptr) {
        opened.error = opening_error(library);
        return opened;
    }
    opened.function = dlsym(opened.handle, function.c_str());
    if (opened.function == nullptr) {
        dlclose(opened.handle);
        opened.handle = nullptr;
        opened.error = "the plug-in " + quoted(library) + " has no function " + quoted(function);
    }
    return opened;
}

}  // namespace wf
