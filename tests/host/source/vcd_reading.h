// SPDX-License-Identifier: Apache-2.0
// A VCD text read into lists of lines, for tests that compare them: the design that its
// declarations make, and its events one by one.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/design/design.h"
#include "host/source/vcd/tokens.h"
#include "tests/host/source/reading.h"

namespace wf::test {

// Its design has lines such as "/top module", "  bus(7:0) @3", "  mem(0:3)(7:0) @11",
// "  r real @19", "  p inout @27".
using VcdReading = Reading;

// Reads `text` under the name t.vcd through a buffer of `block` bytes that is filled in pieces of
// at most `piece`.
VcdReading read_vcd(const std::string &text, std::size_t block = vcd::Tokens::default_block,
                    std::size_t piece = SIZE_MAX);

// What a line shows of a signal between its name and its slot; this one as for read_vcd.
using SignalText = std::string (*)(Design &, const Signal *);
std::string vcd_signal_text(Design &design, const Signal *signal);

// A line for each region and each signal.
std::vector<std::string> describe(Design &design, SignalText text = vcd_signal_text);

// The content of tests/data/NAME, which must exist.
std::string data_file(std::string_view name);
std::string data_path(std::string_view name);

std::string gzipped(const std::string &text);
std::string bzipped(const std::string &text);

// A file of that content in the test's temporary folder.
std::string temporary_file(const std::string &name, const std::string &content);

}  // namespace wf::test
