// SPDX-License-Identifier: Apache-2.0
// The module's way in: the simulator calls what vlog_startup_routines lists when it has loaded the
// module, and asks for nothing else by name.
#include <dlfcn.h>
#include <tcl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <memory>

#include "host/source/vpi/access.h"
#include "host/vpi/adapter.h"
#include "host/vpi/arguments.h"

// Icarus Verilog's own; null elsewhere.
extern "C" void vpip_set_return_value(int value) __attribute__((weak));

namespace wf {
namespace {

constexpr int exit_error = 1;
constexpr int exit_usage = 2;

std::unique_ptr<Adapter> adapter;

void complain(const std::string &text) {
    std::fflush(stdout);
    std::fprintf(stderr, "wattforge: %s\n", text.c_str());
}

// Nothing has been simulated yet: the process ends with a status of its own.
[[noreturn]] void give_up(const std::string &text, int status) {
    complain(text);
    adapter.reset();
    std::exit(status);
}

// Nothing may be thrown into the simulator.
template <typename Function>
void guarded(Function function) {
    try {
        if (adapter != nullptr) {
            function(*adapter);
        }
    } catch (const std::exception &exception) {
        give_up(std::string("gave up: ") + exception.what(), exit_error);
    }
}

// The module's own file.
std::string module_path() {
    Dl_info info{};
    dladdr(reinterpret_cast<void *>(&module_path), &info);
    return info.dli_fname == nullptr ? "" : info.dli_fname;
}

// What a simulator shows and when it calls back was tried in these two only. In another one,
// activity would be counted wrongly, and nobody would notice.
void refuse_unknown_simulators() {
    const std::string name = vpi::product();
    if (name != "GHDL" && !name.starts_with("Icarus")) {
        give_up("this module records inside Icarus Verilog and GHDL, not \"" + name +
                    "\"; record from its VCD instead: wfsim -saif FILE -- COMMAND, where COMMAND "
                    "simulates and has {} for the VCD file's name",
                exit_error);
    }
}

// Simulators keep a module's symbols to itself, but the plug-in is to find the interface's
// functions in it.
void offer_symbols(const std::string &module) {
    if (dlopen(module.c_str(), RTLD_NOW | RTLD_NOLOAD | RTLD_GLOBAL) == nullptr) {
        give_up("cannot offer the interface to a plug-in: " + std::string(dlerror()), exit_error);
    }
}

Arguments read_arguments() {
    s_vpi_vlog_info info{};
    vpi_get_vlog_info(&info);
    const std::vector<std::string> words(info.argv, info.argv + info.argc);
    Arguments arguments;
    const std::string error = parse_arguments(words, std::getenv("WF_DO"), &arguments);
    if (!error.empty()) {
        give_up(error, exit_usage);
    }
    if (!arguments.script.empty() && access(arguments.script.c_str(), R_OK) != 0) {
        give_up("cannot read " + arguments.script + ": " + std::strerror(errno), exit_error);
    }
    return arguments;
}

// --- callbacks ---

PLI_INT32 tasks_settled(s_cb_data *) {
    guarded([](Adapter &self) { self.run_tasks(); });
    return 0;
}

void take_task(const std::string &line) {
    guarded([&line](Adapter &self) {
        if (self.take_task(line)) {
            vpi::call_back_when_settled(tasks_settled);
        }
    });
}

PLI_INT32 time_zero_settled(s_cb_data *) {
    guarded([](Adapter &self) { self.start_script(); });
    return 0;
}

PLI_INT32 simulation_starts(s_cb_data *) {
    guarded([](Adapter &self) {
        const std::string error = self.read_design();
        if (!error.empty()) {
            give_up(error, exit_error);
        }
        vpi::call_back_when_settled(time_zero_settled);
    });
    return 0;
}

// Icarus Verilog takes a status to exit with. GHDL takes none, but has nothing left to do that
// leaving the process here would not do.
void ask_for_status(int status) {
    if (status == 0) {
        return;
    }
    if (vpip_set_return_value != nullptr) {
        vpip_set_return_value(status);
    } else {
        std::exit(status);
    }
}

PLI_INT32 simulation_ends(s_cb_data *) {
    int status = 0;
    guarded([&status](Adapter &self) {
        self.finish();
        status = self.status();
        if (self.screen_failed()) {
            complain("standard output could not be written completely");
            status = status == 0 ? exit_error : status;
        }
    });
    adapter.reset();
    Tcl_Finalize();
    ask_for_status(status);
    return 0;
}

void start() {
    refuse_unknown_simulators();
    const std::string module = module_path();
    offer_symbols(module);
    const Arguments arguments = read_arguments();
    adapter = std::make_unique<Adapter>();
    guarded([&](Adapter &self) {
        const std::string error =
            self.prepare(arguments, std::filesystem::path(module).parent_path(), take_task);
        if (!error.empty()) {
            give_up(error, exit_error);
        }
    });
    vpi::call_back(cbStartOfSimulation, simulation_starts);
    vpi::call_back(cbEndOfSimulation, simulation_ends);
}

}  // namespace
}  // namespace wf

extern "C" {

extern void (*vlog_startup_routines[])();
void (*vlog_startup_routines[])() = {wf::start, nullptr};

}  // extern "C"
