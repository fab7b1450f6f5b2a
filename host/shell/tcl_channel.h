// SPDX-License-Identifier: Apache-2.0
// Tcl's standard output and error as the shell wants them: what a script prints with `puts` goes to
// the transcript too, whatever way it takes to the channel.
#ifndef WATTFORGE_HOST_SHELL_TCL_CHANNEL_H
#define WATTFORGE_HOST_SHELL_TCL_CHANNEL_H

#include <tcl.h>

namespace wf {

class Transcript;

// While it lives, `stdout` of every interpreter that is made writes to the transcript, and
// `stderr` to standard error and the transcript's file. One at a time; it must outlive the
// interpreters.
class TranscriptChannels {
  public:
    explicit TranscriptChannels(Transcript &transcript);
    TranscriptChannels(const TranscriptChannels &) = delete;
    TranscriptChannels &operator=(const TranscriptChannels &) = delete;
    ~TranscriptChannels();

    // Hands on what the script has printed so far, an unfinished line included.
    void flush();

  private:
    Tcl_Channel output_;
    Tcl_Channel error_;
};

}  // namespace wf

#endif
