// SPDX-License-Identifier: Apache-2.0
// Eight characters at a time as long as they are 0 and 1.
#include "host/source/vpi/values.h"

#include <array>
#include <bit>
#include <cstring>

namespace wf::vpi {
namespace {

constexpr uint64_t ones = 0x0101010101010101U;
static_assert(std::endian::native == std::endian::little);

constexpr std::array<uint8_t, 256> make_letters() {
    std::array<uint8_t, 256> letters{};
    letters.fill(logic_x);
    constexpr char upper[] = "UX01ZWLH-";
    constexpr char lower[] = "ux01zwlh-";
    for (uint8_t position = 0; position < 9; ++position) {
        letters[static_cast<uint8_t>(upper[position])] = position;
        letters[static_cast<uint8_t>(lower[position])] = position;
    }
    return letters;
}
constexpr std::array<uint8_t, 256> letters = make_letters();

void decode_letters(const char *text, uint32_t count, uint8_t *out) {
    for (uint32_t i = 0; i < count; ++i) {
        out[i] = letters[static_cast<uint8_t>(text[i])];
    }
}

}  // namespace

uint8_t decode_scalar(PLI_INT32 scalar) {
    constexpr uint8_t by_number[] = {logic_0, logic_1, logic_z, logic_x};
    return scalar >= 0 && scalar < 4 ? by_number[scalar] : logic_x;
}

void decode_text(const char *text, uint32_t width, uint8_t *out) {
    const size_t length = std::strlen(text);
    if (length > width) {
        text += length - width;
    }
    const uint32_t missing = length < width ? width - static_cast<uint32_t>(length) : 0;
    std::memset(out, logic_x, missing);
    out += missing;
    uint32_t left = width - missing;
    // The characters 0 and 1 differ from the positions of '0' and '1' in the same bits.
    for (; left >= 8; left -= 8, text += 8, out += 8) {
        uint64_t word;
        std::memcpy(&word, text, sizeof word);
        const uint64_t levels = word ^ ones * '0';
        if ((levels & ~ones) != 0) {
            decode_letters(text, 8, out);
            continue;
        }
        word = levels + ones * logic_0;
        std::memcpy(out, &word, sizeof word);
    }
    decode_letters(text, left, out);
}

}  // namespace wf::vpi
