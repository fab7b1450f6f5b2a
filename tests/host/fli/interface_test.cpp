// SPDX-License-Identifier: Apache-2.0
// The interface's functions: what they answer, who releases it, and what they say to wrong handles.
#include <acc_user.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <mti.h>

#include <functional>

#include "tests/support/memory_design.h"

namespace wf::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

char *text(const char *literal) {
    return const_cast<char *>(literal);
}

// Takes a text that the simulator allocated, and releases it.
std::string taken(char *given) {
    std::string copy = given == nullptr ? "null" : given;
    mti_VsimFree(given);
    return copy;
}

class InterfaceTest : public testing::Test {
  protected:
    InterfaceTest() {
        const Type *bus = types.array(types.std_logic(), 7, 0);
        sim.region("/pkg", RegionKind::package);
        sim.signal("/top/clk", types.std_logic(), Mode::in);
        sim.signal("/top/bus", bus, Mode::out);
        sim.signal("/top/mem", types.array(bus, 0, 3));
        sim.signal("/top/rec", types.record("pair", {{"field", types.bit()}, {"arr", bus}}),
                   Mode::inout);
        sim.signal("/top/n", types.integer("n", -5, 1000));
        sim.signal("/top/r", types.real());
        sim.signal("/top/u1/d", types.bit());
        sim.alias("/top/u1/clk", "/top/clk");
        sim.region("/top/u2");
    }

    std::string indirect(const char *path) {
        return taken(mti_GetSignalNameIndirect(sim.handle(path), nullptr, 0));
    }

    MemorySimulator sim;
    TypeTable &types = sim.types;
};

TEST_F(InterfaceTest, SharesOneCursorAndListsMergedPortsTwice) {
    std::vector<std::string> names;
    for (mtiSignalIdT s = mti_FirstSignal(mti_GetTopRegion()); s; s = mti_NextSignal()) {
        names.emplace_back(mti_GetSignalName(s));
    }
    EXPECT_THAT(names, ElementsAre("clk", "bus", "mem", "rec", "n", "r"));
    EXPECT_EQ(mti_NextSignal(), nullptr) << "the end stays the end";
    const mtiRegionIdT u1 = mti_FindRegion(text("u1"));
    EXPECT_EQ(mti_FirstSignal(u1), sim.handle("/top/u1/d"));
    EXPECT_EQ(mti_FirstSignal(mti_GetTopRegion()), sim.handle("/top/clk"));
    EXPECT_EQ(mti_NextSignal(), sim.handle("/top/bus"));
    mti_FirstSignal(u1);
    EXPECT_EQ(mti_NextSignal(), sim.handle("/top/clk"));
    EXPECT_EQ(mti_GetSignalRegion(sim.handle("/top/u1/clk")), mti_GetTopRegion());
    EXPECT_EQ(mti_FirstSignal(mti_FindRegion(text("u2"))), nullptr);
}

TEST_F(InterfaceTest, NamesElementsAsWritten) {
    for (const char *path :
         {"clk", "bus", "bus(3)", "mem(2)", "mem(2)(7)", "rec.field", "rec.arr(0)"}) {
        EXPECT_EQ(indirect((std::string("/top/") + path).c_str()), path);
    }
    const mtiSignalIdT leaf = sim.handle("/top/mem(2)(7)");
    EXPECT_STREQ(mti_GetSignalName(leaf), "mem");
    EXPECT_EQ(mti_GetSignalRegion(leaf), mti_GetTopRegion());
    EXPECT_EQ(mti_GetSignalMode(sim.handle("/top/rec.arr(0)")), MTI_DIR_INOUT);
    EXPECT_EQ(mti_GetSignalMode(leaf), MTI_INTERNAL);
    EXPECT_EQ(mti_FindSignal(text("/top/mem(2)(7)")), leaf);
    EXPECT_EQ(mti_FindSignal(text("/top/mem(2)(8)")), sim.handle("/top/mem"));
    char buffer[8] = "#######";
    EXPECT_EQ(mti_GetSignalNameIndirect(leaf, buffer, 6), buffer);
    EXPECT_STREQ(buffer, "mem(2") << "cut to the length given";
    mti_GetSignalNameIndirect(sim.handle("/top/clk"), buffer, 0);
    EXPECT_STREQ(buffer, "mem(2") << "no room, nothing written";
    EXPECT_EQ(sim.session().ledger.outstanding(), 0U);
}

