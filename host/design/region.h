// SPDX-License-Identifier: Apache-2.0
// The record behind a region's handle: one level of the design's hierarchy with its children and
// its signals. Only Design changes it.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "host/design/name_index.h"
#include "host/design/signal.h"

namespace wf {

enum class RegionKind : uint8_t {
    module,       // a Verilog module's instance; also a scope of a kind that nobody knows
    program,      // a SystemVerilog program or interface
    interface,    //
    instance,     // a VHDL component's instance (its architecture)
    block,        // a VHDL block statement
    generate,     // a generate block or statement, one of its copies
    record,       // the scope of a struct, union or class
    named_block,  // begin or fork with a name
    process,
    package,
    task,
    function,
    statement  // any other scope that holds no signals of the design itself
};

struct Region {
    Region *parent;  // null: one of the design's roots
    char *name;      // as in the source of the design, odd characters included
    std::vector<Region *> children;
    std::vector<Signal *> signals;  // those declared here and those listed as aliases
    // Names that differ from the listed signal's own: (position in `signals`, name).
    std::vector<std::pair<uint32_t, char *>> alias_names;
    std::unique_ptr<NameIndex> child_index;  // built at the first look-up
    std::unique_ptr<NameIndex> signal_index;
    uint32_t position;  // among the parent's children, or among the roots
    RegionKind kind;
    bool has_odd_names = false;  // the name of a child or a signal contains a '/'
};

}  // namespace wf
