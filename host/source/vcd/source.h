// SPDX-License-Identifier: Apache-2.0
// The VCD file as a source: reader of the declarations into the design, reader of the events into
// the kernel.
#pragma once

#include <memory>

#include "host/source/input.h"
#include "host/source/source.h"
#include "host/source/vcd/tokens.h"

namespace wf::vcd {

// A source over the (uncompressed) text of a VCD file. A file without $timescale counts in
// nanoseconds. When the text is damaged inside a time step, the changes of that step that stand
// before the damage take effect. `block` is the size of the buffer in bytes.
std::unique_ptr<Source> make_source(std::unique_ptr<Input> input,
                                    std::size_t block = Tokens::default_block);

// Whether a file that begins with these bytes is a VCD file.
bool recognise(std::string_view beginning);

}  // namespace wf::vcd
