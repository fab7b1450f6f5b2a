// SPDX-License-Identifier: Apache-2.0
// toggle_report from command line to file: arguments, units, the trees of both builds, failures.
#include "plugin/saif/report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "plugin/core/entry.h"
#include "plugin/monitor/monitor_table.h"
#include "plugin/rtlsaif/rtl_table.h"
#include "plugin/saif/report_tree.h"
#include "plugin/support/hash_table.h"
#include "plugin/support/run_state.h"
#include "plugin/support/text.h"
#include "tests/plugin/report_text.h"
#include "tests/plugin/strict_simulator.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

// A plug-in in a picosecond simulator, and a folder of its own for files.
struct Report : testing::Test {
    wf::test::StrictSimulator sim{-12};
    std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("wattforge_report_" + std::to_string(getpid()));
    std::string file = (folder / "out.saif").string();

    Report() {
        std::filesystem::create_directory(folder);
        mfli_window_active = 0;
        sim.start(swfli_init);
    }
    ~Report() override {
        sim.quit();
        std::filesystem::remove_all(folder);
    }

    // A clock that rises at 5000, falls at 15000 and is counted from 0 to 20000.
    void record_clock(const std::string &region) {
        sim.signal("/top/clk", sim.types.std_logic(), wf::Mode::in);
        record(region, [this] {
            sim.drive(5000, "/top/clk", '1');
            sim.drive(15000, "/top/clk", '0');
        });
    }
    template <typename Stimulus>
    void record(const std::string &regions, Stimulus stimulus) {
        sim.command("set_toggle_region " + regions);
        if (sim.design().find_signal("/top/clk") != nullptr) {
            sim.set("/top/clk", '0');
        }
        sim.command("toggle_start");
        stimulus();
        sim.run_to(20000);
        sim.command("toggle_stop");
        sim.lines();
    }
    bool reported() const { return (mfli_window_active & MFLI_REPORT_WRITTEN) != 0; }

    // The body of a report of that instance: what follows the DURATION line, less the trailer, with
    // each record in one line; NetPrint below has records as they are.
    std::string body(const std::string &instance) {
        EXPECT_THAT(sim.output_of("toggle_report " + file + " 1.0e-9 " + instance),
                    ElementsAre("Information (KLVA-PWR): Report done, wrote file \"" + file +
                                "\" at time 20000.000000"));
        const std::string text = text_of(file);
        const size_t start = text.find('\n', text.find("(DURATION")) + 1;
        return records_in_lines(text.substr(start, text.size() - start - 2));
    }
};

TEST_F(Report, RefusesBadArgumentsOneByOneAndIgnoresFurtherOnes) {
    record_clock("/top");
    const std::string error = "Error (KLVA-PWR): ";
    const std::string bad_unit =
        error +
        "Bad synthesis_time_unit (param 2 to $toggle_report): %, Synthesis "
        "time unit must be of the form 1.0e-n, where 0 <= n <= 15";
    const auto bad = [&](const char *power) {
        return std::string(bad_unit).replace(bad_unit.find('%'), 1, power);
    };
    const std::string few = error + "toggle_report requires at least three arguments";
    const std::string many =
        "Warning (KLVA-PWR): toggle_report takes only three arguments, all the rest will be "
        "ignored";
    const auto no_number = [&](const char *text) {
        return error + "Could not interpret argument " + text + " as number";
    };
    const auto no_region = [&](const char *text) {
        return error + "Invalid instance_str " + text + "; no region of this name found";
    };
    const std::string negative = error + "The synthesis time unit must be positive";
    const struct {
        std::string arguments;
        std::vector<std::string> lines;
    } rows[] = {
        {"", {few}},
        {file + " 1.0e-9", {few}},
        {file + " abc /nowhere", {no_number("abc")}},
        {file + " 0 /top", {no_number("0")}},
        {file + " -1e-9 /nowhere", {negative}},
        {file + " 1e-9 /nowhere", {no_region("/nowhere")}},
        {file + " 1e-9 /nowhere 4", {no_region("/nowhere")}},
        {file + " 0.0 /top 4 5", {many, no_number("0.0")}},
        {file + " 1.0e-16 /top", {bad("0.000000")}},
        {file + " 10 /top", {bad("10.000000")}},
        {file + " nan /top", {bad("nan")}},
        {file + " inf /top", {bad("inf")}},
        {file + "/x 1e-9 /top", {error + "Could not open filename " + file + "/x for writing"}},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(sim.output_of("toggle_report " + row.arguments), row.lines) << row.arguments;
        EXPECT_FALSE(std::filesystem::exists(file)) << row.arguments;
        EXPECT_FALSE(reported()) << row.arguments;
    }
    std::ofstream(file) << "an earlier report";
    sim.command("toggle_report " + file + " 1.0e-16 /top");
    EXPECT_EQ(text_of(file), "an earlier report");
    // A fourth argument is ignored, a fifth is warned of.
    EXPECT_THAT(sim.output_of("toggle_report " + file + " 1e-9,/top four"),
                ElementsAre(HasSubstr("Report done")));
    EXPECT_TRUE(reported());
    EXPECT_THAT(sim.output_of("toggle_report " + file + " 1e-9 /top four five"),
                ElementsAre(many, HasSubstr("Report done")));
}

