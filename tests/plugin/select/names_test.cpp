// SPDX-License-Identifier: Apache-2.0
// Names of signals and elements, and the way back.
#include "plugin/select/names.h"

#include "tests/plugin/recorder.h"

using ::testing::ElementsAreArray;
using wf::Direction;
using wf::Type;
using wf::test::ElementAnswer;

namespace {

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
        const Type *two = sim.types.array(logic, 1, 0);
        sim.signal("/top/g[1]/v", two);
        sim.signal("/top/g[1]/os",
                   sim.types.array(
                       sim.types.record("o", {{"i", sim.types.record("i", {{"w", two}})}}), 4, 5));
        sim.signal("/top/n[3]", logic);
        sim.design().add_signal(&sim.region("/top"), "\\x(1)/y\\", logic, wf::Mode::internal,
                                sim.design().new_storage(logic));
        sim.kernel().sync();
    }
};

std::string taken(char *text) {
    std::string copy = text;
    free(text);
    return copy;
}

TEST_F(Names, OfSingleObjectsAreTheirOwn) {
    // What a single name becomes, over simulators that answer to an element's name differently.
    const struct {
        const char *written;
        const char *found;
        const char *name = nullptr;  // as written
    } rows[] = {{"/top/bus(3)", "/top/bus(3)"},
                {"bus[3]", "/top/bus(3)", "/top/bus(3)"},
                {"/top/mem(1)", "/top/mem(1)"},
                {"top/mem(1)(2)", "/top/mem(1)(2)", "/top/mem(1)(2)"},
                {"/top/u1/clk(3)", "/top/u1/clk"},
                {"/top/rec.g(1)", "/top/rec.g(1)"},
                {"/top/rec.f", "/top/rec.f"},
                {"/top/g(1)/v", "/top/g[1]/v", "/top/g[1]/v"},
                {"/top/g[1]/v(0)", "/top/g[1]/v(0)"},
                {"/top/g(1)/os[5].i.w", "/top/g[1]/os(5).i.w", "/top/g[1]/os(5).i.w"},
                {"/top/g(1)/os(5).i.w(1)", "/top/g[1]/os(5).i.w(1)", "/top/g[1]/os(5).i.w(1)"},
                {"/top/n[3]", "/top/n[3]"},
                {"/top/n(3)", "/top/n[3]", "/top/n[3]"},
                {"/top/\\x(1)/y\\", "/top/\\x(1)/y\\"}};
    for (const ElementAnswer answer :
         {ElementAnswer::as_hosts, ElementAnswer::whole, ElementAnswer::itself}) {
        sim.answers.element = answer;
        for (const auto &row : rows) {
            const mtiSignalIdT found = mfli_find_signal(row.written);
            EXPECT_EQ(found, sim.handle(row.found)) << row.written << static_cast<int>(answer);
            EXPECT_EQ(taken(mfli_get_signal_full_indexed_name(found, row.written)),
                      row.name == nullptr ? row.written : row.name);
        }
    }
    EXPECT_THAT(sim.lines(), ::testing::IsEmpty());
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

}  // namespace