TEST_F(InterfaceTest, ListsElementsLeftToRightUnderStableHandles) {
    const mtiSignalIdT bus = sim.handle("/top/bus");
    mtiSignalIdT *given = mti_GetSignalSubelements(bus, nullptr);
    EXPECT_EQ(given[0], sim.handle("/top/bus(7)"));
    EXPECT_EQ(given[7], sim.handle("/top/bus(0)"));
    mtiSignalIdT own[8];
    EXPECT_EQ(mti_GetSignalSubelements(bus, own), own);
    EXPECT_TRUE(std::equal(own, own + 8, given));
    mti_VsimFree(given);
    mtiSignalIdT *fields = mti_GetSignalSubelements(sim.handle("/top/rec"), nullptr);
    EXPECT_EQ(fields[1], sim.handle("/top/rec.arr"));
    mti_VsimFree(fields);
    EXPECT_EQ(mti_GetSignalSubelements(own[0], nullptr), nullptr);
    EXPECT_EQ(sim.session().ledger.outstanding(), 0U);
}

TEST_F(InterfaceTest, DescribesTypes) {
    const Type *many = types.enumeration("many", std::vector<std::string>(300, "x"));
    const Type *array = types.array(types.bit(), 3, 1);
    const struct {
        const Type *type;
        mtiTypeKindT kind;
        mtiInt32T length, left, right, direction;
    } rows[] = {
        {types.std_logic(), MTI_TYPE_ENUM, 9, 0, 8, 1},
        {many, MTI_TYPE_ENUM, 300, 0, 299, 1},
        {types.integer("n", 15, 0, Direction::downto), MTI_TYPE_SCALAR, 16, 15, 0, -1},
        {types.integer("integer", INT32_MIN, INT32_MAX), MTI_TYPE_SCALAR, 0, INT32_MIN, INT32_MAX,
         1},
        {types.integer("natural", 0, INT32_MAX), MTI_TYPE_SCALAR, 0, 0, INT32_MAX, 1},
        {array, MTI_TYPE_ARRAY, 3, 3, 1, -1},
        {types.record("r", {{"a", array}, {"b", array}}), MTI_TYPE_RECORD, 2, 0, 0, 0},
        {types.real(), MTI_TYPE_REAL, 0, 0, 0, 0},
        {types.time(), MTI_TYPE_TIME, 0, 0, 0, 0},
        {types.physical("ohm", 0, 9), MTI_TYPE_PHYSICAL, 0, 0, 9, 1},
        {types.access("ptr"), MTI_TYPE_ACCESS, 0, 0, 0, 0},
        {types.file("text"), MTI_TYPE_FILE, 0, 0, 0, 0},
    };
    int number = 0;
    for (const auto &row : rows) {
        SCOPED_TRACE(row.type->name);
        const std::string path = "/top/t" + std::to_string(number++);
        sim.signal(path, row.type);
        const mtiTypeIdT type = mti_GetSignalType(sim.handle(path));
        EXPECT_EQ(mti_GetTypeKind(type), row.kind);
        EXPECT_EQ(mti_TickLength(type), row.length);
        EXPECT_EQ(mti_TickLeft(type), row.left);
        EXPECT_EQ(mti_TickRight(type), row.right);
        EXPECT_EQ(mti_TickDir(type), row.direction);
    }
    const mtiTypeIdT bus = mti_GetSignalType(sim.handle("/top/bus"));
    const mtiTypeIdT logic = mti_GetArrayElementType(bus);
    EXPECT_EQ(logic, mti_GetSignalType(sim.handle("/top/clk")));
    char **literals = mti_GetEnumValues(logic);
    EXPECT_STREQ(literals[0], "'U'");
    EXPECT_STREQ(literals[8], "'-'");
    EXPECT_THAT(sim.lines(), IsEmpty());
    EXPECT_EQ(mti_GetArrayElementType(logic), nullptr);
    EXPECT_EQ(mti_GetEnumValues(bus), nullptr);
    EXPECT_THAT(sim.lines(),
                ElementsAre("** Error: mti_GetArrayElementType: std_logic is not an array type",
                            "** Error: mti_GetEnumValues: array is not an enumeration type"));
}

