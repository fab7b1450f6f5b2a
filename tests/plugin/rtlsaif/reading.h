// SPDX-License-Identifier: Apache-2.0
// Reads forward SAIF text from memory and shows what came of it as plain text, for tests.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "plugin/rtlsaif/parser.h"
#include "plugin/rtlsaif/rtl_table.h"
#include "plugin/support/counted_string.h"
#include "plugin/support/hash_table.h"
#include "plugin/support/linked_list.h"

namespace rtlsaif_test {

// The eight header entries, five lines; the entry of the divider is the last line.
inline std::string header(const std::string &divider = "(DIVIDER /)") {
    return "(SAIFILE (SAIFVERSION \"2.0\") (DIRECTION \"forward\")\n(DESIGN \"d\") (DATE "
           "\"today\")\n"
           "(VENDOR \"v\") (PROGRAM_NAME \"p\")\n(VERSION \"1\")\n" +
           divider + "\n";
}

// `text` must outlive the stream.
inline FILE *open_text(const std::string &text) {
    return fmemopen(const_cast<char *>(text.data()), text.size(), "r");
}

struct Outcome {
    int result;
    std::string error;                 // the stored syntax error text, "" when there is none
    std::vector<std::string> objects;  // "key: instance path, object name, second full name, kind"
    std::vector<std::string> modules;  // "path: module"
    std::vector<std::string> messages;
};

inline std::vector<std::string> *messages_taken = nullptr;

inline void take_message(const dstring *message) {
    messages_taken->emplace_back(string_to_char(message));
}

inline std::vector<std::string> list_objects(st_table *objects) {
    std::vector<std::string> lines;
    st_generator *generator = st_init_gen(objects);
    void *key = nullptr, *value = nullptr;
    while (st_gen_kptr_vptr(generator, &key, &value) != 0) {
        for (list_walk walk(static_cast<list *>(value)); walk; walk.step()) {
            const auto *object = static_cast<const RtlObject *>(walk.item());
            lines.push_back(std::string(static_cast<char *>(key)) + ": " +
                            string_to_char(object->instance_path) + ", " +
                            string_to_char(object->object_name) + ", " +
                            string_to_char(object->second_full_name) + ", " +
                            std::to_string(object->kind));
        }
    }
    st_free_gen(generator);
    return lines;
}

inline std::vector<std::string> take_modules(st_table *modules) {
    std::vector<std::string> lines;
    st_generator *generator = st_init_gen(modules);
    void *path = nullptr, *module = nullptr;
    while (st_gen_kptr_vptr(generator, &path, &module) != 0) {
        lines.push_back(std::string(string_to_char(static_cast<dstring *>(path))) + ": " +
                        string_to_char(static_cast<dstring *>(module)));
        string_free(static_cast<dstring *>(path));
        string_free(static_cast<dstring *>(module));
    }
    st_free_gen(generator);
    st_free(modules);
    return lines;
}

// Reads one text into fresh tables, with the scanner and parser as the last reading left them.
inline Outcome read_text(const std::string &text) {
    Outcome outcome = {};
    messages_taken = &outcome.messages;
    st_table *objects = st_alloc_abo(st_strcmp, st_strhash);
    saifrtl_parse_init(take_message, take_message);
    saifrtl_hash_var = objects;
    saifrtl_hash_mpm = st_alloc_abo(
        [](const void *a, const void *b) {
            return string_compare(static_cast<const dstring *>(a), static_cast<const dstring *>(b));
        },
        [](const void *key) { return string_hash(static_cast<const dstring *>(key)); });
    st_table *modules = saifrtl_hash_mpm;
    outcome.result = saifrtl_parse(open_text(text), nullptr, nullptr, 1, "text");
    outcome.error = string_to_char(saifrtl_get_syntax_error_msg());
    saifrtl_parse_reset();
    outcome.objects = list_objects(objects);
    outcome.modules = take_modules(modules);
    mfli_free_rtl_hash(objects);
    return outcome;
}

inline std::string error_at(int line) {
    return "Syntax error in the forward RTL SAIF file at " + std::to_string(line) + "\n";
}

}  // namespace rtlsaif_test
