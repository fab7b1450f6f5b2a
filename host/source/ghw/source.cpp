// SPDX-License-Identifier: Apache-2.0
// Replay: the hierarchy becomes the design, events go to the kernel.
#include "host/source/ghw/source.h"

#include <new>
#include <optional>
#include <utility>

#include "host/design/design.h"
#include "host/kernel/kernel.h"
#include "host/source/ghw/declare.h"
#include "host/source/ghw/events.h"
#include "host/source/ghw/header.h"
#include "host/source/ghw/ids.h"
#include "host/source/replay.h"

namespace wf::ghw {
namespace {

class ReplaySink : public ReplaySteps {
  public:
    using ReplaySteps::ReplaySteps;
    void byte(Slot slot, uint8_t value) { kernel_.set_byte(slot, value); }
    void word(Slot slot, int64_t value) { kernel_.set_word(slot, value); }
};

// Puts the values of time 0 where no process has looked yet.
class FirstValues {
  public:
    FirstValues(Design &design, Ticks *next_time)
        : values_(design.values()), next_time_(next_time) {}

    bool time(Ticks time) {
        *next_time_ = time;
        return false;
    }
    void byte(Slot slot, uint8_t value) { values_[slot] = value; }
    void word(Slot slot, int64_t value) { std::memcpy(values_ + slot, &value, sizeof value); }

  private:
    uint8_t *values_;
    Ticks *next_time_;
};

class GhwSource : public Source {
  public:
    GhwSource(std::unique_ptr<Input> input, std::size_t block) : tokens_(std::move(input), block) {}

    bool load(Design &design) override;
    Progress advance_to(Kernel &kernel, Ticks limit, StopFlag stop) override;
    std::string rewind_obstacle() const override { return tokens_.input().rewind_obstacle(); }
    bool rewind(Design &design) override;
    const std::string &error() const override { return state_.error; }
    bool stopped() const override { return tokens_.input().stopped(); }
    SourcePosition position() const override {
        const Input &input = tokens_.input();
        return {input.bytes_read(), input.bytes_total(), state_.last_time};
    }
    void on_progress(std::function<void(const SourcePosition &)> listener) override {
        if (!listener) {
            tokens_.on_block({});
            return;
        }
        tokens_.on_block([this, listener = std::move(listener)] { listener(position()); });
    }

  private:
    bool read_declarations(Design &design);
    void read_first_values(Design &design);

    Tokens tokens_;
    IdTable ids_;
    uint64_t first_event_ = 0;
    std::optional<Events> events_;  // once the declarations have been read
    bool is_damaged_at_start_ = false;
    ReplayState state_;
};

bool GhwSource::load(Design &design) {
    try {
        return read_declarations(design);
    } catch (const std::bad_alloc &) {
        tokens_.fault("a design that fits into memory", "a larger one");
        state_.error = tokens_.error();
        return false;
    }
}

// A file that is damaged at time 0 has a design and values all the same: advance_to tells of it.
bool GhwSource::read_declarations(Design &design) {
    Declarations declarations(design, ids_, tokens_);
    if (!read_header(tokens_, design.types, declarations)) {
        state_.error = tokens_.error();
        return false;
    }
    first_event_ = tokens_.place();
    read_first_values(design);
    return true;
}

void GhwSource::read_first_values(Design &design) {
    events_.emplace(tokens_, ids_);
    FirstValues sink(design, &state_.last_time);
    const EventsEnd end = events_->run(sink);
    state_.ended = end == EventsEnd::end_of_data;
    is_damaged_at_start_ = end == EventsEnd::damaged;
}

bool GhwSource::rewind(Design &design) {
    state_ = {};
    if (!tokens_.rewind_to(first_event_)) {
        tokens_.fault_here("to read the file again", tokens_.input().failure());
        state_.error = tokens_.error();
        return false;
    }
    design.reset_values();
    read_first_values(design);
    return true;
}

Progress GhwSource::advance_to(Kernel &kernel, Ticks limit, StopFlag stop) {
    if (!events_ || is_damaged_at_start_) {
        state_.error = tokens_.error();
        return Progress::damaged;
    }
    return replay<ReplaySink>(*events_, kernel, limit, stop, tokens_.input(), state_);
}

}  // namespace

std::unique_ptr<Source> make_source(std::unique_ptr<Input> input, std::size_t block) {
    return std::make_unique<GhwSource>(std::move(input), block);
}

bool recognise(std::string_view beginning) {
    return beginning.starts_with("GHDLwave\n");
}

}  // namespace wf::ghw
