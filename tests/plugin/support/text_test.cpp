// SPDX-License-Identifier: Apache-2.0
// Names taken apart and put together: tables of input and exact result.
#include "plugin/support/text.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

// The text, or "null"; releases it.
std::string take(char *text) {
    std::string taken = text == nullptr ? "null" : text;
    free(text);
    return taken;
}

TEST(Text, SplitsAtTheLastSeparator) {
    const struct {
        const char *full, *path, *leaf;
    } rows[] = {
        {"/top/u1", "/top", "u1"},        {"/top/u1/", "/top", "u1/"}, {"a/b", "a", "b"},
        {"/top", nullptr, nullptr},       {"top", nullptr, nullptr},   {"top/", nullptr, nullptr},
        {"/", nullptr, nullptr},          {"//", nullptr, nullptr},    {"", nullptr, nullptr},
        {nullptr, nullptr, nullptr},      {"a//", "a", "/"},           {"/a//b", "/a/", "b"},
        {"t/u/m(3)(1)", "t/u", "m(3)(1)"}};
    for (const auto &row : rows) {
        char untouched[] = "untouched";
        char *path = untouched;
        char *leaf = untouched;
        const int split = mfli_split_path_and_name(row.full, &path, &leaf);
        EXPECT_EQ(split, row.path != nullptr ? 1 : 0) << (row.full == nullptr ? "" : row.full);
        if (split == 0) {
            EXPECT_EQ(path, untouched);
            EXPECT_EQ(leaf, untouched);
            continue;
        }
        EXPECT_EQ(take(path), row.path);
        EXPECT_EQ(take(leaf), row.leaf);
    }
}

TEST(Text, SplitsAndAddsIndices) {
    const struct {
        const char *name, *base, *index;
    } rows[] = {{"bus(3)(1)", "bus", "(3)(1)"},
                {"bus", "bus", "null"},
                {"(2)", "", "(2)"},
                {"a(", "a", "("},
                {"", "", "null"}};
    for (const auto &row : rows) {
        char *base = nullptr;
        char *index = nullptr;
        mfli_split_name_and_index(row.name, &base, &index);
        EXPECT_EQ(take(base), row.base);
        EXPECT_EQ(take(index), row.index);
    }
    EXPECT_EQ(take(convert_index_to_string(INT32_MIN)), "(-2147483648)");
    EXPECT_EQ(take(mfli_add_index_to_name("bus(1)", 0)), "bus(1)(0)");
    EXPECT_EQ(take(mfli_add_index_to_name("", -7)), "(-7)");
}

TEST(Text, RegionsContainWhateverBeginsWithTheirName) {
    const struct {
        const char *name, *region;
        int inside;
    } rows[] = {{"/top/u10/x", "/top/u1", 1}, {"/top", "/top", 1},
                {"/top", "/top/u1", 0},       {"/top", "", 0},
                {"/top", nullptr, 0},         {"/tb/top", "/top", 0}};
    for (const auto &row : rows) {
        EXPECT_EQ(mfli_first_in_second_region(row.name, row.region), row.inside) << row.name;
    }
}

}  // namespace
