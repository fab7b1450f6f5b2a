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

void mfli_init_monitor_table() {
    mfli_monitor_table = st_alloc_abo(st_ptrcmp, st_ptrhash);
}

static void init_bit(MonitorBit *bit) {
    saif_init_timing_attribute(&bit->timing);
    saif_init_toggle_attribute(&bit->toggle);
    saif_init_switching_attribute(&bit->switching);
    bit->switching.timing = &bit->timing;
    bit->switching.toggle = &bit->toggle;
    bit->activity.switching = &bit->switching;
    bit->activity.state = MFLI_STATE_X;
}

MonitorElement *mfli_init_monitor_element(mtiSignalIdT signal, const char *name) {
    const mtiTypeIdT type = mti_GetSignalType(signal);
    const int32_t type_code = mfli_get_scalar_signal_type(type);
    const int32_t width = mfli_get_scalar_signal_width(type, type_code);
    const size_t per_bit = sizeof(void *) + sizeof(MonitorBit);
    const size_t size = sizeof(MonitorElement) + static_cast<size_t>(width) * per_bit;
    char *name_copy = nullptr;
    auto *element = static_cast<MonitorElement *>(mfli_store_element(size, name, &name_copy));
    if (element == nullptr) {
        return nullptr;
    }
    element->name = name_copy;
    element->signal = signal;
    element->width = width;
    element->type_code = type_code;
    mfli_stime(&element->last_change);
    MonitorBit *bits = mfli_monitor_bits(element);
    element->bits = reinterpret_cast<BitActivity **>(bits + width);
    for (int32_t i = 0; i < width; ++i) {
        init_bit(&bits[i]);
        element->bits[i] = &bits[i].activity;
    }
    return element;
}

void mfli_free_monitor_element(MonitorElement *element) {
    if (element == nullptr) {
        return;
    }
    list_free(element->aliases, list_data_free);
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
    saif_free_timing_attribute_struct(record->timing);
    saif_free_toggle_attribute_struct(record->toggle);
    saif_free_switching_attribute_struct(record);
}

static bool holds_text(list *texts, const char *text) {
    for (list_walk walk(texts); walk; walk.step()) {
        if (strcmp(static_cast<const char *>(walk.item()), text) == 0) {
            return true;
        }
    }
    return false;
}

void mfli_add_name_to_monitor(const char *name, MonitorElement *element) {
    if (strcmp(name, element->name) == 0) {
        return;
    }
    if (element->aliases == nullptr) {
        element->aliases = list_alloc();
    } else if (holds_text(element->aliases, name)) {
        return;
    }
    list_append(element->aliases, mfli_strdup(name));
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

void mfli_print_monitor_element(const MonitorElement *element) {
    mfli_message("%16s, %d, %d, %d, %.2f, %d", element->name, element->width, element->msb,
                 element->lsb, mfli_convert_time(&element->last_change), element->dirty);
    print_saif_sa(element);
}

void print_saif_sa(const MonitorElement *element) {
    for (int32_t i = 0; i < element->width; ++i) {
        const BitActivity *bit = element->bits[i];
        const saif_timing_attribute *timing = bit->switching->timing;
        const saif_toggle_attribute *toggle = bit->switching->toggle;
        mfli_message("\t\t%.2f %.2f %.2f %.2f %.2f, %d", timing->t0, timing->t1, timing->tx,
                     toggle->tc, toggle->ig, bit->state);
    }
}

void mfli_print_monitor_table_brief() {
    mfli_print_text("\n Printing short mfli_monitor_table");
    mfli_visit_monitor_table(
        [](MonitorElement *element, void *) {
            if (element != nullptr) {
                mfli_print_text(element->name);
            }
        },
        nullptr);
    mfli_print_text("Done...");
}
