// SPDX-License-Identifier: Apache-2.0
// What every place a design and its events come from looks like to the shell: one class to load the
// design, to replay its events into the kernel step by step, and to say how far that has got.
//
// Order of calls: open_source, then load once, then advance_to as often as wanted. A source that
// reports damage has replayed everything before the damaged place and keeps answering `damaged`.
// After a rewind it is as it was when load came back.
#ifndef WATTFORGE_HOST_SOURCE_SOURCE_H
#define WATTFORGE_HOST_SOURCE_SOURCE_H

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "host/source/input.h"

namespace wf {

class Design;
class Input;
class Kernel;
using Ticks = std::int64_t;

// Why advance_to came back.
enum class Progress {
    reached,      // now() is the limit, and there is data beyond it
    end_of_data,  // the data ended at or before the limit; now() is the last recorded time
    damaged,      // error() says where and why; what was read before it has been replayed
    interrupted,  // the stop flag was set; now() is a time at which every change has been applied
};

// How far a source has got.
struct SourcePosition {
    uint64_t bytes_read = 0;   // of the file as it lies on disk, compressed or not
    uint64_t bytes_total = 0;  // its length, 0 if that is not known (a pipe)
    Ticks last_time = 0;       // last time read, ticks
};

class Source {
  public:
    Source() = default;
    Source(const Source &) = delete;
    Source &operator=(const Source &) = delete;
    virtual ~Source() = default;

    // Reads the declarations into an empty `design`, its resolution included. False: error().
    virtual bool load(Design &design) = 0;

    // Applies every time step up to and including `limit` (ticks), each one finished in `kernel`
    // before the next begins and before the return. Pass the largest Ticks to read to the end. Once
    // `stop` is set it returns after the step it is in.
    virtual Progress advance_to(Kernel &kernel, Ticks limit, StopFlag stop) = 0;

    // Why the events cannot be replayed a second time, a whole sentence without its full stop;
    // empty: they can.
    virtual std::string rewind_obstacle() const = 0;

    // Goes back to before the first event, where nothing stands in the way, and gives the design
    // its first values again. False: error(), which advance_to tells then, too.
    virtual bool rewind(Design &design) = 0;

    // `file:line: expected X, got Y`, in a binary format with a byte and a section instead of the
    // line; empty while nothing has gone wrong.
    virtual const std::string &error() const = 0;

    // Whether the flag given to open_source has ended the reading: what would come is not known.
    virtual bool stopped() const = 0;

    virtual SourcePosition position() const = 0;

    // `listener` is called from inside load and advance_to about once a megabyte; empty: nobody.
    virtual void on_progress(std::function<void(const SourcePosition &)> listener) = 0;

    // `listener` is told, from inside load and advance_to, what of the waveform is passed over or
    // read otherwise than it stands: `file:line: text`. Empty: nobody.
    void on_warning(std::function<void(const std::string &)> listener) {
        listener_ = std::move(listener);
    }

  protected:
    void warn(const std::string &text) const {
        if (listener_) {
            listener_(text);
        }
    }

  private:
    std::function<void(const std::string &)> listener_;
};

// Opens the waveform at `path` ("-" is standard input), plain or compressed with gzip or bzip2; its
// format is recognised by its content, not its name. Null: `*error` is `file: expected X, got Y`.
// `stop_reading` ends the reading, inside a step if need be: the source is `interrupted` for good.
std::unique_ptr<Source> open_source(const std::string &path, std::string *error,
                                    StopFlag stop_reading = nullptr);

// The same for what has been opened already, from its first byte.
std::unique_ptr<Source> open_source(std::unique_ptr<Input> input, std::string *error);

}  // namespace wf

#endif
