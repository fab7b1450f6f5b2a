// SPDX-License-Identifier: Apache-2.0
// Scalar types: their codes, their widths, and what each value of theirs means.
#include "plugin/select/types.h"

#include "tests/plugin/recorder.h"

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using wf::Direction;
using wf::Type;
using wf::TypeTable;

namespace {

const Lines nine = {"'U'", "'X'", "'0'", "'1'", "'Z'", "'W'", "'L'", "'H'", "'-'"};
const char *const no_width = "Error (KLVA-PWR): Could not determine bitwidth";

// The nine literals with one of them replaced.
Lines nine_but(size_t position, const char *literal) {
    Lines literals = nine;
    literals[position] = literal;
    return literals;
}

Lines literals(int count) {
    Lines names;
    for (int i = 0; i < count; ++i) {
        names.push_back("s" + std::to_string(i));
    }
    return names;
}

TEST_F(Recorder, ClassifiesScalarTypesAndTheirWidths) {
    TypeTable &types = sim.types;
    const Lines invalid = {"Error (KLVA-PWR): Invalid scalar type",
                           "Error (KLVA-PWR): Could not determine bitwidth: Unsupported type"};
    const struct {
        const char *what;
        const Type *type;
        int32_t code;
        int32_t width;
        Lines messages;
    } rows[] = {
        {"std_logic", types.std_logic(), 0, 1, {}},
        {"nine, first differs", types.enumeration("e", nine_but(0, "'u'")), 3, 4, {}},
        {"nine, last differs", types.enumeration("e", nine_but(8, "'-")), 3, 4, {}},
        {"nine, a longer literal", types.enumeration("e", nine_but(4, "'Z' ")), 3, 4, {}},
        {"bit", types.bit(), 1, 1, {}},
        {"bit reversed", types.enumeration("e", {"'1'", "'0'"}), 3, 1, {}},
        {"bit without quotes", types.enumeration("e", {"0", "1"}), 3, 1, {}},
        {"boolean", types.boolean(), 3, 1, {}},
        {"tristate", types.enumeration("e", {"'0'", "'1'", "'Z'"}), 3, 2, {}},
        {"one literal", types.enumeration("e", literals(1)), 3, 1, {no_width}},
        {"4 literals", types.enumeration("e", literals(4)), 3, 2, {}},
        {"5 literals", types.enumeration("e", literals(5)), 3, 3, {}},
        {"8 literals", types.enumeration("e", literals(8)), 3, 3, {}},
        {"10 literals", types.enumeration("e", literals(10)), 3, 4, {}},
        {"0 to 255", types.integer("i", 0, 255), 2, 8, {}},
        {"0 to 256", types.integer("i", 0, 256), 2, 9, {}},
        {"0 to 0", types.integer("i", 0, 0), 2, 1, {no_width}},
        {"15 downto 0", types.integer("i", 15, 0, Direction::downto), 2, 1, {no_width}},
        {"15 downto 4", types.integer("i", 15, 4, Direction::downto), 2, 3, {}},
        {"-8 to -1", types.integer("i", -8, -1), 2, 32, {}},
        {"integer", types.integer("i", INT32_MIN, INT32_MAX), 2, 31, {}},
        {"real", types.real(), -1, 1, invalid},
        {"time", types.time(), -1, 1, invalid},
        {"physical", types.physical("p", 0, 5), -1, 1, invalid},
        {"array", types.array(types.bit(), 0, 3), -1, 1, invalid},
    };
    int number = 0;
    for (const auto &row : rows) {
        const std::string path = "/top/s" + std::to_string(number++);
        sim.signal(path, row.type);
        const mtiTypeIdT type = mti_GetSignalType(sim.handle(path));
        const int32_t code = mfli_get_scalar_signal_type(type);
        EXPECT_EQ(code, row.code) << row.what;
        EXPECT_EQ(mfli_get_scalar_signal_width(type, code), row.width) << row.what;
        EXPECT_THAT(sim.lines(), ElementsAreArray(row.messages)) << row.what;
    }
}

TEST_F(Recorder, MapsValuesToLogicStates) {
    const struct {
        int32_t code;
        int32_t value;
        Lines states;  // of bits 0, 1 and 31
    } rows[] = {
        {0, 0, {"X", "X", "X"}}, {0, 1, {"X", "X", "X"}},         {0, 2, {"0", "0", "0"}},
        {0, 3, {"1", "1", "1"}}, {0, 4, {"X", "X", "X"}},         {0, 5, {"X", "X", "X"}},
        {0, 6, {"X", "X", "X"}}, {0, 7, {"X", "X", "X"}},         {0, 8, {"X", "X", "X"}},
        {1, 0, {"0", "0", "0"}}, {1, 1, {"1", "1", "1"}},         {1, 2, {"1", "1", "1"}},
        {2, 0, {"0", "0", "0"}}, {2, 2, {"0", "1", "0"}},         {2, -1, {"1", "1", "1"}},
        {3, 1, {"1", "0", "0"}}, {2, INT32_MIN, {"0", "0", "1"}}, {3, 3, {"1", "1", "0"}},
    };
    for (const auto &row : rows) {
        Lines states;
        for (const int32_t bit : {0, 1, 31}) {
            const int32_t state = map_value_to_01x(row.code, row.value, bit);
            states.push_back(state == 0 ? "0" : state == 1 ? "1" : "X");
        }
        EXPECT_EQ(states, row.states) << row.code << ' ' << row.value;
    }
    EXPECT_THAT(sim.lines(), IsEmpty());
    mfli_message("the last message");
    EXPECT_EQ(map_value_to_01x(-1, 3, 0), 2);
    EXPECT_THAT(sim.lines(), ElementsAre("the last message", "the last message"));
}

}  // namespace
