// SPDX-License-Identifier: Apache-2.0
// From the declarations of a VCD file to a design, and to the table of identifier codes.
#pragma once

#include <string_view>

#include "host/design/design.h"
#include "host/source/variables.h"
#include "host/source/vcd/header.h"
#include "host/source/vcd/ids.h"

namespace wf::vcd {

class Declarations : public HeaderSink {
  public:
    // Fills `design` and `ids`, which outlive this object.
    Declarations(Design &design, IdTable &ids) : design_(design), ids_(ids), variables_(design) {}

    void resolution(int exponent) override { design_.resolution_exponent = exponent; }
    void open_scope(RegionKind kind, std::string_view name) override {
        variables_.open_scope(kind, name);
    }
    void close_scope() override { variables_.close_scope(); }
    void variable(const Variable &variable) override {
        variables_.add(variable, ids_.number(variable.code));
    }

    // Makes the signals, once all is declared. False: the design is too large for its storage.
    bool finish();

  private:
    Design &design_;
    IdTable &ids_;
    Variables variables_;
};

}  // namespace wf::vcd
