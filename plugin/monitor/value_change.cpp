// SPDX-License-Identifier: Apache-2.0
// The two stages of a time step, and the rules by which a bit is counted.
#include "plugin/monitor/value_change.h"

#include "plugin/monitor/sim_time.h"
#include "plugin/select/types.h"
#include "plugin/support/messages.h"
#include "plugin/support/run_state.h"

// 1 when something was marked in this time step and the counting has not run yet.
static int32_t mfli_do_counting_process;

static list *changed_list;  // elements marked in this step, in the order of their first event
static list *trash_list;    // spare items; what they hold means nothing

using Duration = double saif_timing_attribute::*;

// The duration that each state's time goes to. Time in any of the unknown states is TX.
static constexpr Duration duration_of_state[MFLI_STATES] = {
    &saif_timing_attribute::t0, &saif_timing_attribute::t1, &saif_timing_attribute::tx,
    &saif_timing_attribute::tx, &saif_timing_attribute::tx};

// What one new value does to a bit: its next state, and what is added to its counts.
struct CountingRule {
    int32_t next;
    double tc;
    double ig;
};

// By state and mapped value. In words: a change of level is one toggle; X in between makes it no
// more and no less than one; coming back from X to the level that was left is a glitch; the first
// level after no known one counts nothing; a value that changes nothing counts nothing.
static constexpr CountingRule counting_rules[MFLI_STATES][3] = {
    {
        {MFLI_STATE_0, 0, 0},         // 0 stays 0
        {MFLI_STATE_1, 1, 0},         // 0 to 1: a toggle
        {MFLI_STATE_X_FROM_0, 0, 0},  // 0 to X: remembered, decided when X is left
    },
    {
        {MFLI_STATE_0, 1, 0},         // 1 to 0: a toggle
        {MFLI_STATE_1, 0, 0},         // 1 stays 1
        {MFLI_STATE_X_FROM_1, 0, 0},  // 1 to X: remembered, decided when X is left
    },
    {
        {MFLI_STATE_0, 0, 0},  // first known level: no toggle
        {MFLI_STATE_1, 0, 0},  // first known level: no toggle
        {MFLI_STATE_X, 0, 0},  // still nothing known
    },
    {
        {MFLI_STATE_0, 0, 1},         // 0 to X to 0: a glitch
        {MFLI_STATE_1, 1, 0},         // 0 to X to 1: one toggle
        {MFLI_STATE_X_FROM_0, 0, 0},  // X goes on
    },
    {
        {MFLI_STATE_0, 1, 0},         // 1 to X to 0: one toggle
        {MFLI_STATE_1, 0, 1},         // 1 to X to 1: a glitch
        {MFLI_STATE_X_FROM_1, 0, 0},  // X goes on
    },
};

static bool is_known_state(int32_t state) {
    return static_cast<uint32_t>(state) < MFLI_STATES;
}

static inline void credit(saif_timing_attribute *timing, int32_t state, double ticks) {
    timing->*(is_known_state(state) ? duration_of_state[state] : &saif_timing_attribute::tx) +=
        ticks;
}

// A state beyond the known ones is left alone.
static inline void count(saif_toggle_attribute *toggle, int32_t *state, int32_t value) {
    if (!is_known_state(*state)) {
        return;
    }
    const CountingRule &rule = counting_rules[*state][value];
    toggle->tc += rule.tc;
    toggle->ig += rule.ig;
    *state = rule.next;
}

void mfli_update_saif_timing(BitActivity *bit, double ticks) {
    credit(bit->switching->timing, bit->state, ticks);
}

void mfli_update_saif_toggles_and_state(BitActivity *bit, int32_t value) {
    count(bit->switching->toggle, &bit->state, value);
}

void mfli_process_event(void *parameter) {
    if (!mfli_is_monitoring_window_active()) {
        return;
    }
    auto *element = static_cast<MonitorElement *>(parameter);
    if (mfli_debug_level > 1) {
        mfli_message("Processing event on signal: %s", element->name);
    }
    if (element->dirty == 0) {
        element->dirty = 1;
        add_to_changed_list(element);
    }
    mfli_do_counting_process = 1;
}

