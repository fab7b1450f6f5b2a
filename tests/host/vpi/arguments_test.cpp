// SPDX-License-Identifier: Apache-2.0
// The module's plusargs, and the texts that name plug-ins.
#include "host/vpi/arguments.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "host/fli/plugins.h"

namespace wf {
namespace {

using Words = std::vector<std::string>;

TEST(Arguments, ScriptsAndPlugins) {
    struct Row {
        Words words;
        const char *variable;
        std::string script;
        Words foreign;
        uint64_t memory;
        bool trace;
    };
    const Row rows[] = {
        {{"ghdl", "--vpi=x", "+other", "+wf"}, nullptr, "", {}, 65536, false},
        {{"+wf_do=a=b.tcl", "+wf_trace"}, "b.tcl", "a=b.tcl", {}, 65536, true},
        {{"+wf_foreign=f:g", "x", "+wf_foreign=h:i"},
         "b.tcl",
         "b.tcl",
         {"f:g", "h:i"},
         65536,
         false},
        {{"+wf_memory=0"}, "", "", {}, 0, false},
    };
    for (const Row &row : rows) {
        Arguments got;
        EXPECT_EQ(parse_arguments(row.words, row.variable, &got), "");
        EXPECT_EQ(got.script, row.script);
        EXPECT_EQ(got.foreign, row.foreign);
        EXPECT_EQ(got.memory_limit, row.memory);
        EXPECT_EQ(got.trace, row.trace);
    }
}

TEST(Arguments, Errors) {
    const std::string known =
        "unknown argument; there are +wf_do=FILE, +wf_foreign=FUNCTION:LIBRARY, +wf_memory=BITS, "
        "+wf_strict, +wf_trace";
    const std::pair<Words, std::string> rows[] = {
        {{"+wf_od=x"}, "+wf_od=x: " + known},
        {{"+wf_trace=x"}, "+wf_trace=x: " + known},
        {{"+wf_do"}, "+wf_do: expected a value after +wf_do="},
        {{"+wf_foreign="}, "+wf_foreign=: expected a value after +wf_foreign="},
        {{"+wf_do=a", "+wf_do=b"}, "+wf_do=b: +wf_do is given twice"},
        {{"+wf_memory=1k"}, "+wf_memory=1k: expected a number of bits"},
        {{"+wf_memory"}, "+wf_memory: expected a number of bits"},
    };
    for (const auto &[words, expected] : rows) {
        Arguments got;
        EXPECT_EQ(parse_arguments(words, nullptr, &got), expected);
    }
}

// What choose_plugins makes of one text: "function|library", or its complaint.
std::string chosen(const std::string &text, char separator) {
    std::vector<Plugin> plugins;
    const std::string error = choose_plugins(
        {text}, {.name = "-option", .separator = separator, .folders = {}}, &plugins);
    return error.empty() ? plugins[0].function + "|" + plugins[0].library : error;
}

TEST(Plugins, NamedOnes) {
    const std::string spaced = "-option: expected \"function library\", got ";
    const std::string joined = "-option: expected \"function:library\", got ";
    struct Row {
        const char *text;
        char separator;
        std::string expected;
    };
    const Row rows[] = {
        {"f lib.so", ' ', "f|lib.so"},
        {" \tf \t a b.so ", ' ', "f|a b.so"},
        {"f", ' ', spaced + "\"f\""},
        {"  ", ' ', spaced + "\"  \""},
        {"f:./lib.so", ':', "f|./lib.so"},
        {"f:a:b", ':', "f|a:b"},
        {"f lib.so", ':', joined + "\"f lib.so\""},
        {":lib", ':', joined + "\":lib\""},
        {"f:", ':', joined + "\"f:\""},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(chosen(row.text, row.separator), row.expected);
    }
}

TEST(Plugins, DefaultOneIsLookedForInOrder) {
    std::string folder = std::filesystem::temp_directory_path() / "plugins-XXXXXX";
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    const PluginOption option{.name = "+o", .separator = ':', .folders = {folder + "/no", folder}};
    std::vector<Plugin> plugins;
    EXPECT_EQ(choose_plugins({}, option, &plugins),
              "the plug-in was not found; name one with +o=\"function:library\". Looked for:\n  " +
                  folder + "/no/libswfli.so\n  " + folder + "/libswfli.so");
    std::ofstream(folder + "/libswfli.so") << "x";
    plugins.clear();
    EXPECT_EQ(choose_plugins({}, option, &plugins), "");
    EXPECT_EQ(plugins.at(0).function, "swfli_init");
    EXPECT_EQ(plugins.at(0).library, folder + "/libswfli.so");
    std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace wf
