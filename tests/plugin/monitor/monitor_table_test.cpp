// SPDX-License-Identifier: Apache-2.0
// Elements: how they begin, how they lie in memory, their names and their listings.
#include "plugin/monitor/monitor_table.h"

#include "plugin/select/types.h"
#include "tests/plugin/recorder.h"

using ::testing::ElementsAre;

namespace {

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

}  // namespace