TEST_F(Report, ScalesDurationsToTheUnit) {
    record_clock("/top");
    const struct {
        const char *unit;
        const char *timescale;
        const char *duration;
        const char *t1;
    } rows[] = {
        {"1.0e-9", "(TIMESCALE 1 ns)", "(DURATION 20.00)", "(T1 10.000000)"},
        {"1.0e-10", "(TIMESCALE 100 ps)", "(DURATION 200.00)", "(T1 100.000000)"},
        {"5.0e-9", "(TIMESCALE 10 ns)", "(DURATION 2.00)", "(T1 1.000000)"},
        {"1.0e-15", "(TIMESCALE 1 fs)", "(DURATION 20000000.00)", "(T1 10000000.000000)"},
        {"1.0", "(TIMESCALE 1 s)", "(DURATION 0.00)", "(T1 0.000000)"},
    };
    for (const auto &row : rows) {
        sim.command(std::string("toggle_report ") + file + " " + row.unit + " /top");
        const std::string text = text_of(file);
        EXPECT_THAT(text, HasSubstr(row.timescale)) << row.unit;
        EXPECT_THAT(text, HasSubstr(row.duration)) << row.unit;
        EXPECT_THAT(text, HasSubstr(row.t1)) << row.unit;
    }
}

TEST_F(Report, WritesEveryBitUnderTheSimulatorsNames) {
    sim.signal("/top/clk", sim.types.std_logic(), wf::Mode::in);
    sim.signal("/top/u1/bus", sim.types.array(sim.types.std_logic(), 1, 0), wf::Mode::out);
    sim.signal("/top/u1/count", sim.types.integer("small", 0, 3));
    sim.signal("/top2/x", sim.types.bit());
    record("/top", [this] {
        sim.drive(5000, "/top/clk", '1');
        sim.set("/top/u1/bus", "0X");
        sim.set("/top/u1/count", 2);
        sim.drive(15000, "/top/clk", '0');
        sim.set("/top/u1/bus", "1X");
    });
    // What is in the instance has all its names written, also those elsewhere.
    void *element = nullptr;
    ASSERT_TRUE(st_lookup_kptr_vptr(mfli_monitor_table, sim.handle("/top/u1/count"), &element));
    mfli_add_name_to_monitor("/else[1]/cnt", static_cast<MonitorElement *>(element));
    EXPECT_EQ(body("/top/u1"), R"((INSTANCE top
   (INSTANCE u1
      (PORT
         (bus\(1\) 10 5 5 1 0)
         (bus\(0\) 0 0 20 0 0)
      )
      (NET
         (count\(0\) 20 0 0 0 0)
         (count\(1\) 5 15 0 1 0)
      )
   )
)
(INSTANCE else\(1\)
   (NET
      (cnt\(0\) 20 0 0 0 0)
      (cnt\(1\) 5 15 0 1 0)
   )
)
)");
    // Plain prefixes decide: /top2 would lie in /top, had it been watched. The whole header, once.
    sim.command("toggle_report " + file + " 1.0e-9 /top2");
    const std::string text = text_of(file);
    EXPECT_EQ(text.substr(0, text.find("(DATE")),
              "(SAIFILE\n(SAIFVERSION \"2.0\")\n(DIRECTION \"backward\")\n(DESIGN )\n");
    EXPECT_EQ(text.substr(text.find("(VENDOR")),
              "(VENDOR \"Kelvara, Inc\")\n(PROGRAM_NAME \"Wattforge FLI\")\n(VERSION \"4.1.0\")\n"
              "(DIVIDER / )\n(TIMESCALE 1 ns)\n(DURATION 20.00)\n)\n");
}

