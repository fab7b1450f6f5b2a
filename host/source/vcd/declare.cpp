// SPDX-License-Identifier: Apache-2.0
// What is left once the variables are signals: the table of codes.
#include "host/source/vcd/declare.h"

#include "host/source/vcd/directions.h"

namespace wf::vcd {

bool Declarations::finish(Tokens &tokens) {
    if (has_ports_) {
        variables_.set_modes(read_port_modes(tokens, ids_));
    }
    if (!variables_.finish(ids_.count())) {
        return false;
    }
    ids_.freeze(variables_.targets(), variables_.take_extra());
    return true;
}

bool declare(Tokens &tokens, Design &design, IdTable &ids, Remarks &remarks, std::string *error) {
    Declarations declarations(design, ids, remarks);
    if (!read_header(tokens, declarations, remarks, error)) {
        return false;
    }
    if (!declarations.finish(tokens)) {
        *error =
            tokens.fault_at(tokens.cursor(), "a design of at most 4294967294 bits", "a larger one");
        return false;
    }
    return true;
}

}  // namespace wf::vcd
