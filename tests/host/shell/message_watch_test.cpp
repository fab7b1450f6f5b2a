// SPDX-License-Identifier: Apache-2.0
// Which messages of a plug-in are errors, and a report that nobody speaks of.
#include "host/shell/message_watch.h"

#include "tests/host/shell/shell_fixture.h"

namespace wf::test {
namespace {

TEST_F(ShellTest, ErrorsAreToldFromOtherMessages) {
    // A message, and what it says as an error; empty: it is none.
    const std::pair<const char *, const char *> rows[] = {
        {"Error (KLVA-PWR): Could not write file a: b", "Could not write file a: b"},
        {"\n** Error: toggle failed\n", "toggle failed"},
        {"ERROR", "ERROR"},
        {"Error, no list", "Error, no list"},
        {"Errors: 0, Warnings: 2", ""},
        {"/top/error: 1", ""},
        {"No Error: here", ""},
        {"fli: mti_PrintMessage({Error: x})", ""},
        {"", ""},
        {"Error (KLVA-PWR): Unable to register /top/reals", ""},
        {"Error (KLVA-PWR): Could not determine bitwidth: Unsupported type", ""},
        {"Warning (KLVA-PWR): Could not find Region /x; Skipping",
         "Could not find Region /x; Skipping"},
        {"Warning (KLVA-PWR): could not find signal /x, skipping", ""},
    };
    for (const auto &[message, cause] : rows) {
        Transcript nowhere(nullptr);
        MessageWatch watch(nowhere);
        watch.print(message);
        EXPECT_EQ(watch.errors(), *cause == '\0' ? 0U : 1U) << message;
        EXPECT_EQ(watch.take_errors(), cause);
        EXPECT_EQ(watch.conclude(0, /*aloud=*/true), 0);
    }
}

TEST_F(ShellTest, AReportThatNobodySpeaksOfIsAnError) {
    sim.start([](mtiRegionIdT, char *, mtiInterfaceListT *, mtiInterfaceListT *) {
        static char name[] = "toggle_report";
        mti_AddCommand(name, [](void *) {});
    });
    EXPECT_EQ(run("toggle_report a.saif 1e-9 /top"), ScriptEnd::done);
    EXPECT_EQ(shown(), "Error: toggle_report: the plug-in did not say that it wrote the report\n");
    EXPECT_EQ(shell().simulation().watch.conclude(0, /*aloud=*/false), 1);
}

}  // namespace
}  // namespace wf::test
