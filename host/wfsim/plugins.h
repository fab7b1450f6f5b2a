// SPDX-License-Identifier: Apache-2.0
// Which plug-ins to load, and where the default one lies.
#ifndef WATTFORGE_HOST_WFSIM_PLUGINS_H
#define WATTFORGE_HOST_WFSIM_PLUGINS_H

#include <string>
#include <vector>

namespace wf {

struct Plugin {
    std::string function;
    std::string library;
};

// Takes "function library" texts apart; without any, looks for libswfli.so beside the program: in
// ../lib, in the program's own folder, in the folder of libraries that it was installed with.
// Empty, or what is wrong.
std::string choose_plugins(const std::vector<std::string> &foreign, std::vector<Plugin> *plugins);

}  // namespace wf

#endif
