// SPDX-License-Identifier: Apache-2.0
// What can be told of a plug-in from outside: the interface gives no results of commands, so the
// messages are what there is to go by. Stands between the session and the transcript.
//
// What counts as an error: a message that begins with the word Error, from any plug-in, and those
// of the recorder's refusals that lack the word because a part of the command is still carried out.
// What does not, whatever its first word: that a signal's type cannot be counted, since designs
// hold such signals and everything else is recorded; and that an object of a forward file is not
// watched, since such files name what synthesis added.
#ifndef WATTFORGE_HOST_SHELL_MESSAGE_WATCH_H
#define WATTFORGE_HOST_SHELL_MESSAGE_WATCH_H

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "host/fli/console.h"

namespace wf {

class MessageWatch final : public Console {
  public:
    // Every message goes on to `shown`, which outlives this.
    explicit MessageWatch(Console &shown) : shown_(shown) {}

    // A message of a plug-in.
    void print(std::string_view text) override;
    // A complaint of the interface about a plug-in: an error.
    void complain(std::string_view text) override;
    // An error that the plug-in should have told and did not: shows it as the host's own.
    void tell_error(const std::string &cause);

    // Messages of plug-ins for which `hides` answers true are not shown; they count all the same.
    // Empty: all are shown.
    void hide(std::function<bool(std::string_view message)> hides) { hides_ = std::move(hides); }

    unsigned errors() const { return errors_; }
    // What the first of them says behind its level and tag; empty without one.
    const std::string &first_error() const { return first_error_; }
    // Takes the errors over: answers first_error() and counts none from then on.
    std::string take_errors();

    // Whether the plug-in said last that a counting window is open.
    bool window_open() const { return window_open_; }
    // Reports that the plug-in says it has written.
    unsigned reports() const { return reports_; }

    // At the end of a simulation, before the plug-ins are let go: says that a window is still open.
    void tell_open_window();
    // At the end of everything: the status to end with, 1 in place of 0 after errors. `aloud` has
    // the errors counted in a last line.
    int conclude(int status, bool aloud);

  private:
    void note(std::string_view message);
    void count_error(std::string_view cause);

    Console &shown_;
    std::function<bool(std::string_view)> hides_;
    std::string first_error_;
    unsigned errors_ = 0;
    unsigned reports_ = 0;
    bool window_open_ = false;
};

}  // namespace wf

#endif
