// SPDX-License-Identifier: Apache-2.0
// Values as the simulators hand them out, against the letters that they stand for.
#include "host/source/vpi/values.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace wf::vpi {
namespace {

constexpr char letters[] = "UX01ZWLH-";

std::string shown(const std::vector<uint8_t> &bits) {
    std::string text;
    for (const uint8_t bit : bits) {
        text += bit < 9 ? letters[bit] : '?';
    }
    return text;
}

// The words that a simulator would hand out for these letters.
std::vector<s_vpi_vecval> words_of(const std::string &text) {
    std::vector<s_vpi_vecval> words((text.size() + 31) / 32, {0, 0});
    for (size_t bit = 0; bit < text.size(); ++bit) {
        const char letter = text[text.size() - 1 - bit];
        const auto place = static_cast<unsigned>(bit % 32);
        words[bit / 32].aval |= PLI_UINT32{letter == '1' || letter == 'X'} << place;
        words[bit / 32].bval |= PLI_UINT32{letter == 'Z' || letter == 'X'} << place;
    }
    return words;
}

TEST(Values, Scalars) {
    std::vector<uint8_t> bits;
    for (const PLI_INT32 scalar : {0, 1, 2, 3, 4, 5, -1}) {
        bits.push_back(decode_scalar(scalar));
    }
    EXPECT_EQ(shown(bits), "01ZXXXX");
}

// Every width that ends inside, at and beyond a byte or a word, with something on either side that
// must stay as it is; the unused bits of the last word are set.
TEST(Values, VectorsOfEveryWidth) {
    std::mt19937 random(7);
    for (uint32_t width = 1; width <= 130; ++width) {
        std::string text;
        for (uint32_t i = 0; i < width; ++i) {
            text += "01XZ"[random() % 4];
        }
        std::vector<s_vpi_vecval> words = words_of(text);
        if (width % 32 != 0) {
            words.back().aval |= ~PLI_UINT32{0} << width % 32;
            words.back().bval |= ~PLI_UINT32{0} << width % 32;
        }
        std::vector<uint8_t> bits(width + 2, 8);
        decode_vector(words.data(), width, bits.data() + 1);
        ASSERT_EQ(shown(bits), "-" + text + "-") << width;
    }
}

TEST(Values, Texts) {
    struct Row {
        const char *text;
        uint32_t width;
        const char *expected;
    };
    const Row rows[] = {
        {"UX01ZWLH-", 9, "UX01ZWLH-"},
        {"ux01zwlh", 8, "UX01ZWLH"},
        {"1?#", 3, "1XX"},
        {"01", 4, "XX01"},
        {"0011", 2, "11"},
        {"", 2, "XX"},
    };
    for (const Row &row : rows) {
        std::vector<uint8_t> bits(row.width);
        decode_text(row.text, row.width, bits.data());
        EXPECT_EQ(shown(bits), row.expected) << row.text;
    }
}

}  // namespace
}  // namespace wf::vpi
