// SPDX-License-Identifier: Apache-2.0
// The two stages of a time step, and the rules by which a bit is counted.
#include "plugin/monitor/value_change.h"

#include "plugin/monitor/sim_time.h"
#include "plugin/select/types.h"
#include "plugin/support/messages.h"
#include "plugin/support/run_state.h"

// 1 when something was marked in this time step and the counting has not run yet.
static int32_t mfli_do_counting_process;

// Elements marked in this step, in the order of their first event, and spare items, which hold
// nothing that means anything.
//
// An element takes the next spare item. The items that a step has taken stay where they are, at the
// front of trash_list, up to next_spare: unlinking each into changed_list and back again at the end
// of the step would cost more than counting what it stands for. Only when there is no spare one
// left does changed_list get items of its own, new ones.
static list *changed_list;
static list *trash_list;
static list_handle *next_spare;

using Duration = double BitActivity::*;

// The duration that each state's time goes to. Time in any of the unknown states is TX.
static constexpr Duration duration_of_state[MFLI_STATES] = {
    &BitActivity::t0, &BitActivity::t1, &BitActivity::tx, &BitActivity::tx, &BitActivity::tx};

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

void mfli_update_saif_timing(BitActivity *bit, double ticks) {
    bit->*(is_known_state(bit->state) ? duration_of_state[bit->state] : &BitActivity::tx) += ticks;
}

// A state beyond the known ones is left alone.
void mfli_update_saif_toggles_and_state(BitActivity *bit, int32_t value) {
    if (!is_known_state(bit->state)) {
        return;
    }
    const CountingRule &rule = counting_rules[bit->state][value];
    bit->tc += rule.tc;
    bit->ig += rule.ig;
    bit->state = rule.next;
}

static inline void mark(MonitorElement *element) {
    mfli_do_counting_process = 1;
    uint8_t *dirty = mfli_dirty_mark(element);
    if (*dirty == 0) {
        *dirty = 1;
        add_to_changed_list(element);
    }
}

[[gnu::noinline]] static void trace_and_mark(MonitorElement *element) {
    mfli_message("Processing event on signal: %s", mfli_element_name(element));
    mark(element);
}

// What is seldom needed ends in a call, so that the usual way saves no registers.
void mfli_process_event(void *parameter) {
    if (!mfli_is_monitoring_window_active()) {
        return;
    }
    auto *element = static_cast<MonitorElement *>(parameter);
    if (mfli_debug_level > 1) [[unlikely]] {
        trace_and_mark(element);
    } else {
        mark(element);
    }
}

// The old state gets its time before the new value changes it, and every bit of a changed element
// gets it, changed or not, since the element's last change moves on for all.
static void update_bits(MonitorElement *element, double ticks, int32_t value) {
    for (int32_t i = 0; i < element->width(); ++i) {
        BitActivity *bit = mfli_bit(element, i);
        mfli_update_saif_timing(bit, ticks);
        mfli_update_saif_toggles_and_state(bit, map_value_to_01x(element->type_code(), value, i));
    }
}

static inline void update_element(MonitorElement *element, mtiTime64T now) {
    const double ticks = mfli_ticks_between(element->last_change, now);
    const int32_t value = mti_GetSignalValue(element->signal);
    BitActivity *bit = element->bits;
    // The case that is nearly all of them: a std_logic that is at a level and was at one. What the
    // rules say of it, without the table.
    const uint32_t level = static_cast<uint32_t>(value) - MFLI_LOGIC9_0;
    if (bit->type_code == MFLI_TYPE_LOGIC9 && (level | static_cast<uint32_t>(bit->state)) <= 1)
        [[likely]] {
        // By a table, since nobody could foresee the branch.
        bit->*duration_of_state[bit->state] += ticks;
        if (static_cast<uint32_t>(bit->state) != level) [[likely]] {
            bit->tc += 1.0;
            bit->state = static_cast<int32_t>(level);
        }
    } else {
        update_bits(element, ticks, value);
    }
}

void update_saif_sa(MonitorElement *element, mtiTime64T now) {
    update_element(element, now);
    if (mfli_debug_level > 1) {
        mfli_message("Update SA = %s; Scalar/Enum; size %d", mfli_element_name(element),
                     element->width());
    }
}

// The clear ones are those for which a window was opened, closed or reset since the event.
static inline void count_if_dirty(MonitorElement *element, mtiTime64T now, bool is_traced) {
    uint8_t *dirty = mfli_dirty_mark(element);
    if (*dirty == 0) {
        return;
    }
    if (is_traced) [[unlikely]] {
        update_saif_sa(element, now);
    } else {
        update_element(element, now);
    }
    element->last_change = now;
    *dirty = 0;
}

// From `first` to the handle before `end`. A large step changes more elements than the processor's
// caches hold, so those that come later in the list are asked for while earlier ones are counted.
static void count_items(list_handle *first, const list_handle *end, mtiTime64T now) {
    constexpr int distance = 12;
    const bool is_traced = mfli_debug_level > 1;
    list_handle *ahead = first;
    for (int i = 0; i < distance && ahead != end; ++i) {
        __builtin_prefetch(ahead->data, 1);
        ahead = ahead->next;
    }
    for (list_handle *handle = first; handle != end; handle = handle->next) {
        if (ahead != end) {
            __builtin_prefetch(ahead->data, 1);
            ahead = ahead->next;
        }
        count_if_dirty(static_cast<MonitorElement *>(handle->data), now, is_traced);
    }
}

void mfli_update_event_count(void *) {
    if (mfli_do_counting_process == 0) {
        return;
    }
    mfli_do_counting_process = 0;
    const mtiTime64T now = mfli_now();
    count_items(trash_list->head, next_spare, now);
    count_items(changed_list->head, nullptr, now);
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
    next_spare = nullptr;
    mfli_do_counting_process = 0;
}

[[gnu::noinline]] static void add_new_item(MonitorElement *element) {
    list_append(changed_list, element);
}

void add_to_changed_list(MonitorElement *element) {
    if (next_spare == nullptr) [[unlikely]] {
        add_new_item(element);
        return;
    }
    next_spare->data = element;
    next_spare = next_spare->next;
}

// The items come to the front of the spare ones: the next step takes the same ones again, which the
// processor still has at hand.
void empty_changed_list() {
    list_move_all(changed_list, trash_list);
    next_spare = trash_list->head;
    if (mfli_debug_level > 1) {
        mfli_message("Time %f, trash_list %d, changed_list %d", mfli_current_ticks(),
                     trash_list->length, changed_list->length);
    }
}
