// SPDX-License-Identifier: Apache-2.0
// Which plug-ins to load, and where the default one lies.
#ifndef WATTFORGE_HOST_FLI_PLUGINS_H
#define WATTFORGE_HOST_FLI_PLUGINS_H

#include <string>
#include <vector>

namespace wf {

struct Plugin {
    std::string function;
    std::string library;
};

// How a host lets its user name plug-ins, and where it looks for the default one.
struct PluginOption {
    const char *name;                  // "-foreign"
    char separator;                    // between function and library
    std::vector<std::string> folders;  // in the order in which they are looked through
};

// Takes the texts given to the option apart; without any, looks for libswfli.so in the option's
// folders. Empty, or what is wrong.
std::string choose_plugins(const std::vector<std::string> &foreign, const PluginOption &option,
                           std::vector<Plugin> *plugins);

}  // namespace wf

#endif
