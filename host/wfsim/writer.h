// SPDX-License-Identifier: Apache-2.0
// Another program that writes the waveform while it is recorded: wfsim makes a FIFO, starts the
// program with the FIFO's path in its words, and reads what it writes. Nothing of the waveform
// comes to lie on a disk, and no shell stands in between.
//
// The two stand and fall together. Signals that only wfsim gets are passed on; what the program
// writes after the recording is over is read and dropped, so that it comes to its own end; and the
// FIFO and its folder are gone when either has ended, however that came about (short of SIGKILL).
#ifndef WATTFORGE_HOST_WFSIM_WRITER_H
#define WATTFORGE_HOST_WFSIM_WRITER_H

#include <signal.h>
#include <sys/types.h>

#include <memory>
#include <string>
#include <vector>

#include "host/source/input.h"

namespace wf {

// What stands for the FIFO's path in a command's words.
constexpr const char *fifo_mark = "{}";

struct WriterOptions {
    std::vector<std::string> words;  // behind `--`; empty: no command
    std::string fifo;                // the name that the command writes to; empty: one is found
};

// At most one in a process: signals know it.
class Writer {
  public:
    Writer() = default;
    Writer(const Writer &) = delete;
    Writer &operator=(const Writer &) = delete;
    // Ends a program that is still running, and removes the FIFO.
    ~Writer();

    // Makes the FIFO, starts the program, takes over the signals. It has the standard input, output
    // and error of this one. Empty, or what is wrong.
    std::string start(const WriterOptions &options);

    // Waits for the waveform's first byte. Null: `*error` tells why none will come.
    std::unique_ptr<Input> waveform(std::string *error);

    // Lets the program come to its end; if `status` is that of a failure, ends it instead, as
    // nothing can be recorded any more. The answer is the program's own status if it failed by
    // itself (128 and the signal's number if a signal ended it), else `status`. Without a program:
    // `status`.
    int finish(int status);

  private:
    std::string make_fifo(const std::string &name);
    std::string open_fifo();
    std::string spawn(std::vector<std::string> words, const sigset_t &signals);
    void terminate();
    bool has_ended() const;
    // Waits until there is something to read. False: nothing will come, as the program has ended or
    // writes elsewhere.
    bool wait_for_bytes();
    // Reads and drops bytes until the program has ended.
    void drain();
    void reap();
    int status() const;
    std::string ending() const;

    std::string name_;  // the program's, for messages
    std::string path_;  // of the FIFO, for the program
    int reading_ = -1;  // its end of ours
    int writing_ = -1;  // held while the end of the data is not to be seen
    int process_ = -1;  // a descriptor of the process
    pid_t pid_ = 0;     // 0: not running, or no more
    int wait_status_ = 0;
    bool ending_told_ = false;
};

}  // namespace wf

#endif
