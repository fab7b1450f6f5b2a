// SPDX-License-Identifier: Apache-2.0
// What becomes a watched scalar, under which names, and what is said of the rest.
#include "plugin/select/registration.h"

#include "plugin/rtlsaif/rtl_table.h"
#include "plugin/select/scope_list.h"
#include "tests/plugin/recorder.h"

#include <cstring>

using ::testing::Contains;
using ::testing::ContainsRegex;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using wf::Direction;
using wf::RegionKind;
using wf::Type;

namespace {

TEST_F(Recorder, RegistersEveryScalarOfARegion) {
    wf::TypeTable &types = sim.types;
    const Type *logic = types.std_logic();
    const Type *pair = types.record("pair", {{"a", logic}, {"n", types.integer("n", 0, 7)}});
    const Type *nested = types.record("nested", {{"p", pair}, {"v", types.array(logic, 1, 0)}});
    sim.signal("/top/clk", logic);
    sim.signal("/top/count", types.integer("n", 0, 255));
    sim.signal("/top/bus", types.array(logic, 2, 0));
    sim.signal("/top/mem", types.array(types.array(logic, 0, 1), 5, 4));
    sim.signal("/top/rec", nested);
    sim.signal("/top/recs", types.array(pair, 0, 1));
    sim.signal("/top/states", types.array(types.enumeration("e", {"idle", "run", "stop"}), 3, 3));
    sim.signal("/top/voltage", types.real());
    sim.signal("/top/reals", types.array(types.real(), 0, 9));
    sim.signal("/top/times", types.array(types.array(types.time(), 0, 0), 0, 1));
    sim.signal("/top/mixed", types.record("m", {{"r", types.real()}, {"b", types.bit()}}));
    EXPECT_THAT(
        watch("/top"),
        ElementsAre("Warning (KLVA-PWR): Not registered signal = /top/voltage; INVALID_TYPE",
                    "Error (KLVA-PWR): Unable to register /top/reals",
                    "Error (KLVA-PWR): Unable to register /top/times(0)",
                    "Error (KLVA-PWR): Unable to register /top/times(1)",
                    "Warning (KLVA-PWR): Not registered signal = /top/mixed.r; "
                    "INVALID_TYPE"));
    const Lines expected = {
        "/top/clk 0/1",       "/top/count 2/8",     "/top/bus(2) 0/1",    "/top/bus(1) 0/1",
        "/top/bus(0) 0/1",    "/top/mem(5)(0) 0/1", "/top/mem(5)(1) 0/1", "/top/mem(4)(0) 0/1",
        "/top/mem(4)(1) 0/1", "/top/rec.p.a 0/1",   "/top/rec.p.n 2/3",   "/top/rec.v(1) 0/1",
        "/top/rec.v(0) 0/1",  "/top/recs(0).a 0/1", "/top/recs(0).n 2/3", "/top/recs(1).a 0/1",
        "/top/recs(1).n 2/3", "/top/states(3) 3/2", "/top/mixed.b 1/1"};
    EXPECT_THAT(watched(), ElementsAreArray(expected));
    EXPECT_EQ(sim.kernel().process_count(), 2 * expected.size());
}

// Whichever allocation fails: what is missing is told, and not as a type that cannot be counted.
TEST_F(Recorder, TellsWhatMemoryRanOutFor) {
    const Type *logic = sim.types.std_logic();
    sim.signal("/top/clk", logic);
    sim.signal("/top/bus", sim.types.array(logic, 1, 0));
    sim.signal("/top/rec", sim.types.record("rec", {{"a", logic}}));
    ASSERT_THAT(watch("/top"), IsEmpty());
    const Lines all = watched();
    int refused = 0;
    for (granted_allocations = -1; granted_allocations < 0; ++refused) {
        mfli_free_monitor_table();
        mfli_init_monitor_table();
        granted_allocations = refused;
        register_region(sim.region_handle("/top"));
        const Lines told = sim.lines();
        EXPECT_EQ(told.empty(), watched() == all) << refused;
        EXPECT_THAT(told, testing::Each(testing::StartsWith(
                              "Error (KLVA-PWR): Could not allocate the record of signal ")));
    }
    granted_allocations = -1;
    EXPECT_GT(refused, 10);
}

TEST_F(Recorder, WatchesOneHandleOnceUnderAllItsNames) {
    const Type *logic = sim.types.std_logic();
    sim.signal("/top/net", logic);
    sim.signal("/top/bus", sim.types.array(logic, 1, 0));
    sim.region("/top/u1");
    sim.shared_signal("/top/u1/own", "/top/net");
    sim.signal("/top/own", logic);
    sim.signal("/top/pair", sim.types.record("p", {{"v", sim.types.array(logic, 0, 0)}}));
    for (const char *name : {"net", "pair", "own"}) {  // ports that are the signals above them
        sim.alias(std::string("/top/u1/") + name, std::string("/top/") + name);
    }
    watch("/top");
    const mtiSignalIdT net = sim.handle("/top/net");
    for (const char *name : {"/top/net", "/top/u1/port", "/top/u2/p", "/top/u1/port"}) {
        mfli_register_net(net, name, 0);
    }
    mfli_register_net(sim.handle("/top/bus"), "ignored", 1);
    // Shared storage is not a shared handle.
    EXPECT_THAT(watched(), ElementsAre("/top/net=/top/u1/net=/top/u1/port=/top/u2/p 0/1",
                                       "/top/bus(1) 0/1", "/top/bus(0) 0/1", "/top/own 0/1",
                                       "/top/pair.v(0)=/top/u1/pair.v(0) 0/1", "/top/u1/own 0/1"));
    EXPECT_EQ(sim.kernel().process_count(), 12U);
}

TEST_F(Recorder, SaysLittleOfASignalWithoutAType) {
    sim.signal("/top/s", sim.types.bit());
    sim.answers.without_type = {"/top/s"};
    EXPECT_THAT(watch("/top"), ElementsAre("mfli_msg_buf"));
    EXPECT_STREQ(mfli_msg_buf,
                 "Warning (KLVA-PWR): could not determine type for signal /top/s, skipping");
    EXPECT_THAT(watched(), IsEmpty());
}

// A scalar that is declared under the very name by which an array's element might be known a second
// time: only elements that are written with another base are looked up again.
TEST_F(Recorder, LooksUpElementsUnderASecondPath) {
    const Type *logic = sim.types.std_logic();
    sim.signal("/top/rec", sim.types.record("r", {{"v", sim.types.array(logic, 6, 5)}}));
    sim.signal("/top/rec(6)", logic);
    sim.signal("/top/rec(1)", logic);
    sim.signal("/top/bus", sim.types.array(logic, 5, 5));
    sim.signal("/top/bus(0)", logic);
    register_array(sim.handle("/top/bus"), sim.region_handle("/top"), 0);
    EXPECT_THAT(watched(), ElementsAre("/top/bus(5) 0/1"));
    register_record(sim.handle("/top/rec"), sim.region_handle("/top"), 0);
    EXPECT_THAT(watched(), ElementsAre("/top/bus(5) 0/1", "/top/rec.v(6) 0/1", "/top/rec(6) 0/1",
                                       "/top/rec.v(5) 0/1", "/top/rec(1) 0/1"));
    // The element itself is listed under its second path, by index and by position.
    sim.signal("/top/two", sim.types.record("t", {{"v", sim.types.array(logic, 6, 5)}}));
    sim.alias("/top/two(6)", "/top/two.v(6)");
    sim.alias("/top/two(1)", "/top/two.v(5)");
    register_record(sim.handle("/top/two"), sim.region_handle("/top"), 0);
    sim.answers.has_indirect_names = false;
    sim.signal("/top/one", sim.types.record("o", {{"f", logic}}));
    register_record(sim.handle("/top/one"), sim.region_handle("/top"), 0);
    const Lines all = watched();
    EXPECT_THAT(Lines(all.begin() + 5, all.end()),
                ElementsAre("/top/two.v(6)=/top/two(6) 0/1", "/top/two.v(5)=/top/two(1) 0/1",
                            "/top/one 0/1"));
    EXPECT_THAT(sim.lines(), IsEmpty());
}

TEST_F(Recorder, SkipsRegionsThatHoldNothingToWatch) {
    const Type *logic = sim.types.std_logic();
    const struct {
        const char *path;
        RegionKind kind;
    } rows[] = {{"/top/task", RegionKind::task},         {"/top/function", RegionKind::function},
                {"/top/package", RegionKind::package},   {"/top/statement", RegionKind::statement},
                {"/top/block", RegionKind::named_block}, {"/top/gen", RegionKind::generate}};
    for (const auto &row : rows) {
        sim.region(row.path, row.kind);
        sim.signal(row.path + std::string("/s"), logic);
        sim.signal(row.path + std::string("/deep/s"), logic);
    }
    watch("/top");
    EXPECT_THAT(watched(), ElementsAre("/top/block/s 0/1", "/top/block/deep/s 0/1",
                                       "/top/gen/s 0/1", "/top/gen/deep/s 0/1"));
}

TEST_F(Recorder, CreatesTwoProcessesForASignal) {
    sim.signal("/top/s", sim.types.std_logic());
    sim.session().trace_to_console();
    mfli_register_net(sim.handle("/top/s"), "/top/s", 0);
    const Lines calls = sim.lines();
    for (const char *call : {"mti_CreateProcess\\(klva_track_toggles,",
                             "WithPriority\\(klva_count_toggles, .*, 2\\)"}) {
        EXPECT_THAT(calls, Contains(ContainsRegex(call)));
    }
    EXPECT_THAT(calls, Contains(ContainsRegex("mti_Sensitize\\(.*, /top/s, 1\\)")).Times(2));
}

// --- objects of forward files ---

char *copy(const char *text) {
    return strdup(text);
}

class RtlObjects : public Recorder {
  protected:
    RtlObjects() {
        const Type *logic = sim.types.std_logic();
        sim.signal("/tb/u1/q", logic);
        sim.signal("/tb/u1/bus", sim.types.array(logic, 3, 0));
        sim.signal("/tb/u1/count", sim.types.integer("n", 0, 15));
        sim.signal("/tb/u1/mem", sim.types.array(sim.types.array(logic, 1, 0), 0, 1));
        sim.signal("/tb/u2/q", logic);
        sim.signal("/tb/u1/u1", logic);
        mfli_rtl_table = st_alloc_abo(st_strcmp, st_strhash);
    }
    ~RtlObjects() override { mfli_free_rtl_table(); }

