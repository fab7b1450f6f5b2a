// SPDX-License-Identifier: Apache-2.0
// Replay: declarations become the design, events go to the kernel.
#include "host/source/vcd/source.h"

#include <algorithm>
#include <new>
#include <optional>
#include <utility>

#include "host/design/design.h"
#include "host/kernel/kernel.h"
#include "host/source/replay.h"
#include "host/source/vcd/declare.h"
#include "host/source/vcd/events.h"
#include "host/source/vcd/header.h"
#include "host/source/vcd/ids.h"

namespace wf::vcd {
namespace {

class ReplaySink : public ReplaySteps {
  public:
    using ReplaySteps::ReplaySteps;
    void bit(Slot slot, uint8_t value) { kernel_.set_byte(slot, value); }
    void bits(Slot first, const uint8_t *values, uint32_t count) {
        kernel_.set_bytes(first, values, count);
    }
    void real(Slot slot, double value) { kernel_.set_real(slot, value); }
};

class VcdSource : public Source {
  public:
    VcdSource(std::unique_ptr<Input> input, std::size_t block) : tokens_(std::move(input), block) {}

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
    void start_events();

    Tokens tokens_;
    IdTable ids_;
    Tokens::Place first_event_;
    std::optional<Events> events_;  // once the declarations have been read
    ReplayState state_;
};

bool VcdSource::load(Design &design) {
    try {
        return read_declarations(design);
    } catch (const std::bad_alloc &) {
        state_.error = tokens_.fault("a design that fits into memory", "a larger one");
        return false;
    }
}

bool VcdSource::read_declarations(Design &design) {
    Remarks remarks;
    if (!declare(tokens_, design, ids_, remarks, &state_.error)) {
        return false;
    }
    remarks.tell(tokens_.input().name(), [this](const std::string &text) { warn(text); });
    first_event_ = tokens_.place();
    start_events();
    return true;
}

bool VcdSource::rewind(Design &design) {
    state_ = {};
    if (!tokens_.rewind_to(first_event_)) {
        state_.error = tokens_.fault("to read the file again");
        return false;
    }
    start_events();
    design.reset_values();
    return true;
}

void VcdSource::start_events() {
    events_.emplace(tokens_, ids_, [this](const std::string &text) { warn(text); });
}

Progress VcdSource::advance_to(Kernel &kernel, Ticks limit, StopFlag stop) {
    return events_ ? replay<ReplaySink>(*events_, kernel, limit, stop, tokens_.input(), state_)
                   : Progress::damaged;
}

}  // namespace

std::unique_ptr<Source> make_source(std::unique_ptr<Input> input, std::size_t block) {
    return std::make_unique<VcdSource>(std::move(input), block);
}

// A section's keyword, after blanks: nothing else begins so.
bool recognise(std::string_view beginning) {
    const auto *first = std::find_if_not(beginning.begin(), beginning.end(), is_blank);
    return first != beginning.end() && *first == '$';
}

}  // namespace wf::vcd
