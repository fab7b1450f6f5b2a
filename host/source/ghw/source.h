// SPDX-License-Identifier: Apache-2.0
// The GHW file as a source: reader of the header into the design, reader of the events into the
// kernel.
#pragma once

#include <memory>

#include "host/source/ghw/tokens.h"
#include "host/source/input.h"
#include "host/source/source.h"

namespace wf::ghw {

// A source over the (uncompressed) bytes of a GHW file. What the file holds for time 0, the delta
// cycles of that time included, is there when the design has been loaded: a signal's first value
// is no event. When the file is damaged inside a time step, the changes of that step that stand
// before the damage take effect. `block` is the size of the buffer in bytes.
std::unique_ptr<Source> make_source(std::unique_ptr<Input> input,
                                    std::size_t block = Tokens::default_block);

// Whether a file that begins with these bytes is a GHW file.
bool recognise(std::string_view beginning);

}  // namespace wf::ghw
