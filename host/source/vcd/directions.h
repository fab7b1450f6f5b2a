// SPDX-License-Identifier: Apache-2.0
// Which way the ports of an extended VCD file go. Its declarations do not say; the letter of a
// port's state says from which side it is driven at that time, so the first states are looked at
// before any is taken:
//
//     D U N Z d u    from outside: in
//     L H X T l h    from inside: out
//     any other, or bits of a port that differ, or no state: inout
//
// So an inout that is driven from one side at first is taken for an in or an out.
#pragma once

#include <vector>

#include "host/design/signal.h"
#include "host/source/vcd/ids.h"
#include "host/source/vcd/tokens.h"

namespace wf::vcd {

// The modes of the codes in `ids` by their numbers. `tokens` stands behind the declarations and
// stays there; it is read to the second time at most, and no further than a megabyte.
std::vector<Mode> read_port_modes(Tokens &tokens, IdTable &ids);

}  // namespace wf::vcd
