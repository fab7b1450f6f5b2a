// SPDX-License-Identifier: Apache-2.0
// Where everything goes that the user is to read: standard output and, if asked for, a file. The
// plug-in's messages, the shell's own and what a script prints all come through here, in order.
#ifndef WATTFORGE_HOST_SHELL_TRANSCRIPT_H
#define WATTFORGE_HOST_SHELL_TRANSCRIPT_H

#include <cstdio>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "host/fli/console.h"

namespace wf {

class Transcript final : public Console {
  public:
    // Writes to `screen`, which stays the caller's; null: to the transcript file alone.
    explicit Transcript(std::FILE *screen);
    Transcript(const Transcript &) = delete;
    Transcript &operator=(const Transcript &) = delete;
    ~Transcript() override;

    // One line; the newline is added. If the line before was left open it is ended first.
    void print(std::string_view text) override;

    // Text as it stands, as scripts print it.
    void write(std::string_view text);

    // Text that stands on the screen already (a command as typed, an error written elsewhere): to
    // the file alone.
    void write_to_file(std::string_view text);

    // Starts a new transcript file, closing the one before; an empty name only closes. False:
    // `*error` says which file and why. A file that could not be written completely is an error
    // of its closing.
    bool set_file(const std::string &path, std::string *error);
    const std::string &file_name() const { return path_; }

    // Stops and resumes writing to the file; the screen is not touched.
    void set_recording(bool on) { recording_ = on; }
    bool recording() const { return recording_; }

    // `clear` is called before anything is written to the screen (to take a progress line away).
    void before_output(std::function<void()> clear) { before_output_ = std::move(clear); }

    // Makes the screen ready for what is written to it past the transcript: the progress line is
    // taken away.
    void clear_way() {
        if (before_output_) {
            before_output_();
        }
    }
    // The same for a prompt, which begins a line.
    void begin_line();

    // True once standard output has refused text (a full disk, say).
    bool screen_failed() const { return screen_failed_; }

  private:
    bool close_file(std::string *error);

    std::FILE *screen_;
    std::FILE *file_ = nullptr;
    std::string path_;
    bool recording_ = true;
    bool line_open_ = false;
    bool screen_failed_ = false;
    std::function<void()> before_output_;
};

}  // namespace wf

#endif
