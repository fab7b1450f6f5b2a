// SPDX-License-Identifier: Apache-2.0
// A shell over a simulator in memory, whose time the test controls and whose transcript it reads.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "host/shell/message_watch.h"
#include "host/shell/run_control.h"
#include "host/shell/shell.h"
#include "host/shell/transcript.h"
#include "host/shell/used_files.h"
#include "tests/support/memory_design.h"

namespace wf::test {

// Moves time at once, up to `end`; as a host inside a simulator would, it may suspend instead.
class FakeControl : public RunControl {
  public:
    explicit FakeControl(MemorySimulator &simulator) : simulator_(simulator) {}

    Ticks now() const override { return simulator_.now(); }
    int resolution_exponent() const override { return simulator_.design().resolution_exponent; }
    RunEnd start(Ticks limit) override {
        limits.push_back(limit);
        if (suspends) {
            return RunEnd::suspended;
        }
        if (end == RunEnd::interrupted) {
            std::raise(SIGINT);
        }
        move(limit);
        return end;
    }
    RunEnd result() const override { return end; }
    std::string restart_obstacle() const override { return obstacle; }
    std::string restart() override { return {}; }
    std::string damage() const override {
        return end == RunEnd::damaged ? "x.vcd:7: expected a time, got \"#\"" : "";
    }
    void move(Ticks limit) { simulator_.run_to(std::min(limit, data_end)); }

    std::vector<Ticks> limits;
    Ticks data_end = 1'000'000;
    RunEnd end = RunEnd::reached;
    std::string obstacle;
    bool suspends = false;

  private:
    MemorySimulator &simulator_;
};

class ShellTest : public testing::Test {
  protected:
    ShellTest() : folder_(std::filesystem::temp_directory_path() / "shell_test.XXXXXX") {
        std::string name = folder_.string();
        folder_ = mkdtemp(name.data());
    }
    ~ShellTest() override {
        shell_.reset();
        std::fclose(screen_);
        std::free(screen_text_);
        std::filesystem::remove_all(folder_);
    }

    // Made at the first use, so that a test can register plug-in commands before or after.
    Shell &shell() {
        if (!shell_) {
            shell_ = std::make_unique<Shell>(
                Simulation{sim.session(), control, transcript_, watch_, files_});
        }
        return *shell_;
    }
    ScriptEnd run(const std::string &commands) { return shell().run_text(commands, "test"); }

    // The result of commands that must succeed.
    std::string result_of(const std::string &commands) {
        EXPECT_EQ(run(commands), ScriptEnd::done) << commands << ": " << shell().result();
        return shell().result();
    }

    // What has been shown since the last call.
    std::string shown() {
        std::fflush(screen_);
        std::string text(screen_text_ + read_, screen_size_ - read_);
        read_ = screen_size_;
        return text;
    }

    std::string write_file(const std::string &name, const std::string &text) {
        std::ofstream(folder_ / name) << text;
        return folder_ / name;
    }
    static std::string read_file(const std::string &path) {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::string path(const std::string &name) const { return folder_ / name; }

    MemorySimulator sim{-9};
    FakeControl control{sim};

  private:
    std::filesystem::path folder_;
    char *screen_text_ = nullptr;
    size_t screen_size_ = 0;
    size_t read_ = 0;
    std::FILE *screen_ = open_memstream(&screen_text_, &screen_size_);
    Transcript transcript_{screen_};
    MessageWatch watch_{transcript_};
    UsedFiles files_;
    std::unique_ptr<Shell> shell_;
};

}  // namespace wf::test
