// SPDX-License-Identifier: Apache-2.0
// A forward file of the one-command form, read through the plug-in. Of any file that can be opened
// the plug-in says that it was read, and of an object only that it was skipped. With its listing
// turned on, and not shown, it tells whether the file was whole and how many objects it names.
#ifndef WATTFORGE_HOST_WFSIM_FORWARD_FILE_H
#define WATTFORGE_HOST_WFSIM_FORWARD_FILE_H

#include <string>
#include <string_view>

#include "host/shell/simulation.h"

namespace wf {

class ForwardFile {
  public:
    // `path` may be empty: no file, which is never wrong.
    ForwardFile(const Simulation &simulation, std::string path, std::string testbench);
    ForwardFile(const ForwardFile &) = delete;
    ForwardFile &operator=(const ForwardFile &) = delete;
    // Stops watching the messages.
    ~ForwardFile();

    // False when it cannot be used: `*error` says why, unless the plug-in has said so itself.
    bool read(std::string *error);
    // After set_toggle_region: false when the design and the regions have none of its objects.
    bool has_matched() const;

  private:
    bool see(std::string_view message);
    bool see_listing(std::string_view message);
    void set_level(const char *level) const;
    std::string fault() const;

    const Simulation &simulation_;
    std::string path_;
    std::string testbench_;
    std::string last_object_;
    std::string stray_;  // the outermost instance of an object whose report would miss its names
    unsigned objects_ = 0;
    unsigned skipped_ = 0;
    bool listed_ = false;   // the listing has begun
    bool damaged_ = false;  // a syntax error
};

}  // namespace wf

#endif
