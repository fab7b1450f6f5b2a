// SPDX-License-Identifier: Apache-2.0
// Eight bits of a vector at a time, by a table.
#include "host/source/vpi/values.h"

#include <array>
#include <bit>
#include <cstring>

namespace wf::vpi {
namespace {

// Bytes 0 or 1 from the bits of a byte, the highest first in memory.
constexpr std::array<uint64_t, 256> make_spread() {
    std::array<uint64_t, 256> spread{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        for (unsigned bit = 0; bit < 8; ++bit) {
            spread[byte] |= uint64_t{byte >> bit & 1U} << (8 * (7 - bit));
        }
    }
    return spread;
}
constexpr std::array<uint64_t, 256> spread = make_spread();
constexpr uint64_t ones = 0x0101010101010101U;
static_assert(std::endian::native == std::endian::little);

// Of (aval, bval): 00 -> 2, 10 -> 3, 01 -> 4, 11 -> 1. For each pair of bits, the position is
// 2 + a + 2b - 4ab.
constexpr uint64_t positions(uint64_t a, uint64_t b) {
    return ones * logic_0 + a + 2 * b - 4 * (a & b);
}

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

uint64_t eight(const s_vpi_vecval &word, unsigned shift) {
    return positions(spread[word.aval >> shift & 0xffU], spread[word.bval >> shift & 0xffU]);
}

}  // namespace

uint8_t decode_scalar(PLI_INT32 scalar) {
    constexpr uint8_t by_number[] = {logic_0, logic_1, logic_z, logic_x};
    return scalar >= 0 && scalar < 4 ? by_number[scalar] : logic_x;
}

void decode_vector(const s_vpi_vecval *words, uint32_t width, uint8_t *out) {
    uint32_t bit = 0;
    for (; bit + 8 <= width; bit += 8) {
        const uint64_t values = eight(words[bit / 32], bit % 32);
        std::memcpy(out + (width - bit - 8), &values, 8);
    }
    const uint32_t rest = width - bit;
    if (rest != 0) {
        const uint64_t values = eight(words[bit / 32], bit % 32) >> (8 * (8 - rest));
        std::memcpy(out, &values, rest);
    }
}

void decode_text(const char *text, uint32_t width, uint8_t *out) {
    const size_t length = std::strlen(text);
    if (length > width) {
        text += length - width;
    }
    const uint32_t missing = length < width ? width - static_cast<uint32_t>(length) : 0;
    std::memset(out, logic_x, missing);
    for (uint32_t i = missing; i < width; ++i) {
        out[i] = letters[static_cast<uint8_t>(text[i - missing])];
    }
}

}  // namespace wf::vpi
