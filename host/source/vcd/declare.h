// SPDX-License-Identifier: Apache-2.0
// From the declarations of a VCD file to a design, and to the table of identifier codes.
#pragma once

#include <string>
#include <string_view>

#include "host/design/design.h"
#include "host/source/variables.h"
#include "host/source/vcd/header.h"
#include "host/source/vcd/ids.h"

namespace wf::vcd {

class Declarations : public HeaderSink {
  public:
    // Fills `design` and `ids`; what is passed over goes to `remarks`. All outlive this object.
    Declarations(Design &design, IdTable &ids, Remarks &remarks)
        : design_(design), ids_(ids), variables_(design, remarks) {}

    void resolution(int exponent) override { design_.resolution_exponent = exponent; }
    void open_scope(RegionKind kind, std::string_view name) override {
        variables_.open_scope(kind, name);
    }
    void close_scope() override { variables_.close_scope(); }
    void variable(const Variable &variable) override {
        variables_.add(variable, ids_.number(variable.code));
        has_ports_ = has_ports_ || variable.use == VariableUse::port;
    }

    // Makes the signals, once all is declared; `tokens` stands behind that. False: the design is
    // too large for its storage.
    bool finish(Tokens &tokens);

  private:
    Design &design_;
    IdTable &ids_;
    Variables variables_;
    bool has_ports_ = false;
};

// Reads the declarations of a file into `design` and `ids`. False: `*error` is `file:line: expected
// X, got Y`.
bool declare(Tokens &tokens, Design &design, IdTable &ids, Remarks &remarks, std::string *error);

}  // namespace wf::vcd
