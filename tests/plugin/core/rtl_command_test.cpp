// SPDX-License-Identifier: Apache-2.0
// The command read_rtl_saif: every message, what is filed under which path, and the way of an
// integer's bits from the forward file to the report.
#include "plugin/core/rtl_command.h"

#include "plugin/core/entry.h"
#include "tests/plugin/recorder.h"
#include "tests/plugin/report_text.h"
#include "tests/plugin/rtlsaif/reading.h"
#include "tests/support/scratch.h"

using rtlsaif_test::header;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

const std::string no_path =
    "Warning (KLVA-PWR): You did not specify the path for the testbench modules. This is likely to "
    "cause the FLI routines to fail to register the RTL objects. To specify the path, use:\n"
    "  read_rtl_saif file test_modules/design_instance";
const std::string bad_path =
    "Error (KLVA-PWR): the second argument gives an invalid path for the testbench module.";
const std::string too_many =
    "Error (KLVA-PWR): read_rtl_saif cannot have more that two parameters.";
const std::string unopened = "Error (KLVA-PWR): Unable to open file ";

class ReadRtlSaif : public ::testing::Test {
  protected:
    ReadRtlSaif() {
        mfli_window_active = 0;
        sim.signal("/tb/dut/q", sim.types.std_logic());
        sim.signal("/tb/dut/count", sim.types.integer("n", 0, 15));
        sim.signal("/tb/two/q", sim.types.std_logic());
        sim.start(swfli_init);
        sim.lines();
    }
    ~ReadRtlSaif() override {
        sim.quit();
        mfli_window_active = 0;
    }

    std::string file(const std::string &body) {
        std::string name = wf::test::scratch_file("forward" + std::to_string(files_written++));
        std::ofstream(name) << header() << body << ")\n";
        return name;
    }
    Lines read(const std::string &arguments) { return sim.output_of("read_rtl_saif " + arguments); }
    static std::string done(const std::string &name) {
        return "Information (KLVA-PWR): Reading rtl saif file \"" + name + "\" done.";
    }
    // The whole table: "path > object" lines.
    static Lines filed() {
        Lines lines;
        st_generator *generator = st_init_gen(mfli_rtl_table);
        void *path = nullptr;
        void *objects = nullptr;
        while (st_gen_kptr_vptr(generator, &path, &objects) != 0) {
            for (const std::string &object :
                 rtlsaif_test::list_objects(static_cast<st_table *>(objects))) {
                lines.push_back(static_cast<char *>(path) + (" > " + object));
            }
        }
        st_free_gen(generator);
        return lines;
    }

    wf::test::StrictSimulator sim;
    int files_written = 0;
};

TEST_F(ReadRtlSaif, ChecksItsArgumentsInOrder) {
    const std::string good = file("(INSTANCE top)");
    const struct {
        std::string arguments;
        Lines messages;
    } rows[] = {
        {"", {"Error (KLVA-PWR): read_rtl_saif must have at least one parameter."}},
        {" , ", {"Error (KLVA-PWR): read_rtl_saif must have at least one parameter."}},
        {"/no/such", {no_path, unopened + "/no/such"}},
        {"/no/such /no/region", {unopened + "/no/such"}},
        {"/no/such /tb third", {too_many}},
        {good + " /no/region", {bad_path}},
        {good + " /", {bad_path}},
        {good + " /tb/dut//", {bad_path}},
    };
    for (const auto &row : rows) {
        EXPECT_THAT(read(row.arguments), ElementsAreArray(row.messages)) << row.arguments;
        EXPECT_EQ(mfli_rtl_table, nullptr);
        EXPECT_EQ(mfli_is_rtl_read(), 0u);
    }
    EXPECT_THAT(read(good), ElementsAre(no_path, done(good)));
    EXPECT_NE(mfli_is_rtl_read(), 0u);
    sim.command("set_toggle_region /tb");
    EXPECT_THAT(read(good), ElementsAre("Error (KLVA-PWR): read_rtl_saif must be done before "
                                        "set_toggle_region."));
}