    // Names an object of a forward file that was read for the testbench path.
    void object(const char *add_path, const char *key) {
        st_insert_kptr_vptr(get_rtl_hash(mfli_rtl_table, add_path), copy(key), list_alloc());
    }
    Lines registered_in(const Lines &regions) {
        st_table *scope_list = create_scope_list();
        for (const std::string &region : regions) {
            add_region_to_scope_list(sim.region_handle(region), scope_list);
        }
        register_rtl_activity(scope_list);
        free_scope_list(scope_list);
        return sim.lines();
    }
};

std::string skipped(const std::string &name) {
    return "Warning (KLVA-PWR): could not find signal " + name + ", skipping";
}

std::string no_element(const std::string &name) {
    return "Warning (KLVA-PWR): could not find valid array element for signal " + name;
}

TEST_F(RtlObjects, AreFoundByTheirPathsInScope) {
    for (const char *key :
         {"top/u1/q", "top/u1/u1", "top/u1/bus[2]", "top/u1/mem[1][0]", "top/u1/count[3]",
          "top/u1/count[0]", "top/u2/q", "top/u1/lost", "top/u1/lost[1]", "top/u1/bus[9]"}) {
        object("/tb", key);
    }
    EXPECT_THAT(registered_in({"/tb/u1"}),
                ElementsAre("Warning (KLVA-PWR): Signal /tb/u2/q not in scope, skipping",
                            skipped("/tb/u1/lost"), skipped("/tb/u1/lost"),
                            no_element("/tb/u1/bus(9)"), skipped("/tb/u1/bus(9)")));
    EXPECT_THAT(watched(), ElementsAre("/tb/u1/q 0/1", "/tb/u1/u1 0/1", "/tb/u1/bus(2) 0/1",
                                       "/tb/u1/mem(1)(0) 0/1", "/tb/u1/count 2/4"));
}

TEST_F(RtlObjects, AreWatchedAsAWholeWhereTheirBitsAreNotListed) {
    sim.answers.element = wf::test::ElementAnswer::unlisted;
    sim.signal("/tb/u1/g(1)/mode", sim.types.enumeration("m", {"idle", "run", "stop"}));
    for (const char *key : {"top/u1/count[3]", "top/u1/g[1]/mode[0]", "top/u1/bus[2]"}) {
        object("/tb", key);
    }
    EXPECT_THAT(registered_in({"/tb/u1"}), ElementsAre(skipped("/tb/u1/bus(2)")));
    EXPECT_THAT(watched(), ElementsAre("/tb/u1/count 2/4", "/tb/u1/g(1)/mode 3/2"));
}

TEST_F(RtlObjects, OfSeveralTestbenchesAreRegisteredInTurn) {
    object("/tb/u1", "top/q");
    object(nullptr, "/tb/u2/q");  // no path: three characters are dropped all the same
    object("", "top/tb/u2/q");
    object("/tb/u1", "to");
    mfli_debug_level = 1;
    EXPECT_THAT(registered_in({"/tb"}), ElementsAre("add_path is /tb/u1", skipped("/tb/u1"),
                                                    "add_path is ", skipped("/u2/q")));
    EXPECT_THAT(watched(), ElementsAre("/tb/u1/q 0/1", "/tb/u2/q 0/1"));
}

TEST_F(RtlObjects, ComeBeforeTheRegionsAndShutTheirNetsOut) {
    object("/tb", "top/u1/q");
    add_to_policy_table(sim.region_handle("/tb/u2"), MFLI_POLICY_ON);
    st_table *scope_list = create_scope_list();
    add_region_to_scope_list(sim.region_handle("/tb"), scope_list);
    mfli_set_read_rtl_status();
    mfli_register_activity(scope_list);
    free_scope_list(scope_list);
    EXPECT_THAT(watched(), ElementsAre("/tb/u1/q 0/1", "/tb/u2/q 0/1"));
    EXPECT_THAT(sim.lines(), IsEmpty());
}

}  // namespace
