// SPDX-License-Identifier: Apache-2.0
// Which regions are walked and whose signals are registered: the ScopeList and the net policy.
#include "plugin/select/policy.h"
#include "plugin/select/scope_list.h"
#include "tests/plugin/recorder.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class Choice : public Recorder {
  protected:
    Choice() {
        for (const char *path : {"/top/u1/v", "/top/u10", "/top/u2"}) {
            sim.region(path);
        }
    }
};

TEST_F(Choice, KeepsTheFirstOfTwoNestedRegions) {
    const struct {
        Lines named;
        Lines kept;
    } rows[] = {
        {{"/top/u1", "/top"}, {"/top/u1"}},
        {{"/top", "/top/u1"}, {"/top"}},
        {{"/top/u1", "/top/u10"}, {"/top/u1"}},
        {{"/top/u10", "/top/u1"}, {"/top/u10"}},
        {{"/top/u1", "/top/u1"}, {"/top/u1"}},
        {{"/top/u2", "/top/u1/v", "/top/u1", "/top/u10"}, {"/top/u2", "/top/u1/v", "/top/u10"}},
    };
    for (const auto &row : rows) {
        st_table *scope_list = create_scope_list();
        for (const std::string &name : row.named) {
            add_region_to_scope_list(sim.region_handle(name), scope_list);
        }
        Lines kept;
        st_generator *generator = st_init_gen(scope_list);
        void *key = nullptr;
        void *region = nullptr;
        while (st_gen_kptr_vptr(generator, &key, &region)) {
            kept.emplace_back(static_cast<const char *>(key));
            EXPECT_EQ(region, sim.region_handle(kept.back()));
        }
        st_free_gen(generator);
        free_scope_list(scope_list);
        EXPECT_EQ(kept, row.kept) << ::testing::PrintToString(row.named);
    }
    EXPECT_THAT(sim.lines(), IsEmpty());
    add_region_to_scope_list(sim.region_handle("/top"), nullptr);
    EXPECT_THAT(sim.lines(), ElementsAre("Error, scope_list not initialized"));
}

TEST_F(Choice, FollowsTheLongestPolicyAroundARegion) {
    EXPECT_EQ(mfli_get_policy_for_region("/top"), MFLI_POLICY_ON);
    // In both orders of recording.
    add_to_policy_table(sim.region_handle("/top/u1/v"), MFLI_POLICY_RTL_ON);
    add_to_policy_table(sim.region_handle("/top"), MFLI_POLICY_OFF);
    add_to_policy_table(sim.region_handle("/top/u1"), MFLI_POLICY_ON);
    add_to_policy_table(sim.region_handle("/top/u1"), MFLI_POLICY_OFF);
    const struct {
        const char *region;
        int32_t policy;
    } rows[] = {{"/top", 1},      {"/top/u2", 1},   {"/top/u1", 2},
                {"/top/u1/w", 2}, {"/top/u1/v", 3}, {"/top/u10", 2},
                {"/topology", 1}, {"/other", 2},    {"/top/u1/v/x", 3}};
    for (const auto &row : rows) {
        EXPECT_EQ(mfli_get_policy_for_region(row.region), row.policy) << row.region;
    }
    mfli_set_read_rtl_status();
    EXPECT_EQ(mfli_get_policy_for_region("/other"), MFLI_POLICY_OFF);
    EXPECT_EQ(mfli_get_policy_for_region("/top/u1"), MFLI_POLICY_ON);
    EXPECT_EQ(mfli_get_user_policy(), 0);
    print_policy_table();
    EXPECT_THAT(sim.lines(), ElementsAre("Information (KLVA-PWR): Region based policy table",
                                         "/top/u1/v -- 3", "/top -- 1", "/top/u1 -- 2"));
}

}  // namespace