TEST_F(ReadRtlSaif, FilesObjectsUnderTheFullNameOfTheTestbench) {
    const std::string first = file("(INSTANCE top (NET (q q1)))");
    const std::string second = file("(INSTANCE top (NET (q q2) (r r)))");
    for (const char *path : {"/tb/dut", "tb/dut", "tb/dut/", "//tb/dut.", ".tb/dut/"}) {
        EXPECT_THAT(read(first + " " + path), ElementsAre(done(first))) << path;
    }
    read(second + ",/tb/dut");
    read(second + " /tb/two");
    read(first);
    const std::string q = "/tb/dut > top/q: top, q, top/q1, 0";
    EXPECT_THAT(
        filed(),
        ElementsAre(q, q, q, q, q, "/tb/dut > top/q: top, q, top/q2, 0",
                    "/tb/dut > top/r: top, r, top/r, 0", "/tb/two > top/q: top, q, top/q2, 0",
                    "/tb/two > top/r: top, r, top/r, 0", " > top/q: top, q, top/q1, 0"));
}

TEST_F(ReadRtlSaif, KeepsQuietAboutErrorsBelowDebugLevel1) {
    const std::string bad = file("(INSTANCE top (NET (q q)\n(/)");
    const std::string two = file("(INSTANCE two (NET (x y/z)))");
    const std::string macro = file("(INSTANCE top (MPM_INSTANCE u_ram (NET (a a))))");
    EXPECT_THAT(read(bad + " /tb/dut"), ElementsAre(done(bad)));
    EXPECT_EQ(mfli_is_rtl_read(), 0u);
    mfli_debug_level = 1;
    EXPECT_THAT(read(bad + " /tb/dut"), ElementsAre(rtlsaif_test::error_at(7), done(bad)));
    EXPECT_THAT(
        read(macro + " /tb/dut"),
        ElementsAre("Need to specify the module name for MPM instance top/u_ram \n", done(macro)));
    EXPECT_NE(mfli_is_rtl_read(), 0u);
    mfli_debug_level = 2;
    EXPECT_THAT(read(two + " /tb/two"),
                ElementsAre("-------- addpath: /tb/dut", "top/q:   top/q", "top/q:   top/q",
                            "-------- addpath: /tb/two", "two/x:   two/y/z", done(two)));
}

TEST_F(ReadRtlSaif, LeadsToTheReportOfAnIntegersBits) {
    read(file("(INSTANCE top (NET (count[0] c\\[0\\]) (count[2] high/Q \"sequential\")"
              "(q[0] q) (lost l)))") +
         " /tb/dut");
    EXPECT_THAT(sim.output_of("set_toggle_region /tb/dut"),
                ElementsAre("Warning (KLVA-PWR): could not find signal /tb/dut/lost, skipping",
                            "Information (KLVA-PWR): Completed set_toggle_region"));
    EXPECT_THAT(watched(), ElementsAre("/tb/dut/count 2/4", "/tb/dut/q 0/1"));
    sim.set("/tb/dut/count", 1);
    sim.command("toggle_start");
    sim.drive(10, "/tb/dut/count", 5);
    sim.run_to(30);
    sim.command("toggle_stop");
    const std::string written = wf::test::scratch_file("report");
    sim.command("toggle_report " + written + " 1.0e-9 /tb/dut");
    const std::string report = records_in_lines(text_of(written));
    for (const char *text :
         {"\n         (c\\[0\\] 0 30 0 0 0)\n", "\n         (count\\[1\\] 30 0 0 0 0)\n",
          "\n         (count\\[3\\] 30 0 0 0 0)\n",
          "\n      (VIRTUAL_INSTANCE \"sequential\" high\n         (PORT\n"
          "            (Q 10 20 0 1 0)\n"}) {
        EXPECT_THAT(report, HasSubstr(text));
    }
}

}  // namespace
