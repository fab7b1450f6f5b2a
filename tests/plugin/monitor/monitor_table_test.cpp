// SPDX-License-Identifier: Apache-2.0
// Elements: how they begin, how they lie in memory, their names and their listings.
#include "plugin/monitor/monitor_table.h"

#include "plugin/select/types.h"
#include "tests/plugin/recorder.h"

using ::testing::ElementsAre;

namespace {

TEST_F(Recorder, MakesElementsThatBeginWithNothingCounted) {
    sim.signal("/top/n", sim.types.integer("n", 0, 5));
    sim.run_to(42);
    const mtiSignalIdT signal = sim.handle("/top/n");
    MonitorElement *element = mfli_init_monitor_element(signal, "/top/n");
    EXPECT_EQ(element->signal, signal);
    EXPECT_EQ(MTI_TIME64_LO32(element->last_change), 42U);
    EXPECT_EQ(*mfli_dirty_mark(element), 0);
    EXPECT_EQ(mfli_element_aliases(element), nullptr);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(mfli_bit(element, i)->width, 3);
        EXPECT_EQ(mfli_bit(element, i)->type_code, MFLI_TYPE_INTEGER);
    }
    st_insert_kptr_vptr(mfli_monitor_table, signal, element);
    EXPECT_THAT(activity(), ElementsAre("0:/top/n 0 0 0 0 0 2", "1:/top/n 0 0 0 0 0 2",
                                        "2:/top/n 0 0 0 0 0 2"));
}

// Names are kept in parts; signals of different regions, in turn, with names that begin alike.
TEST_F(Recorder, PutsEveryNameTogetherAgain) {
    sim.signal("/top/s", sim.types.std_logic());
    const mtiSignalIdT signal = sim.handle("/top/s");
    const Lines names = {"/top/a",
                         "/top/u1/a",
                         "/top/u1/b",
                         "/top/a",
                         "/top/u10/b(3)",
                         "/top",
                         "top",
                         "/top/u1/b/",
                         "",
                         "/a",
                         "/top/" + std::string(70000, 'r') + "/leaf",
                         "/top/u1/" + std::string(70000, 'l')};
    std::vector<MonitorElement *> elements;
    for (const std::string &name : names) {
        elements.push_back(mfli_init_monitor_element(signal, name.c_str()));
        st_insert_kptr_vptr(mfli_monitor_table, elements.back(), elements.back());
    }
    for (size_t i = names.size(); i-- > 0;) {
        EXPECT_EQ(mfli_element_name(elements[i]), names[i]);
    }
}

// Thousands of elements and long names, over many chunks of the store.
TEST_F(Recorder, KeepsEveryElementOnItsOwnCacheLines) {
    const wf::Type *logic = sim.types.std_logic();
    const std::string path = "/top/" + std::string(300, 'x');
    const wf::Type *number = sim.types.integer("n", 3, 7);
    const int count = 5000;
    for (int i = 0; i < count; ++i) {
        sim.signal(path + std::to_string(i), i % 2 == 0 ? number : logic);
    }
    sim.signal("/top/" + std::string(500000, 'y'), logic);
    watch("/top");
    const Lines names = watched();
    ASSERT_EQ(names.size(), count + 1U);
    EXPECT_EQ(names[count - 1], path + std::to_string(count - 1) + " 0/1");
    EXPECT_EQ(names[count].size(), 5 + 500000 + 4U);
    mfli_visit_monitor_table(
        [](MonitorElement *element, void *) {
            ASSERT_EQ(reinterpret_cast<uintptr_t>(element) % 64, 0U);
        },
        nullptr);
}

TEST_F(Recorder, HandsABitsActivityOverInSwitchingRecords) {
    const BitActivity bit{MFLI_STATE_1, 1, MFLI_TYPE_BIT, 1, 2, 3, 4, 5};
    saif_switching_attribute *record = init_saif_switching_struct();
    mfli_read_activity(&bit, record);
    EXPECT_EQ(record->timing->t1, 1);
    EXPECT_EQ(record->timing->t0, 2);
    EXPECT_EQ(record->timing->tx, 3);
    EXPECT_EQ(record->toggle->tc, 4);
    EXPECT_EQ(record->toggle->ig, 5);
    EXPECT_EQ(record->toggle->marker, -1.0);
    free_saif_switching_struct(record);
}

TEST_F(Recorder, ListsTheTable) {
    sim.signal("/top/a", sim.types.std_logic());
    sim.signal("/top/n", sim.types.integer("n", 0, 2));
    sim.set("/top/a", '0');
    watch("/top");
    open();
    sim.drive(5, "/top/a", '1');
    sim.run_to(12);
    close();
    sim.lines();
    st_insert_kptr_vptr(mfli_monitor_table, "no signal", nullptr);
    mfli_print_monitor_table_brief();
    mfli_print_monitor_table();
    EXPECT_THAT(
        sim.lines(),
        ElementsAre("\n Printing short mfli_monitor_table", "/top/a", "/top/n", "Done...",
                    " Printing mfli_monitor_table",
                    "Name tsize msb lsb time dirty T0   T1   TX   TC   IG   value",
                    "          /top/a, 1, 0, 0, 5.00, 0", "\t\t5.00 7.00 0.00 1.00 0.00, 2",
                    "          /top/n, 2, 0, 0, 0.00, 0", "\t\t12.00 0.00 0.00 0.00 0.00, 2",
                    "\t\t12.00 0.00 0.00 0.00 0.00, 2", "monitor_data NULL"));
}

}  // namespace
