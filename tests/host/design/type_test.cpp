// SPDX-License-Identifier: Apache-2.0
// Values as text.
#include "host/design/value_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstring>

namespace wf {
namespace {

TEST(ValueText, ReadsBackWhatItWrites) {
    TypeTable types;
    const Type *state = types.enumeration("state", {"idle", "busy"});
    const struct {
        const Type *type;
        const char *written;
        std::optional<int64_t> value;
        const char *read;
    } rows[] = {
        {types.std_logic(), "Z", 4, "Z"},
        {types.std_logic(), "'Z'", 4, "Z"},
        {types.std_logic(), "z", std::nullopt, nullptr},
        {state, "busy", 1, "busy"},
        {state, "asleep", std::nullopt, nullptr},
        {types.integer("n", -9, 9), "-7", -7, "-7"},
        {types.integer("n", -9, 9), "7x", std::nullopt, nullptr},
        {types.real(), "2.5", std::bit_cast<int64_t>(2.5), "2.5"},
        {types.time(), "5000000000", 5000000000, "5000000000"},
        {types.array(types.bit(), 0, 1), "01", std::nullopt, nullptr},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.written);
        const auto value = parse_scalar(*row.type, row.written);
        ASSERT_EQ(value, row.value);
        if (value) {
            uint8_t bytes[8];
            std::memcpy(bytes, &*value, sizeof bytes);
            EXPECT_EQ(value_text(*row.type, bytes), row.read);
        }
    }
    const Type *record =
        types.record("r", {{"bus", types.array(types.std_logic(), 1, 0)}, {"state", state}});
    const uint8_t bytes[] = {2, 4, 1, 3, 8, 0};
    EXPECT_EQ(value_text(*types.array(record, 0, 1), bytes), "{{0Z busy} {1- idle}}");
    const uint8_t beyond = 7;
    EXPECT_EQ(value_text(*state, &beyond), "?");
}

}  // namespace
}  // namespace wf
