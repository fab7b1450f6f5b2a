// SPDX-License-Identifier: Apache-2.0
// Create, init and free operations of the SAIF records.
#include "plugin/saif/attributes.h"

#include <cstdlib>

template <typename Record>
static Record *allocate() {
    return static_cast<Record *>(malloc(sizeof(Record)));
}

saif_header *saif_create_header_struct() {
    auto *header = allocate<saif_header>();
    saif_init_header(header);
    return header;
}

void saif_init_header(saif_header *header) {
    *header = saif_header{};
    header->timescale_value = 1.0F;
    header->timescale_unit = string_alloc("ns");
    header->saif_version = string_alloc("2.0");
    header->vendor = string_alloc("Kelvara, Inc");
    header->divider = '.';
}

void saif_free_header_struct(saif_header *header) {
    string_free(header->timescale_unit);
    string_free(header->saif_version);
    string_free(header->design);
    string_free(header->date);
    string_free(header->vendor);
    string_free(header->program_name);
    string_free(header->program_version);
    free(header);
}

saif_switching_attribute *saif_create_switching_attribute_struct() {
    auto *record = allocate<saif_switching_attribute>();
    saif_init_switching_attribute(record);
    return record;
}

void saif_init_switching_attribute(saif_switching_attribute *record) {
    *record = saif_switching_attribute{};
}

void saif_free_switching_attribute_struct(saif_switching_attribute *record) {
    free(record);
}

saif_timing_attribute *saif_create_timing_attribute_struct() {
    auto *record = allocate<saif_timing_attribute>();
    saif_init_timing_attribute(record);
    return record;
}

void saif_init_timing_attribute(saif_timing_attribute *record) {
    *record = saif_timing_attribute{};
}

void saif_free_timing_attribute_struct(saif_timing_attribute *record) {
    free(record);
}

saif_toggle_attribute *saif_create_toggle_attribute_struct() {
    auto *record = allocate<saif_toggle_attribute>();
    saif_init_toggle_attribute(record);
    return record;
}

void saif_init_toggle_attribute(saif_toggle_attribute *record) {
    *record = saif_toggle_attribute{};
    record->marker = -1.0;
}

void saif_free_toggle_attribute_struct(saif_toggle_attribute *record) {
    free(record);
}

saif_rtl_attribute *saif_create_rtl_attribute_struct() {
    auto *record = allocate<saif_rtl_attribute>();
    saif_init_rtl_attribute(record);
    return record;
}

void saif_init_rtl_attribute(saif_rtl_attribute *record) {
    *record = saif_rtl_attribute{};
}

void saif_free_rtl_attribute_struct(saif_rtl_attribute *record) {
    string_free(record->text[2]);
    string_free(record->text[1]);
    string_free(record->text[0]);
    string_free(record->text[3]);
    free(record);
}

saif_lib_attribute *saif_create_lib_attribute_struct() {
    auto *record = allocate<saif_lib_attribute>();
    saif_init_lib_attribute(record);
    return record;
}

void saif_init_lib_attribute(saif_lib_attribute *record) {
    *record = saif_lib_attribute{};
    record->kind = 2;
}

void saif_free_lib_attribute_struct(saif_lib_attribute *record) {
    for (dstring *text : record->text) {
        string_free(text);
    }
    free(record);
}

int path_delete(void *data) {
    saif_free_toggle_attribute_struct(static_cast<saif_toggle_attribute *>(data));
    return 1;
}

saif_path_attribute *saif_create_path_attribute_struct() {
    auto *record = allocate<saif_path_attribute>();
    saif_init_path_attribute(record);
    return record;
}

void saif_init_path_attribute(saif_path_attribute *record) {
    record->paths = saif_list_init(dummy_cmp, prn_func, path_delete);
}

void saif_free_path_attribute_struct(saif_path_attribute *record) {
    if (record->paths != nullptr) {
        saif_list_free(record->paths);
    }
    free(record);
}

int state_delete(void *data) {
    saif_free_state_simple_attribute_struct(static_cast<saif_state_simple_attribute *>(data));
    return 1;
}

saif_state_attribute *saif_create_state_attribute_struct() {
    auto *record = allocate<saif_state_attribute>();
    saif_init_state_attribute(record);
    return record;
}

void saif_init_state_attribute(saif_state_attribute *record) {
    record->states = saif_list_init(dummy_cmp, prn_func, state_delete);
}

void saif_free_state_attribute_struct(saif_state_attribute *record) {
    saif_list_free(record->states);
    free(record);
}

saif_state_simple_attribute *saif_create_state_simple_attribute_struct() {
    auto *record = allocate<saif_state_simple_attribute>();
    saif_init_state_simple_attribute(record);
    return record;
}

void saif_init_state_simple_attribute(saif_state_simple_attribute *record) {
    record->first = 0;
    record->toggle = nullptr;
    record->kind = 2;
    record->path = nullptr;
}

void saif_free_state_simple_attribute_struct(saif_state_simple_attribute *record) {
    if (record->toggle != nullptr) {
        saif_free_toggle_attribute_struct(record->toggle);
    }
    if (record->path != nullptr) {
        saif_free_path_attribute_struct(record->path);
    }
    free(record);
}
