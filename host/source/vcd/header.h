// SPDX-License-Identifier: Apache-2.0
// The declarations of a VCD file, section by section, up to $enddefinitions. Reads and checks them,
// and hands each to a sink; what they mean for a design is the sink's business.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/design/region.h"
#include "host/source/vcd/tokens.h"

namespace wf::vcd {

// What becomes of a variable.
enum class VariableUse : uint8_t {
    bits,    // nets, variables and integers of any kind: a value of bits
    port,    // the same, in the dump of a module's ports
    real,    // a number
    ignored  // events, parameters and strings: no state that can toggle
};

// One $var section. The texts are good until the sink returns.
struct Variable {
    VariableUse use = VariableUse::bits;
    bool has_range = false;  // [left:right] was given
    bool has_index = false;  // [left] was given: one bit of a vector
    int32_t left = 0;
    int32_t right = 0;
    uint32_t width = 0;     // bits, 1 to max_width; of a real or an ignored one what stood there
    int32_t word = 0;       // the index that ends the name of a memory's word
    std::string_view code;  // the identifier code
    std::string_view name;  // with a word's index; without an escaped name's backslash, with an
                            // extended one's two
    std::string_view base;  // shorter than the name when that may be a memory's word
};

class HeaderSink {
  public:
    virtual ~HeaderSink() = default;
    // One tick is ten to this power of seconds.
    virtual void resolution(int exponent) = 0;
    virtual void open_scope(RegionKind kind, std::string_view name) = 0;
    virtual void close_scope() = 0;
    virtual void variable(const Variable &variable) = 0;
};

// Reads to the end of $enddefinitions. False: `*error` is `file:line: expected X, got Y`.
bool read_header(Tokens &tokens, HeaderSink &sink, std::string *error);

}  // namespace wf::vcd
