// SPDX-License-Identifier: Apache-2.0
// Values as the simulators hand them out, against the letters that they stand for.
#include "host/source/vpi/values.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>
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

// Every width that ends inside, at and beyond eight characters, with something on either side that
// must stay as it is.
TEST(Values, VectorsOfEveryWidth) {
    std::mt19937 random(7);
    for (uint32_t width = 1; width <= 50; ++width) {
        for (const char *choice : {"01", "0101010101XZ"}) {
            std::string text;
            for (uint32_t i = 0; i < width; ++i) {
                text += choice[random() % std::string_view(choice).size()];
            }
            std::vector<uint8_t> bits(width + 2, 8);
            decode_text(text.c_str(), width, bits.data() + 1);
            ASSERT_EQ(shown(bits), "-" + text + "-");
        }
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
        {"0101010101z", 13, "XX0101010101Z"},
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
