// SPDX-License-Identifier: Apache-2.0
// Shortens and escapes.
#include "host/source/quoted.h"

namespace wf {

std::string quoted(std::string_view text) {
    constexpr std::size_t shown = 40;
    std::string result = "'";
    for (const char character : text.substr(0, shown)) {
        if (character > ' ' && character < 0x7f) {
            result += character;
        } else {
            constexpr char digits[] = "0123456789abcdef";
            const auto byte = static_cast<unsigned char>(character);
            result += {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
        }
    }
    return result + (text.size() > shown ? "...'" : "'");
}

}  // namespace wf
