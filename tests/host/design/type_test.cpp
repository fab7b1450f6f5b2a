// SPDX-License-Identifier: Apache-2.0
// Types: sizes, lengths, positions, and values as text.
#include "host/design/type.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstring>

#include "host/design/value_text.h"

namespace wf {
namespace {

std::vector<std::string> literals(int count) {
    std::vector<std::string> names;
    names.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        names.push_back("s" + std::to_string(i));
    }
    return names;
}

TEST(Types, HaveTheSizeAndTheLengthOfTheirObjects) {
    TypeTable types;
    const Type *bits = types.array(types.std_logic(), 7, 0);
    const Type *mixed = types.record(
        "mixed", {{"flag", types.bit()}, {"count", types.integer("n", 0, 9)}, {"bus", bits}});
    const struct {
        const Type *type;
        Slot slots;
        int32_t left, right;
        Direction direction;
        int64_t length;
    } rows[] = {
        {types.std_logic(), 1, 0, 8, Direction::to, 9},
        {types.enumeration("e256", literals(256)), 1, 0, 255, Direction::to, 256},
        {types.enumeration("e257", literals(257)), 8, 0, 256, Direction::to, 257},
        {types.integer("down", 15, 0, Direction::downto), 8, 15, 0, Direction::downto, 16},
        {types.integer("all", INT32_MIN, INT32_MAX), 8, INT32_MIN, INT32_MAX, Direction::to,
         int64_t{1} << 32},
        {types.integer("null", 1, 0), 8, 1, 0, Direction::to, 0},
        {types.physical("ohm", 0, 100), 8, 0, 100, Direction::to, 0},
        {types.real(), 8, 0, 0, Direction::none, 0},
        {types.time(), 8, 0, 0, Direction::none, 0},
        {bits, 8, 7, 0, Direction::downto, 8},
        {types.array(bits, -1, 2), 32, -1, 2, Direction::to, 4},
        {types.array(types.bit(), 0, 1, Direction::downto), 0, 0, 1, Direction::downto, 0},
        {mixed, 17, 0, 0, Direction::none, 3},
        {types.array(mixed, 0, 1), 34, 0, 1, Direction::to, 2},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.type->name + " " + std::to_string(row.left));
        EXPECT_EQ(row.type->slots, row.slots);
        EXPECT_EQ(row.type->length, row.length);
        EXPECT_EQ(row.type->left, row.left);
        EXPECT_EQ(row.type->right, row.right);
        EXPECT_EQ(row.type->direction, row.direction);
        EXPECT_TRUE(types.contains(row.type));
    }
    EXPECT_EQ(mixed->element_offset(2), 9U);
    EXPECT_EQ(types.array(types.std_logic(), 7, 0), bits) << "one array type, one object";
    EXPECT_EQ(types.array(types.std_logic(), INT32_MIN, INT32_MAX), nullptr);
    EXPECT_FALSE(types.contains(&types));
    EXPECT_FALSE(types.contains(reinterpret_cast<const char *>(bits) + 1));
}

TEST(Types, TurnIndicesIntoPositionsAndBack) {
    TypeTable types;
    const Type *down = types.array(types.bit(), 7, 4);
    const Type *up = types.array(types.bit(), -2, 1);
    const struct {
        const Type *type;
        int64_t index, position;
    } rows[] = {{down, 7, 0}, {down, 4, 3}, {down, 8, -1}, {down, 3, -1},
                {up, -2, 0},  {up, 1, 3},   {up, 2, -1},   {up, -3, -1}};
    for (const auto &row : rows) {
        EXPECT_EQ(row.type->position_of(row.index), row.position) << row.index;
        if (row.position >= 0) {
            EXPECT_EQ(row.type->index_of(static_cast<uint32_t>(row.position)), row.index);
        }
    }
}

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