// Enters an object of a forward file read for a testbench path.
void map(const std::string &first, const std::string &second, int32_t kind,
         const char *testbench = "/tb/dut") {
    if (mfli_rtl_table == nullptr) {
        mfli_rtl_table = st_alloc_abo(st_strcmp, st_strhash);
    }
    st_table *objects = get_rtl_hash(mfli_rtl_table, testbench);
    RtlObject *object = mfli_create_rtl_object();
    object->second_full_name = string_alloc(second.c_str());
    object->kind = kind;
    void *known = nullptr;
    if (!st_lookup_kptr_vptr(objects, first.c_str(), &known)) {
        known = list_alloc();
        st_insert_kptr_vptr(objects, mfli_strdup(first.c_str()), known);
    }
    list_append(static_cast<list *>(known), object);
}

TEST_F(Report, WritesMappedBitsUnderTheirRtlNames) {
    sim.signal("/tb/dut/u1/q", sim.types.array(sim.types.std_logic(), 1, 0));
    sim.signal("/tb/dut/clk", sim.types.std_logic(), wf::Mode::in);
    sim.signal("/tb/dut/bus", sim.types.std_logic());
    sim.signal("/tb/dut/rst", sim.types.std_logic());
    map("top/u1/q[0]", "top/u1/q_reg[0]/Q", RTL_SEQUENTIAL);
    map("top/u1/q[0]", "top/u1/q[0]", RTL_ORDINARY);
    map("top/bus", "top/u1/tri/by", RTL_ORDINARY);  // an instance first, then a virtual one
    map("top/bus", "top/u1/tri/Z", RTL_TRI_STATE);
    map("top/bus", "top/u1/tri/again", RTL_SEQUENTIAL);       // stays what it was
    map("top/bus", "top/u1/other/Z", 7);                      // no such kind: not written
    map("top/bus", "to", RTL_ORDINARY);                       // no name behind the instance's
    map("top/dut/bus", "top/dut/late", RTL_ORDINARY, "/tb");  // the first testbench's objects win
    map("top/tb/dut/rst", "top/tb/dut/clear", RTL_ORDINARY, "");
    mfli_set_read_rtl_status();
    sim.command("set_net_monitoring_policy on /tb/dut");
    record("/tb/dut", [this] {
        sim.set("/tb/dut/bus", '1');
        sim.set("/tb/dut/clk", '0');
        sim.set("/tb/dut/u1/q", "00");
    });
    // Ports: what is mapped, and clk by its mode. The bit without an object keeps square brackets.
    const std::string expected = R"((INSTANCE tb
   (INSTANCE dut
      (PORT
         (clear 0 0 20 0 0)
         (clk 20 0 0 0 0)
      )
      (INSTANCE u1
         (PORT
            (q\[0\] 20 0 0 0 0)
         )
         (NET
            (q\[1\] 20 0 0 0 0)
         )
         (VIRTUAL_INSTANCE "sequential" q_reg\[0\]
            (PORT
               (Q 20 0 0 0 0)
            )
         )
         (VIRTUAL_INSTANCE "tri-state" tri
            (PORT
               (by 0 20 0 0 0)
               (Z 0 20 0 0 0)
               (again 0 20 0 0 0)
            )
         )
      )
   )
)
)";
    EXPECT_EQ(body("/tb/dut"), expected);
}

// How many files a report leaves in its folder, and what stands under its name.
std::string left_in(const std::filesystem::path &folder, const std::string &file) {
    const auto files = std::distance(std::filesystem::directory_iterator(folder), {});
    std::ostringstream text;
    text << files << ' ' << std::ifstream(file).rdbuf();
    return text.str();
}

TEST_F(Report, KeepsTheOldReportWhenTheNewOneCannotBeWritten) {
    record_clock("/top");
    const std::string full = (folder / "full").string();
    const std::string link = (folder / "link.saif").string();
    const std::string start = "Error (KLVA-PWR): Could not write file ";
    std::filesystem::create_symlink("/dev/full", full);
    EXPECT_THAT(sim.output_of("toggle_report " + full + " 1e-9 /top"),
                ElementsAre(start + full + ": No space left on device"));
    std::filesystem::create_symlink(folder / "target.saif", link);
    std::ofstream(file) << "old";
    // A file that may not grow: the signal of it must reach nobody.
    rlimit old = {};
    getrlimit(RLIMIT_FSIZE, &old);
    rlimit little = {100, old.rlim_max};
    setrlimit(RLIMIT_FSIZE, &little);
    const auto plain = sim.output_of("toggle_report " + file + " 1e-9 /top");
    const auto linked = sim.output_of("toggle_report " + link + " 1e-9 /top");
    setrlimit(RLIMIT_FSIZE, &old);
    EXPECT_THAT(plain, ElementsAre(start + file + ": File too large"));
    EXPECT_THAT(linked,
                ElementsAre(start + link + ": File too large; what it holds is not complete"));
    EXPECT_EQ(left_in(folder, file), "4 old");
    EXPECT_FALSE(reported());
    EXPECT_THAT(sim.output_of("toggle_reset"), Not(IsEmpty()));  // refused: nothing was reported
}

