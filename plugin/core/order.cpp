// SPDX-License-Identifier: Apache-2.0
// The rules on the order of commands, as a table of tests for each.
#include "plugin/core/order.h"

#include "plugin/support/messages.h"
#include "plugin/support/run_state.h"

// How a refusal reads; the names of one or two commands are filled in. Reports and resets are
// refused without a full stop.
enum class Refusal { done_before, done_before_no_stop, multiple_calls, consecutive_calls };

// One test: a bit of the state word that must be set or clear, and the refusal if it is not.
struct Test {
    uint32_t bit;
    bool must_be_set;
    Refusal refusal;
    const char *first;
    const char *second;
};

static void refuse(const Test &test) {
    switch (test.refusal) {
        case Refusal::done_before:
            mfli_message("Error (KLVA-PWR): %s must be done before %s.", test.first, test.second);
            break;
        case Refusal::done_before_no_stop:
            mfli_message("Error (KLVA-PWR): %s must be done before %s", test.first, test.second);
            break;
        case Refusal::multiple_calls:
            mfli_message("Error (KLVA-PWR): Multiple calls to %s are not allowed.", test.first);
            break;
        case Refusal::consecutive_calls:
            mfli_message(
                "Error (KLVA-PWR): Two consecutive calls to %s are not allowed. A %s must be done "
                "in between.",
                test.first, test.second);
            break;
    }
}

// The first test that fails decides the refusal.
template <int N>
static int check(const Test (&tests)[N]) {
    for (const Test &test : tests) {
        if (((mfli_window_active & test.bit) != 0) != test.must_be_set) {
            refuse(test);
            return 0;
        }
    }
    return 1;
}

int mfli_check_rtl_starting_point() {
    static const Test tests[] = {
        {MFLI_REGION_CHOSEN, false, Refusal::done_before, "read_rtl_saif", "set_toggle_region"}};
    return check(tests);
}

int mfli_check_set_policy_starting_point() {
    static const Test tests[] = {{MFLI_REGION_CHOSEN, false, Refusal::done_before,
                                  "set_net_monitoring_policy", "set_toggle_region"}};
    return check(tests);
}

int mfli_check_set_region_starting_point() {
    static const Test tests[] = {
        {MFLI_REGION_CHOSEN, false, Refusal::multiple_calls, "set_toggle_region", nullptr},
        {MFLI_WINDOW_OPEN, false, Refusal::done_before, "set_toggle_region", "toggle_start"}};
    return check(tests);
}

int mfli_check_toggle_start_starting_point() {
    static const Test tests[] = {
        {MFLI_REGION_CHOSEN, true, Refusal::done_before, "set_toggle_region", "toggle_start"},
        {MFLI_WINDOW_OPEN, false, Refusal::consecutive_calls, "toggle_start", "toggle_stop"}};
    return check(tests);
}

int mfli_check_toggle_stop_starting_point() {
    static const Test tests[] = {
        {MFLI_REGION_CHOSEN, true, Refusal::done_before, "set_toggle_region", "toggle_stop"},
        {MFLI_WINDOW_OPEN, true, Refusal::done_before, "toggle_start", "toggle_stop"}};
    return check(tests);
}

int mfli_check_toggle_report_starting_point() {
    static const Test tests[] = {
        {MFLI_REGION_CHOSEN, true, Refusal::done_before_no_stop, "set_toggle_region",
         "toggle_report"},
        {MFLI_WINDOW_CLOSED, true, Refusal::done_before_no_stop, "toggle_stop", "toggle_report"}};
    return check(tests);
}

int mfli_check_toggle_reset_starting_point() {
    static const Test tests[] = {
        {MFLI_REGION_CHOSEN, true, Refusal::done_before_no_stop, "set_toggle_region",
         "toggle_reset"},
        {MFLI_REPORT_WRITTEN, true, Refusal::done_before_no_stop, "toggle_report", "toggle_reset"}};
    return check(tests);
}
