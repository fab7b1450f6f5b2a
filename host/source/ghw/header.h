// SPDX-License-Identifier: Apache-2.0
// The sections of a GHW file up to its events: strings, types and the hierarchy. Reads and checks
// them, and hands scopes and signals to a sink; what they mean for a design is the sink's business.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "host/design/region.h"
#include "host/design/signal.h"
#include "host/source/ghw/tokens.h"
#include "host/source/ghw/types.h"

namespace wf::ghw {

// One signal or port. Everything is good until the sink returns.
struct SignalEntry {
    std::string_view name;
    const Type *type = nullptr;
    Mode mode = Mode::internal;
    // The file's number of each scalar in it, from the left; counted from 1. Signals that are one
    // and the same have the same numbers.
    std::vector<uint32_t> leaves;
};

class HeaderSink {
  public:
    virtual ~HeaderSink() = default;
    // One tick is ten to this power of seconds.
    virtual void resolution(int exponent) = 0;
    virtual void open_scope(RegionKind kind, std::string_view name) = 0;
    virtual void close_scope() = 0;
    // False: the sink cannot take it and has said so to the tokens.
    virtual bool signal(const SignalEntry &signal) = 0;
    // All has been declared; the file has values for the leaves 1 to `leaves`. False as above.
    virtual bool finish(uint32_t leaves) = 0;
};

// Makes the file's types in `table` and reads to the end of the header. False: tokens.error().
bool read_header(Tokens &tokens, TypeTable &table, HeaderSink &sink);

}  // namespace wf::ghw