// Inline in the walk over the changed elements, where nearly all have one bit.
static inline void update_bits(MonitorElement *element, double ticks, int32_t value) {
    MonitorBit *bits = mfli_monitor_bits(element);
    int32_t i = 0;
    do {
        // The old state gets its time before the new value changes it, and every bit of a changed
        // element gets it, changed or not, since the element's last change moves on for all.
        credit(&bits[i].timing, bits[i].activity.state, ticks);
        count(&bits[i].toggle, &bits[i].activity.state,
              map_value_to_01x(element->type_code, value, i));
    } while (++i < element->width);
}

static inline void update_element(MonitorElement *element, const mtiTime64T *now) {
    const double ticks = mfli_ticks_between(element->last_change, *now);
    update_bits(element, ticks, mti_GetSignalValue(element->signal));
    if (mfli_debug_level > 1) {
        mfli_message("Update SA = %s; Scalar/Enum; size %d", element->name, element->width);
    }
}

void update_saif_sa(MonitorElement *element, const mtiTime64T *now) {
    update_element(element, now);
}

// A large step changes more elements than the processor's caches hold. Both lines of one that comes
// later in the list are asked for while earlier ones are counted, and then, when its element has
// come, what stands behind the signal's handle: the simulator is about to look there.
struct FetchAhead {
    list_handle *element;
    list_handle *signal;

    void fetch_element() {
        if (element != nullptr) {
            __builtin_prefetch(element->data, 1);
            __builtin_prefetch(static_cast<MonitorElement *>(element->data) + 1, 1);
            element = element->next;
        }
    }
    void fetch_signal() {
        if (signal != nullptr) {
            __builtin_prefetch(static_cast<MonitorElement *>(signal->data)->signal);
            signal = signal->next;
        }
    }
};

static void update_changed_elements() {
    constexpr int element_distance = 12;
    constexpr int signal_distance = 4;
    const mtiTime64T now = mfli_now();
    FetchAhead ahead{changed_list->head, changed_list->head};
    for (int i = 0; i < element_distance; ++i) {
        ahead.fetch_element();
    }
    for (int i = 0; i < signal_distance; ++i) {
        ahead.fetch_signal();
    }
    for (list_walk walk(changed_list); walk; walk.step()) {
        ahead.fetch_element();
        ahead.fetch_signal();
        auto *element = static_cast<MonitorElement *>(walk.item());
        // Clear when a window was opened, closed or reset since the event.
        if (element->dirty == 0) {
            continue;
        }
        update_element(element, &now);
        element->last_change = now;
        element->dirty = 0;
    }
}

void mfli_update_event_count(void *) {
    if (mfli_do_counting_process == 0) {
        return;
    }
    mfli_do_counting_process = 0;
    update_changed_elements();
    empty_changed_list();
    if (mfli_debug_level >= 3) {
        mfli_print_monitor_table();
    }
}

static void init_speed_list(list **which, const char *failure) {
    if (*which != nullptr) {
        return;
    }
    *which = list_alloc();
    if (*which == nullptr) {
        mfli_print_text(failure);
    }
}

void mfli_init_speed_lists() {
    init_speed_list(&changed_list, "Error (KLVA-PWR): Could not allocate changed_list.");
    init_speed_list(&trash_list, "Error (KLVA-PWR): Could not allocate trash_list.");
}

void mfli_free_speed_lists() {
    list_free(changed_list, nullptr);
    list_free(trash_list, nullptr);
    changed_list = nullptr;
    trash_list = nullptr;
}

void add_to_changed_list(MonitorElement *element) {
    if (trash_list->head == nullptr) {
        list_append(changed_list, element);
        return;
    }
    trash_list->head->data = element;
    list_move_head(trash_list, changed_list);
}

// The items come to the front of the spare ones, so that the next step takes the same ones again,
// which the processor still has at hand.
void empty_changed_list() {
    list_move_all(changed_list, trash_list);
    if (mfli_debug_level > 1) {
        mfli_message("Time %f, trash_list %d, changed_list %d", mfli_current_ticks(),
                     trash_list->length, changed_list->length);
    }
}
