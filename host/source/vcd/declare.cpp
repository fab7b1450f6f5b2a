// SPDX-License-Identifier: Apache-2.0
// What is left once the variables are signals: the table of codes.
#include "host/source/vcd/declare.h"

namespace wf::vcd {

bool Declarations::finish() {
    if (!variables_.finish(ids_.count())) {
        return false;
    }
    ids_.freeze(variables_.targets(), variables_.take_extra());
    return true;
}

}  // namespace wf::vcd
