// SPDX-License-Identifier: Apache-2.0
// Bytes of a waveform in blocks, from wherever they come: a file, standard input, a stream of gzip
// or bzip2, or memory. Knows nothing of formats. An input can wrap another, so that a decompressor
// or a thread that reads ahead stands between the disk and the reader without either noticing.
#ifndef WATTFORGE_HOST_SOURCE_INPUT_H
#define WATTFORGE_HOST_SOURCE_INPUT_H

#include <csignal>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace wf {

// Set to non-zero (from a signal handler, say) to make a reader stop; it is not cleared. Null:
// never.
using StopFlag = const volatile std::sig_atomic_t *;

class Input {
  public:
    explicit Input(std::string name) : name_(std::move(name)) {}
    Input(const Input &) = delete;
    Input &operator=(const Input &) = delete;
    virtual ~Input() = default;

    // What messages call this input: the path as given, or `<stdin>`.
    const std::string &name() const { return name_; }

    // Up to `size` bytes into `buffer`; as many as there are, so a short count is not the end.
    // Zero: the end, or, with failed(), an error.
    std::size_t read(char *buffer, std::size_t size);

    // The next bytes, at most `size`, without taking them; fewer only at the end or on failure. The
    // view is good until the next read or peek.
    std::string_view peek(std::size_t size);

    bool failed() const { return !failure_.empty(); }

    // What went wrong, worded to stand after "got": `a truncated gzip stream`.
    const std::string &failure() const { return failure_; }

    // Why the bytes cannot be had a second time, a whole sentence without its full stop; empty:
    // they can.
    virtual std::string rewind_obstacle() const { return name_ + " cannot be read a second time"; }

    // Goes to the byte at `offset`, counted from the first; to be called where nothing stands in
    // the way. False: failure().
    bool rewind_to(uint64_t offset);

    // Whether the stop flag has ended the reading.
    virtual bool stopped() const { return false; }

    // Bytes taken so far from the disk or the pipe, and how many it holds (0: not known).
    virtual uint64_t bytes_read() const = 0;
    virtual uint64_t bytes_total() const = 0;

  protected:
    // The same as read, without the peeked bytes.
    virtual std::size_t fill(char *buffer, std::size_t size) = 0;
    // The same as rewind_to; what was peeked and what failed has been forgotten.
    virtual void go_to(uint64_t /*offset*/) { fail("it cannot be read a second time"); }
    void fail(std::string cause) { failure_ = std::move(cause); }

  private:
    std::string name_;
    std::string failure_;
    std::string peeked_;  // read ahead by peek, not yet handed out
};

// Opens a file, or standard input for "-". Null: `*error` is `path: expected X, got Y`. Once `stop`
// is set the bytes end within a second, which leaves the reader the time to come to a good place.
std::unique_ptr<Input> open_file_input(const std::string &path, std::string *error,
                                       StopFlag stop = nullptr);

// The uncompressed bytes of `compressed`, which may hold several gzip streams one after another. A
// stream that is cut off or fails its checksum fails the input after its last good byte.
std::unique_ptr<Input> make_gzip_input(std::unique_ptr<Input> compressed);

// The same for bzip2.
std::unique_ptr<Input> make_bzip2_input(std::unique_ptr<Input> compressed);

// `text` under the name `name`, handed out in pieces of at most `piece` bytes.
std::unique_ptr<Input> make_memory_input(std::string name, std::string text,
                                         std::size_t piece = SIZE_MAX);

}  // namespace wf

#endif
