// SPDX-License-Identifier: Apache-2.0
// What can be told of the plug-in's state from outside: the interface gives no results of commands,
// so the messages are what there is to go by.
#ifndef WATTFORGE_HOST_SHELL_MESSAGE_WATCH_H
#define WATTFORGE_HOST_SHELL_MESSAGE_WATCH_H

#include <string_view>

namespace wf {

struct MessageWatch {
    bool selected = false;  // signals were registered, some perhaps not: an error each
    bool window_open = false;
    unsigned errors = 0;   // messages that began with "Error (KLVA-PWR)"
    unsigned reports = 0;  // reports that the plug-in says it has written

    void see(std::string_view message) {
        if (message.starts_with("Error (KLVA-PWR)")) {
            ++errors;
        } else if (message.starts_with("Information (KLVA-PWR): Completed set_toggle_region")) {
            selected = true;
        } else if (message.starts_with("Information (KLVA-PWR): Turned on counting window")) {
            window_open = true;
        } else if (message.starts_with("Information (KLVA-PWR): Turned off counting window") ||
                   message.starts_with("Information (KLVA-PWR): Resetting counting windows")) {
            window_open = false;
        } else if (message.starts_with("Information (KLVA-PWR): Report done, wrote file")) {
            ++reports;
        }
    }
};

}  // namespace wf

#endif
