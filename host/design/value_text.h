// SPDX-License-Identifier: Apache-2.0
// Values as people read and write them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/design/type.h"

namespace wf {

// The value of an object whose storage begins at `bytes`: 0101 for an array of character literals,
// idle, 42, 2.5, {0 idle 7} for a record or another array.
std::string value_text(const Type &type, const uint8_t *bytes);

// Reads a scalar's value: a literal (with or without its quotes), or a number. Nothing when the
// type has no such value. A real is answered as the bits of its double.
std::optional<int64_t> parse_scalar(const Type &type, std::string_view text);

}  // namespace wf
