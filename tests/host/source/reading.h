// SPDX-License-Identifier: Apache-2.0
// What a waveform's reading gives, as lists of lines that tests compare, and the sink that any
// reader can tell its events to.
#pragma once

#include <cstdint>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "host/design/design.h"
#include "host/source/source.h"

namespace wf::test {

struct Reading {
    std::vector<std::string> design;  // a line for each region and each signal, "@" its first slot
    std::vector<std::string> events;  // "#10", "3=1", "4=01XZ", "8=1.5", "11=-4": slot = value
    std::vector<std::string> warnings;
    int resolution = 0;
    std::string error;  // of either half
    bool loaded = false;
};

// An event outside the design's storage throws.
class ListSink {
  public:
    ListSink(Reading &reading, Slot slots) : events_(reading.events), slots_(slots) {}

    bool time(Ticks time) {
        events_.push_back("#" + std::to_string(time));
        return true;
    }
    void bit(Slot slot, uint8_t value) { bits(slot, &value, 1); }
    void bits(Slot first, const uint8_t *values, uint32_t count) {
        std::string text;
        for (uint32_t i = 0; i < count; ++i) {
            text += std::string_view("UX01ZWLH-").at(values[i]);
        }
        add(first, count, text);
    }
    void real(Slot slot, double value) {
        std::ostringstream text;
        text << value;
        add(slot, 8, text.str());
    }
    void byte(Slot slot, uint8_t value) { add(slot, 1, std::to_string(value)); }
    void word(Slot slot, int64_t value) { add(slot, 8, std::to_string(value)); }

  private:
    void add(Slot first, uint32_t count, const std::string &value) {
        if (uint64_t{first} + count > slots_) {
            throw std::out_of_range("an event outside the storage");
        }
        events_.push_back(std::to_string(first) + "=" + value);
    }

    std::vector<std::string> &events_;
    Slot slots_;
};

}  // namespace wf::test
