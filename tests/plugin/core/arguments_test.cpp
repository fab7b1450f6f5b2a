// SPDX-License-Identifier: Apache-2.0
// Command lines and the arguments they split into.
#include "plugin/core/arguments.h"

#include "tests/plugin/recorder.h"

using ::testing::ElementsAreArray;

namespace {

struct ArgumentCase {
    int level;
    const char *line;  // of the command "cmd"
    Lines arguments;
    Lines messages;
};

const ArgumentCase argument_cases[] = {
    {0, "cmd top/a,top/b  top/c", {"top/a", "top/b", "top/c"}, {}},
    {0, "cmd", {}, {}},
    {0, "cmd ,, ", {}, {}},
    {0, "cmd {top a}", {"{top", "a}"}, {}},
    {0, "cmd\ttop", {"\ttop"}, {}},
    {0, "cmdtop \"a b\"[1]\n", {"top", "\"a", "b\"[1]\n"}, {}},
    {0, "other a", {}, {"Error (KLVA-PWR): unexpected command name"}},
    {0, " cmd a", {}, {"Error (KLVA-PWR): unexpected command name"}},
    {0, "", {}, {"Error (KLVA-PWR): unexpected command name"}},
    {0, nullptr, {}, {}},
    {2, "cmd a", {"a"}, {}},
    {3, "cmd a b", {"a", "b"}, {"Printing args for command cmd:", "a", "b"}},
    {4,
     "cmd a,b",
     {"a", "b"},
     {"In Parse args: param= a,b; strlen=4", "a", "b", "Printing args for command cmd:", "a", "b"}},
    {5,
     "cmd a",
     {"a"},
     {"In Parse args: param= a; strlen=2", "Printing args for command cmd:", "a"}},
};

TEST_F(Recorder, SplitsCommandLines) {
    for (const ArgumentCase &row : argument_cases) {
        SCOPED_TRACE(row.line == nullptr ? "(null)" : row.line);
        mfli_debug_level = row.level;
        list *arguments = mfli_parse_cmd_args(row.line, "cmd");
        Lines got;
        for (list_walk walk(arguments); walk; walk.step()) {
            got.emplace_back(static_cast<const char *>(walk.item()));
        }
        list_free(arguments, list_data_free);
        EXPECT_THAT(got, ElementsAreArray(row.arguments));
        EXPECT_THAT(sim.lines(), ElementsAreArray(row.messages));
    }
}

}  // namespace