TEST_F(InterfaceTest, AnswersValuesAndTimes) {
    sim.set("/top/clk", '1');
    sim.set("/top/bus", "10XZUWLH");
    sim.set("/top/n", -3);
    EXPECT_EQ(mti_GetSignalValue(sim.handle("/top/clk")), 3);
    EXPECT_EQ(mti_GetSignalValue(sim.handle("/top/bus(4)")), 4);
    EXPECT_EQ(mti_GetSignalValue(sim.handle("/top/n")), -3);
    EXPECT_EQ(mti_GetSignalValue(sim.handle("/top/r")), 0);
    EXPECT_EQ(mti_GetSignalValue(sim.handle("/top/bus")), 0);
    EXPECT_THAT(sim.lines(),
                ElementsAre("** Error: mti_GetSignalValue: /top/r has no 32-bit value",
                            "** Error: mti_GetSignalValue: /top/bus has no 32-bit value"));
    for (const Ticks time : {Ticks{0}, Ticks{0xffffffff}, Ticks{0x100000000}, Ticks{1} << 62}) {
        sim.run_to(time);
        mtiTime64T now;
        EXPECT_EQ(mti_NowIndirect(&now), &now);
        EXPECT_EQ(MTI_TIME64_HI32(now), time >> 32);
        EXPECT_EQ(MTI_TIME64_LO32(now), static_cast<uint32_t>(time));
        mtiTime64T *given = mti_NowIndirect(nullptr);
        EXPECT_EQ(MTI_TIME64_LO32(*given), MTI_TIME64_LO32(now));
        mti_VsimFree(given);
    }
    EXPECT_EQ(mti_GetResolutionLimit(), -9);
}

// A function that takes a handle says no to a null one and to one of another kind, by name.
TEST_F(InterfaceTest, RefusesWrongHandlesLoudly) {
    static int stranger;
    void *const wrong[] = {nullptr, &stranger, &sim.design(), mti_GetTopRegion(),
                           sim.handle("/top/clk")};
    const auto region = [](void *p) { return static_cast<mtiRegionIdT>(p); };
    const auto signal = [](void *p) { return static_cast<mtiSignalIdT>(p); };
    const auto type = [](void *p) { return static_cast<mtiTypeIdT>(p); };
    const auto process = [](void *p) { return static_cast<mtiProcessIdT>(p); };
    const struct {
        const char *name, *kind;
        std::function<void(void *)> call;
    } rows[] = {
        {"mti_FirstLowerRegion", "region", [&](void *p) { mti_FirstLowerRegion(region(p)); }},
        {"mti_FirstSignal", "region", [&](void *p) { mti_FirstSignal(region(p)); }},
        {"mti_GetSignalValue", "signal", [&](void *p) { mti_GetSignalValue(signal(p)); }},
        {"mti_GetTypeKind", "type", [&](void *p) { mti_GetTypeKind(type(p)); }},
        {"mti_Sensitize", "process",
         [&](void *p) { mti_Sensitize(process(p), sim.handle("/top/clk"), MTI_EVENT); }},
        {"mti_Sensitize", "signal",
         [&](void *p) {
             static const auto nothing = [](void *) {};
             mti_Sensitize(mti_CreateProcess(text("p"), nothing, nullptr), signal(p), MTI_EVENT);
         }},
    };
    for (const auto &row : rows) {
        for (void *address : wrong) {
            if ((address == mti_GetTopRegion() && row.kind == std::string("region")) ||
                (address == sim.handle("/top/clk") && row.kind == std::string("signal"))) {
                continue;
            }
            row.call(address);
            char shown[80];
            std::snprintf(shown, sizeof shown, "%p is not a %s handle", address, row.kind);
            const std::string reason =
                address == nullptr ? std::string("null ") + row.kind + " handle" : shown;
            EXPECT_THAT(sim.lines(),
                        ElementsAre("** Error: " + std::string(row.name) + ": " + reason));
        }
    }
}