TEST_F(Report, PutsTheNewReportInThePlaceOfTheOldOne) {
    record_clock("/top");
    struct stat found = {};
    // name of the old one, its mode (0: none), mode of the new one
    const std::tuple<std::string, mode_t, mode_t> rows[] = {
        {"new", 0, 0604}, {std::string(255, 'l'), 0664, 0664}, {"private", 0600, 0600}};
    const mode_t mask = umask(0062);
    for (const auto &[name, before, after] : rows) {
        file = folder / name;
        const std::string unfinished = file.substr(0, folder.string().size() + 245) + ".unfinished";
        if (before != 0) {
            std::ofstream(file) << "old";
            chmod(file.c_str(), before);
            std::ofstream(unfinished) << "of a writer that was killed";
            std::ofstream(folder / "private.unfinished2") << "of another, which wrote then";
        }
        const std::ifstream reader(file);
        EXPECT_THAT(body("/top"), HasSubstr("clk"));
        EXPECT_EQ(stat(file.c_str(), &found), 0);
        EXPECT_EQ(found.st_mode & 0777, after) << name;
        EXPECT_EQ(left_in(folder, file).substr(0, 11),
                  name.size() == 255 ? "2 (SAIFILE\n" : "1 (SAIFILE\n")
            << name;
        // Who reads the old one reads on.
        EXPECT_EQ((std::ostringstream() << reader.rdbuf()).str(), before == 0 ? "" : "old");
        std::filesystem::remove(file);
    }
    umask(mask);
}

TEST_F(Report, LeavesALivingWritersFileAlone) {
    record_clock("/top");
    const std::string other = file + ".unfinished";
    const int writer = open(other.c_str(), O_WRONLY | O_CREAT, 0666);
    ASSERT_EQ(flock(writer, LOCK_EX), 0);
    EXPECT_THAT(body("/top"), HasSubstr("clk"));
    EXPECT_EQ(left_in(folder, other), "2 ");
    close(writer);
}

std::string printed(const std::string &name, saif_switching_attribute record, int indentation) {
    char *text = nullptr;
    size_t length = 0;
    FILE *stream = open_memstream(&text, &length);
    dstring *key = string_alloc(name.c_str());
    net_print(stream, key, &record, 0.1, indentation);
    fclose(stream);
    string_free(key);
    std::string result(text, length);
    free(text);
    return result;
}

TEST(NetPrint, WritesBlanksEvenForMissingRecords) {
    saif_timing_attribute timing = {2.0, 1.5, 3.0, {0.0, 0.0}};
    saif_toggle_attribute toggle = {4.0, 1.0, 0.0, -1.0};
    const std::string times = "(T0 0.150000) (T1 0.200000) (TX 0.300000)\n";
    const std::string counts = "(TC 4.000000) (IG 1.000000)\n";
    EXPECT_EQ(printed("n", {&timing, &toggle, {0, 0}}, 0),
              "(n\n   " + times + "   " + counts + ")\n");
    EXPECT_EQ(printed("n", {nullptr, &toggle, {0, 0}}, 2), "  (n\n          " + counts + "  )\n");
    EXPECT_EQ(printed("n", {nullptr, nullptr, {0, 0}}, -1), "(n\n    )\n");
    // Deeper than any buffer, longer than any buffer, and about as long as one.
    for (const int length : {5, 990, 1023, 1024, 1025, 5000}) {
        const std::string name(static_cast<size_t>(length), 'n');
        for (const int depth : {30, 1024, 3000}) {
            const std::string blanks(static_cast<size_t>(depth), ' ');
            std::ostringstream expected;
            expected << blanks << '(' << name << '\n'
                     << blanks << "   " << times << blanks << "   " << counts << blanks << ")\n";
            EXPECT_EQ(printed(name, {&timing, &toggle, {0, 0}}, depth), expected.str());
        }
    }
}

}  // namespace
