// SPDX-License-Identifier: Apache-2.0
// Texts that name plug-ins are taken apart; only the default one is looked for.
#include "host/fli/plugins.h"

#include <unistd.h>

#include <filesystem>

namespace wf {
namespace {

namespace fs = std::filesystem;

constexpr const char *default_function = "swfli_init";
constexpr const char *default_library = "libswfli.so";
constexpr const char *blanks = " \t";

// "function library", quoted, or "function:library".
std::string form_of(const PluginOption &option) {
    return std::string("\"function") + option.separator + "library\"";
}

std::string find_default(const PluginOption &option, std::string *library) {
    std::string tried;
    for (const fs::path place : option.folders) {
        const fs::path candidate = (place / default_library).lexically_normal();
        if (access(candidate.c_str(), R_OK) == 0) {
            *library = candidate;
            return {};
        }
        tried += "\n  " + candidate.string();
    }
    return std::string("the plug-in was not found; name one with ") + option.name +
           (option.separator == ' ' ? " " : "=") + form_of(option) + ". Looked for:" + tried;
}

std::string trimmed(const std::string &text) {
    const size_t first = text.find_first_not_of(blanks);
    return first == std::string::npos
               ? ""
               : text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

}  // namespace

std::string choose_plugins(const std::vector<std::string> &foreign, const PluginOption &option,
                           std::vector<Plugin> *plugins) {
    const std::string separators = option.separator == ' ' ? blanks : std::string{option.separator};
    for (const std::string &given : foreign) {
        const std::string text = trimmed(given);
        const size_t gap = text.find_first_of(separators);
        const std::string library = gap == std::string::npos ? "" : trimmed(text.substr(gap + 1));
        if (gap == 0 || library.empty()) {
            return std::string(option.name) + ": expected " + form_of(option) + ", got \"" + given +
                   "\"";
        }
        plugins->push_back({trimmed(text.substr(0, gap)), library});
    }
    if (!plugins->empty()) {
        return {};
    }
    plugins->push_back({default_function, ""});
    return find_default(option, &plugins->back().library);
}

}  // namespace wf
