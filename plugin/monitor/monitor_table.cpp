// SPDX-License-Identifier: Apache-2.0
// Makes, names, lists and frees monitor elements.
#include "plugin/monitor/monitor_table.h"

#include "plugin/monitor/element_store.h"
#include "plugin/monitor/sim_time.h"
#include "plugin/select/types.h"
#include "plugin/support/messages.h"
#include "plugin/support/text.h"

#include <cstring>

st_table *mfli_monitor_table;

// From element to its further names (a list of owned texts). Null until the first; most designs
// have none.
static st_table *aliases;

void mfli_init_monitor_table() {
    mfli_monitor_table = st_alloc_abo(st_ptrcmp, st_ptrhash);
}

MonitorElement *mfli_init_monitor_element(mtiSignalIdT signal, const char *name) {
    const mtiTypeIdT type = mti_GetSignalType(signal);
    const int32_t type_code = mfli_get_scalar_signal_type(type);
    const int32_t width = mfli_get_scalar_signal_width(type, type_code);
    const size_t size =
        offsetof(MonitorElement, bits) + static_cast<size_t>(width) * sizeof(BitActivity);
    auto *element = static_cast<MonitorElement *>(mfli_store_element(size, name));
    if (element == nullptr) {
        return nullptr;
    }
    element->signal = signal;
    mfli_stime(&element->last_change);
    for (int32_t i = 0; i < width; ++i) {
        BitActivity *bit = mfli_bit(element, i);
        bit->width = static_cast<int16_t>(width);
        bit->type_code = static_cast<int16_t>(type_code);
        mfli_reset_bit(bit);
    }
    return element;
}

void mfli_free_monitor_element(MonitorElement *element) {
    if (element == nullptr) {
        return;
    }
    void *names = nullptr;
    if (aliases != nullptr && st_delete_kptr_vptr(aliases, element, nullptr, &names)) {
        list_free(static_cast<list *>(names), list_data_free);
    }
    mfli_unstore_element();
}

saif_switching_attribute *init_saif_switching_struct() {
    saif_switching_attribute *record = saif_create_switching_attribute_struct();
    saif_init_switching_attribute(record);
    record->timing = saif_create_timing_attribute_struct();
    record->toggle = saif_create_toggle_attribute_struct();
    saif_init_timing_attribute(record->timing);
    saif_init_toggle_attribute(record->toggle);
    return record;
}

void free_saif_switching_struct(saif_switching_attribute *record) {
    if (record == nullptr) {
        return;
    }
    saif_free_timing_attribute_struct(record->timing);
    saif_free_toggle_attribute_struct(record->toggle);
    saif_free_switching_attribute_struct(record);
}

void mfli_read_activity(const BitActivity *bit, saif_switching_attribute *record) {
    record->timing->t1 = bit->t1;
    record->timing->t0 = bit->t0;
    record->timing->tx = bit->tx;
    record->toggle->tc = bit->tc;
    record->toggle->ig = bit->ig;
}

void mfli_reset_bit(BitActivity *bit) {
    bit->state = MFLI_STATE_X;
    bit->t1 = bit->t0 = bit->tx = 0.0;
    bit->tc = bit->ig = 0.0;
}

list *mfli_element_aliases(const MonitorElement *element) {
    void *names = nullptr;
    if (aliases != nullptr) {
        st_lookup_kptr_vptr(aliases, element, &names);
    }
    return static_cast<list *>(names);
}

static bool holds_text(list *texts, const char *text) {
    for (list_walk walk(texts); walk; walk.step()) {
        if (strcmp(static_cast<const char *>(walk.item()), text) == 0) {
            return true;
        }
    }
    return false;
}

void mfli_tell_unrecorded(const char *name) {
    mfli_message("Error (KLVA-PWR): Could not allocate the record of signal %s",
                 name == nullptr ? "of unknown name" : name);
}

void mfli_add_name_to_monitor(const char *name, MonitorElement *element) {
    if (strcmp(name, mfli_element_name(element)) == 0) {
        return;
    }
    list *names = mfli_element_aliases(element);
    if (names == nullptr) {
        if (aliases == nullptr) {
            aliases = st_alloc_abo(st_ptrcmp, st_ptrhash);
        }
        names = list_alloc();
        st_insert_kptr_vptr(aliases, element, names);
    } else if (holds_text(names, name)) {
        return;
    }
    char *copy = mfli_strdup(name);
    if (copy == nullptr) {
        mfli_tell_unrecorded(name);
        return;
    }
    list_append(names, copy);
}

void mfli_visit_monitor_table(void (*visit)(MonitorElement *element, void *context),
                              void *context) {
    if (mfli_monitor_table == nullptr) {
        return;
    }
    st_generator *generator = st_init_gen(mfli_monitor_table);
    void *element = nullptr;
    while (st_gen_kptr_vptr(generator, nullptr, &element)) {
        visit(static_cast<MonitorElement *>(element), context);
    }
    st_free_gen(generator);
}

void mfli_free_monitor_table() {
    if (mfli_monitor_table == nullptr) {
        return;
    }
    mfli_visit_monitor_table(
        [](MonitorElement *element, void *) { mfli_free_monitor_element(element); }, nullptr);
    st_free(mfli_monitor_table);
    mfli_monitor_table = nullptr;
    st_free(aliases);
    aliases = nullptr;
}

void mfli_print_monitor_table() {
    mfli_print_text(" Printing mfli_monitor_table");
    mfli_print_text("Name tsize msb lsb time dirty T0   T1   TX   TC   IG   value");
    mfli_visit_monitor_table(
        [](MonitorElement *element, void *) {
            if (element == nullptr) {
                mfli_print_text("monitor_data NULL");
            } else {
                mfli_print_monitor_element(element);
            }
        },
        nullptr);
}

// The bits' numbers within a declared range are not kept: msb and lsb are 0.
void mfli_print_monitor_element(const MonitorElement *element) {
    mfli_message("%16s, %d, %d, %d, %.2f, %d", mfli_element_name(element), element->width(), 0, 0,
                 mfli_convert_time(&element->last_change), *mfli_dirty_mark(element));
    print_saif_sa(element);
}

void print_saif_sa(const MonitorElement *element) {
    for (int32_t i = 0; i < element->width(); ++i) {
        const BitActivity *bit = mfli_bit(element, i);
        mfli_message("\t\t%.2f %.2f %.2f %.2f %.2f, %d", bit->t0, bit->t1, bit->tx, bit->tc,
                     bit->ig, bit->state);
    }
}

void mfli_print_monitor_table_brief() {
    mfli_print_text("\n Printing short mfli_monitor_table");
    mfli_visit_monitor_table(
        [](MonitorElement *element, void *) {
            if (element != nullptr) {
                mfli_print_text(mfli_element_name(element));
            }
        },
        nullptr);
    mfli_print_text("Done...");
}
