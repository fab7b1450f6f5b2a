// SPDX-License-Identifier: Apache-2.0
// Names of signals and elements, and the way back.
#include "plugin/select/names.h"

#include "tests/plugin/recorder.h"

#include <cstdlib>

using ::testing::ElementsAreArray;
using wf::Direction;
using wf::Type;

namespace {

std::string taken(char *text) {
    std::string copy = text;
    free(text);
    return copy;
}

class Names : public Recorder {
  protected:
    Names() {
        const Type *logic = sim.types.std_logic();
        sim.signal("/top/u1/clk", logic);
        sim.signal("/top/bus", sim.types.array(logic, 7, 0));
        sim.signal("/top/up", sim.types.array(logic, -2, 5));
        sim.signal("/top/far", sim.types.array(logic, INT32_MAX - 1, INT32_MAX));
        sim.signal("/top/mem", sim.types.array(sim.types.array(logic, 3, 0), 0, 1));
        const Type *record =
            sim.types.record("r", {{"f", logic}, {"g", sim.types.array(logic, 0, 2)}});
        sim.signal("/top/rec", record);
    }
};

TEST_F(Names, AreFullInTheirRegion) {
    const mtiRegionIdT top = sim.region_handle("/top");
    EXPECT_EQ(taken(mfli_get_signal_full_name(sim.handle("/top/u1/clk"))), "/top/u1/clk");
    EXPECT_EQ(taken(mfli_get_signal_full_name(sim.handle("/top/bus(3)"))), "/top/bus");
    for (const char *name : {"/top/bus(3)", "/top/mem(1)(2)", "/top/rec.g(0)"}) {
        EXPECT_EQ(taken(mfli_get_signal_full_name_indirect(sim.handle(name), top)), name);
    }
    EXPECT_EQ(taken(mfli_get_signal_full_name_indirect(sim.handle("/top/bus(3)"),
                                                       sim.region_handle("/top/u1"))),
              "/top/u1/bus(3)");
    // The path is the simulator's, the indices are the user's.
    EXPECT_EQ(taken(mfli_get_signal_full_indexed_name(sim.handle("/top/bus(3)"), "any(3)(x")),
              "/top/bus(3)(x");
    EXPECT_EQ(taken(mfli_get_signal_full_indexed_name(sim.handle("/top/bus"), "top/bus")),
              "/top/bus");
}

TEST_F(Names, HaveIndicesThatGivePositions) {
    const struct {
        const char *array;
        int64_t index;
        int64_t position;
    } rows[] = {
        {"/top/bus", 7, 0},  {"/top/bus", 0, 7},  {"/top/bus", 8, -1},
        {"/top/bus", -1, 8}, {"/top/up", -2, 0},  {"/top/up", 5, 7},
        {"/top/up", -3, -1}, {"/top/rec", 0, -1}, {"/top/mem", 1, 1},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(convert_index_to_position(mti_GetSignalType(sim.handle(row.array)), row.index),
                  row.position)
            << row.array << ' ' << row.index;
    }
}

std::string no_element(const std::string &name) {
    return "Warning (KLVA-PWR): could not find valid array element for signal " + name;
}

TEST_F(Names, LeadToSignalsAndElements) {
    const struct {
        const char *name;
        const char *found;  // null: nothing
        Lines messages;
    } rows[] = {
        {"/top/u1/clk", "/top/u1/clk", {}},
        {"/top/bus", "/top/bus", {}},
        {"/top/bus(7)", "/top/bus(7)", {}},
        {"/top/bus(9)", nullptr, {no_element("/top/bus(9)")}},
        {"/top/bus(99999999999999999999)", nullptr, {no_element("/top/bus(99999999999999999999)")}},
        {"/top/far(2147483647)", "/top/far(2147483647)", {}},
        {"/top/far(9999999999)", nullptr, {no_element("/top/far(9999999999)")}},
        {"/top/bus(4294967296)", nullptr, {no_element("/top/bus(4294967296)")}},
        {"/top/bus(3", nullptr, {no_element("/top/bus(3")}},
        {"/top/up(-2)", "/top/up(-2)", {}},
        {"/top/mem(1)(2)", "/top/mem(1)(2)", {}},
        {"/top/mem(1)", "/top/mem(1)", {}},
        {"/top/mem(1)(4)", nullptr, {no_element("/top/mem(4)"), no_element("/top/mem(1)(4)")}},
        {"/top/mem(2)(0)", nullptr, {no_element("/top/mem(2)(0)")}},
        {"/top/rec(0)", nullptr, {no_element("/top/rec(0)")}},
        {"/top/rec.g(1)", "/top/rec.g(1)", {}},
        {"/top/u1/clk(3)", "/top/u1/clk", {}},
        {"/top/nothing(3)", nullptr, {}},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(mfli_find_signal(row.name),
                  row.found == nullptr ? nullptr : sim.handle(row.found))
            << row.name;
        EXPECT_THAT(sim.lines(), ElementsAreArray(row.messages)) << row.name;
    }
}

TEST_F(Names, AreWalkedByTheirSuffix) {
    const mtiSignalIdT mem = sim.handle("/top/mem");
    EXPECT_EQ(find_array_element_recur(nullptr, "(1)"), nullptr);
    EXPECT_EQ(find_array_element_recur(mem, nullptr), mem);
    EXPECT_EQ(find_array_element_recur(mem, "(1)(3)trailing"), sim.handle("/top/mem(1)(3)"));
    EXPECT_THAT(sim.lines(), ::testing::IsEmpty());
    EXPECT_EQ(find_array_element_recur(mem, "x(1)"), nullptr);
    EXPECT_EQ(find_array_element_recur(mem, "(1)x"), nullptr);
    const Lines warnings = {no_element("/top/memx(1)"), no_element("/top/memx"),
                            no_element("/top/mem(1)x")};
    EXPECT_THAT(sim.lines(), ElementsAreArray(warnings));
}

}  // namespace