// Values go a short way that knows one block of handles, and what ends that knowledge.
TEST_F(InterfaceTest, AnswersEachValueWhateverWasAskedBefore) {
    const mtiSignalIdT clk = sim.handle("/top/clk");
    sim.set("/top/clk", '1');
    EXPECT_EQ(mti_GetSignalValue(clk), 3);
    sim.signal("/top/large", types.array(types.std_logic(), 0, 9999));
    for (const char *element : {"/top/large(0)", "/top/large(9999)", "/top/clk"}) {
        for (const char value : {'1', '0'}) {
            sim.set(element, value);
            EXPECT_EQ(mti_GetSignalValue(sim.handle(element)), value - '0' + 2) << element;
        }
    }
    auto *inside = reinterpret_cast<mtiSignalIdT>(reinterpret_cast<char *>(clk) + 8);
    EXPECT_EQ(mti_GetSignalValue(inside), 0);
    EXPECT_THAT(sim.lines(), SizeIs(1)) << "an address within a signal is no handle";
    sim.session().trace_to_console();
    EXPECT_EQ(mti_GetSignalValue(clk), 2);
    EXPECT_THAT(sim.lines(), ElementsAre("fli: mti_GetSignalValue(/top/clk) = 2"));
    sim.session().trace_off();
    EXPECT_EQ(mti_GetSignalValue(clk), 2);
    struct Supply : ValueSupply {
        Kernel &kernel;
        explicit Supply(Kernel &the_kernel) : kernel(the_kernel) {}
        void wanted(Slot first, uint32_t) override { kernel.set_byte(first, 3); }
        void watched(Slot first) override { kernel.set_byte(first, 2); }
    } supply(sim.kernel());
    sim.kernel().supply_from(&supply);
    EXPECT_EQ(mti_GetSignalValue(clk), 3) << "fetched";
    static const auto nothing = [](void *) {};
    mti_Sensitize(mti_CreateProcess(text("p"), nothing, nullptr), clk, MTI_EVENT);
    EXPECT_EQ(mti_GetSignalValue(clk), 2) << "sent unasked from now on";
    sim.kernel().supply_from(nullptr);
}

TEST_F(InterfaceTest, RefusesOtherWrongArgumentsLoudly) {
    static const auto nothing = [](void *) {};
    int stranger = 0;
    const struct {
        std::function<void()> call;
        const char *line;
    } rows[] = {
        {[] { mti_AddCommand(nullptr, nothing); }, "mti_AddCommand: null command name"},
        {[] { mti_AddCommand(text("c"), nullptr); },
         "mti_AddCommand: null function for the command c"},
        {[] { mti_AddQuitCB(nullptr, nullptr); }, "mti_AddQuitCB: null function"},
        {[] { mti_PrintMessage(nullptr); }, "mti_PrintMessage: null text"},
        {[] { mti_FindRegion(nullptr); }, "mti_FindRegion: null region name"},
        {[] { mti_FindSignal(nullptr); }, "mti_FindSignal: null signal name"},
        {[] { mti_NextSignal(); }, "mti_NextSignal: mti_FirstSignal has not been called"},
        {[] { mti_CreateProcess(text("p"), nullptr, nullptr); },
         "mti_CreateProcess: null function"},
        {[] {
             mti_CreateProcessWithPriority(text("p"), nothing, nullptr,
                                           static_cast<mtiProcessPriorityT>(3));
         },
         "mti_CreateProcessWithPriority: there is no priority 3"},
    };
    for (const auto &row : rows) {
        row.call();
        EXPECT_THAT(sim.lines(), ElementsAre(std::string("** Error: ") + row.line));
    }
    mti_VsimFree(&stranger);
    EXPECT_THAT(sim.lines(), ElementsAre(testing::MatchesRegex(
                                 ".. Error: mti_VsimFree: 0x[0-9a-f]+ is not memory that the "
                                 "simulator gave")));
    mti_VsimFree(nullptr);
    char *first = mti_GetRegionFullName(mti_GetTopRegion());
    mtiTime64T *second = mti_NowIndirect(nullptr);
    mti_VsimFree(first);
    mti_VsimFree(second);
    EXPECT_THAT(sim.lines(), IsEmpty()) << "released in any order";
    char *twice = mti_GetRegionFullName(mti_GetTopRegion());
    mti_VsimFree(twice);
    mti_VsimFree(twice);
    EXPECT_THAT(sim.lines(), SizeIs(1)) << "released twice";
}

TEST(InterfaceWithoutSimulator, AnswersNothing) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(mti_GetTopRegion(), nullptr);
    EXPECT_EQ(mti_GetSignalValue(nullptr), 0);
    EXPECT_EQ(mti_NowIndirect(nullptr), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "** Error: mti_GetTopRegion: there is no simulator\n"
              "** Error: mti_GetSignalValue: there is no simulator\n"
              "** Error: mti_NowIndirect: there is no simulator\n");
}

}  // namespace
}  // namespace wf::test
