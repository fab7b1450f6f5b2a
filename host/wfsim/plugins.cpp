// SPDX-License-Identifier: Apache-2.0
// WATTFORGE_LIBDIR comes from the build: the folder of libraries of the installation.
#include "host/wfsim/plugins.h"

#include <unistd.h>

#include <filesystem>

namespace wf {
namespace {

namespace fs = std::filesystem;

constexpr const char *default_function = "swfli_init";
constexpr const char *default_library = "libswfli.so";
constexpr const char *blanks = " \t";

fs::path program_folder() {
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error).parent_path();
}

std::string find_default(std::string *library) {
    const fs::path folder = program_folder();
    std::string tried;
    for (const fs::path &place : {folder / ".." / "lib", folder, fs::path(WATTFORGE_LIBDIR)}) {
        const fs::path candidate = (place / default_library).lexically_normal();
        if (access(candidate.c_str(), R_OK) == 0) {
            *library = candidate;
            return {};
        }
        tried += "\n  " + candidate.string();
    }
    return "the plug-in was not found; name one with -foreign \"function library\". Looked for:" +
           tried;
}

}  // namespace

std::string choose_plugins(const std::vector<std::string> &foreign, std::vector<Plugin> *plugins) {
    for (const std::string &text : foreign) {
        const size_t function = text.find_first_not_of(blanks);
        const size_t gap = text.find_first_of(blanks, function);
        const size_t library = text.find_first_not_of(blanks, gap);
        if (library == std::string::npos) {
            return "-foreign: expected \"function library\", got \"" + text + "\"";
        }
        const size_t end = text.find_last_not_of(blanks) + 1;
        plugins->push_back(
            {text.substr(function, gap - function), text.substr(library, end - library)});
    }
    if (!plugins->empty()) {
        return {};
    }
    plugins->push_back({default_function, ""});
    return find_default(&plugins->back().library);
}

}  // namespace wf
