// SPDX-License-Identifier: Apache-2.0
// Texts from a file, fit to stand in a message.
#pragma once

#include <string>
#include <string_view>

namespace wf {

// `'text'`: cut when long, unprintable bytes as \x07.
std::string quoted(std::string_view text);

}  // namespace wf
