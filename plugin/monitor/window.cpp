// SPDX-License-Identifier: Apache-2.0
// The three walks over all watched bits.
#include "plugin/monitor/window.h"

#include "plugin/monitor/monitor_table.h"
#include "plugin/monitor/sim_time.h"
#include "plugin/monitor/value_change.h"
#include "plugin/select/types.h"

double mfli_start_time;
double mfli_stop_time;
double mfli_window_time;
int32_t mfli_overflow_flag;

static void open_element(MonitorElement *element, void *now) {
    *mfli_dirty_mark(element) = 0;
    element->last_change = *static_cast<const mtiTime64T *>(now);
    const int32_t value = mti_GetSignalValue(element->signal);
    for (int32_t i = 0; i < element->width(); ++i) {
        mfli_update_saif_toggles_and_state(mfli_bit(element, i),
                                           map_value_to_01x(element->type_code(), value, i));
    }
}

static void close_element(MonitorElement *element, void *now) {
    *mfli_dirty_mark(element) = 0;
    const double ticks =
        mfli_ticks_between(element->last_change, *static_cast<const mtiTime64T *>(now));
    for (int32_t i = 0; i < element->width(); ++i) {
        mfli_update_saif_timing(mfli_bit(element, i), ticks);
        mfli_bit(element, i)->state = MFLI_STATE_X;
    }
}

static void reset_element(MonitorElement *element, void *) {
    *mfli_dirty_mark(element) = 0;
    for (int32_t i = 0; i < element->width(); ++i) {
        mfli_reset_bit(mfli_bit(element, i));
    }
}

void init_saif_calculations() {
    mtiTime64T now = mfli_now();
    mfli_visit_monitor_table(open_element, &now);
}

void complete_saif_calcutations() {
    mtiTime64T now = mfli_now();
    mfli_visit_monitor_table(close_element, &now);
}

void reset_saif_calculations() {
    mfli_visit_monitor_table(reset_element, nullptr);
}
