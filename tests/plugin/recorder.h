// SPDX-License-Identifier: Apache-2.0
// The plug-in's own operations over a simulator in memory, without its commands: tests build a
// design, watch regions of it, open windows and look at the monitor table.
#pragma once

#include "plugin/core/window_commands.h"
#include "plugin/monitor/monitor_table.h"
#include "plugin/monitor/value_change.h"
#include "plugin/monitor/window.h"
#include "plugin/select/policy.h"
#include "plugin/select/registration.h"
#include "plugin/support/messages.h"
#include "plugin/support/run_state.h"
#include "tests/plugin/strict_simulator.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <string>
#include <vector>

using Lines = std::vector<std::string>;

// How many calls of strdup, realloc and aligned_alloc are granted before one is refused; negative:
// all are.
inline int granted_allocations = -1;

// One text for each watched signal in table order: "name(=alias...) code/width".
inline Lines watched() {
    Lines lines;
    mfli_visit_monitor_table(
        [](MonitorElement *element, void *context) {
            std::string line = mfli_element_name(element);
            for (list_walk walk(mfli_element_aliases(element)); walk; walk.step()) {
                line += std::string("=") + static_cast<const char *>(walk.item());
            }
            line +=
                " " + std::to_string(element->type_code()) + "/" + std::to_string(element->width());
            static_cast<Lines *>(context)->push_back(line);
        },
        &lines);
    return lines;
}

// One text for each watched bit: "name T0 T1 TX TC IG state", a bit's number before its name when
// there are several.
inline Lines activity() {
    Lines lines;
    mfli_visit_monitor_table(
        [](MonitorElement *element, void *context) {
            for (int i = 0; i < element->width(); ++i) {
                const BitActivity &bit = *mfli_bit(element, i);
                char figures[200];
                std::snprintf(figures, sizeof figures, " %g %g %g %g %g %d", bit.t0, bit.t1, bit.tx,
                              bit.tc, bit.ig, bit.state);
                const std::string number = element->width() > 1 ? std::to_string(i) + ":" : "";
                static_cast<Lines *>(context)->push_back(number + mfli_element_name(element) +
                                                         figures);
            }
        },
        &lines);
    return lines;
}

class Recorder : public ::testing::Test {
  protected:
    Recorder() {
        mfli_window_active = 0;
        mfli_debug_level = 0;
        mfli_window_time = 0;
        mfli_overflow_flag = 0;
        mfli_policy_table = st_alloc_abo(st_strcmp, st_strhash);
        mfli_init_monitor_table();
        mfli_init_speed_lists();
    }
    ~Recorder() override {
        mfli_free_monitor_table();
        mfli_free_speed_lists();
        mfli_free_policy_table();
        mfli_window_active = 0;
        mfli_debug_level = 0;
    }

    // Registers a region and lets the window's commands through; returns the messages.
    Lines watch(const char *region) {
        register_region(sim.region_handle(region));
        mfli_set_toggle_region_status();
        return sim.lines();
    }
    // Open and close a window between time steps, as the commands do.
    void open() {
        sim.settle();
        mfli_start(nullptr);
    }
    void close() {
        sim.settle();
        mfli_stop(nullptr);
    }
    MonitorElement *element_of(const char *path) {
        void *element = nullptr;
        st_lookup_kptr_vptr(mfli_monitor_table, sim.handle(path), &element);
        return static_cast<MonitorElement *>(element);
    }

    wf::test::StrictSimulator sim;
};
