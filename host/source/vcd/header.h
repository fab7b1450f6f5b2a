// SPDX-License-Identifier: Apache-2.0
// The declarations of a VCD file, section by section, up to $enddefinitions. Reads and checks them,
// and hands each to a sink; what they mean for a design is the sink's business. A variable that
// cannot be shown is handed over as one to be ignored, since its values will come.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/design/region.h"
#include "host/source/remarks.h"
#include "host/source/variables.h"
#include "host/source/vcd/tokens.h"

namespace wf::vcd {

// One $var section.
struct Variable : wf::Variable {
    std::string_view code;  // the identifier code
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

// Reads to the end of $enddefinitions; what of it is not read as it stands goes to `remarks`.
// False:
// `*error` is `file:line: expected X, got Y`.
bool read_header(Tokens &tokens, HeaderSink &sink, Remarks &remarks, std::string *error);

}  // namespace wf::vcd
