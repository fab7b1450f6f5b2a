// SPDX-License-Identifier: Apache-2.0
// From the monitor table to the writer's tree, and the records of ports, nets and instances.
#include "plugin/saif/report_tree.h"

#include "plugin/saif/record_text.h"
#include "plugin/saif/writer.h"
#include "plugin/select/names.h"
#include "plugin/support/hash_table.h"
#include "plugin/support/messages.h"
#include "plugin/support/text.h"

#include <cstdlib>
#include <cstring>

// The outermost instance of a forward file is taken to have a name of three characters, "top": the
// table's names are looked up under it, and object names lose as many characters.
static char rtl_prefix[] = "top";
static constexpr size_t RTL_PREFIX_LENGTH = sizeof rtl_prefix - 1;

// What the writer sees of the bit that is being printed: one record for all bits of a report.
static saif_switching_attribute *printed_activity;

int signal_is_port(mtiSignalIdT signal) {
    const mtiDirectionT mode = mti_GetSignalMode(signal);
    return mode == MTI_DIR_IN || mode == MTI_DIR_OUT || mode == MTI_DIR_INOUT;
}

// The name of bit `i`, owned by the caller: an element of one bit has no index.
static char *bit_name(MonitorElement *element, const char *name, int32_t i) {
    return element->width() == 1 ? mfli_strdup(name) : mfli_add_index_to_name(name, i);
}

static int insert_bit(MonitorElement *element, int32_t i, const char *name, int is_port,
                      SaifTree *tree) {
    return saifout_insert_port_net_full_hier(name, mfli_bit(element, i), is_port, tree);
}

// Whether the name, written with parentheses, would be another signal's: a scalar called "n[3]"
// beside a bus "n".
static bool keeps_brackets(const MonitorElement *element, const char *name) {
    if (strchr(mfli_leaf_of(name), '[') == nullptr) {
        return false;
    }
    char *round = mfli_strdup(name);
    if (round == nullptr) {
        return true;
    }
    mfli_convert_squareb_to_paren(round);
    const mtiSignalIdT namesake = mti_FindSignal(round);
    const bool keeps = namesake != nullptr && namesake != element->signal;
    if (keeps) {
        mfli_message(
            "Warning (KLVA-PWR): signal %s keeps its square brackets in the report, as %s "
            "is another signal",
            name, round);
    }
    free(round);
    return keeps;
}

int insert_subelements_into_saif_tree(MonitorElement *element, const char *name, SaifTree *tree) {
    // The brackets once for all bits: what an index adds has parentheses already.
    char *gate_name = mfli_strdup(name);
    if (gate_name == nullptr) {
        return 0;
    }
    if (!keeps_brackets(element, gate_name)) {
        mfli_convert_squareb_to_paren(gate_name);
    }
    const int is_port = signal_is_port(element->signal);
    int complete = 1;
    for (int32_t i = 0; i < element->width(); i++) {
        char *bit = bit_name(element, gate_name, i);
        complete &= insert_bit(element, i, bit, is_port, tree);
        free(bit);
    }
    free(gate_name);
    return complete;
}

// The objects under "top" and the part of the bit's name below the testbench.
static list *find_objects(st_table *objects, const char *rest) {
    char *key = mfli_add_path_to_name(rest, rtl_prefix, 0);
    if (key == nullptr) {
        return nullptr;
    }
    mfli_convert_paren_to_squareb(key);
    void *found = nullptr;
    const int known = st_lookup_kptr_vptr(objects, key, &found);
    free(key);
    return known ? static_cast<list *>(found) : nullptr;
}

list *get_gate_name_list(const char *bit_name, const char **path_key) {
    if (mfli_rtl_table == nullptr) {
        return nullptr;
    }
    list *found = nullptr;
    void *key = nullptr;
    void *objects = nullptr;
    st_generator *entries = st_init_gen(mfli_rtl_table);
    while (found == nullptr && st_gen_kptr_vptr(entries, &key, &objects)) {
        const auto *path = static_cast<const char *>(key);
        const size_t length = strlen(path);
        if (strncmp(bit_name, path, length) != 0) {
            continue;
        }
        found = find_objects(static_cast<st_table *>(objects), bit_name + length);
        *path_key = path;
    }
    st_free_gen(entries);
    return found;
}

// The node of a virtual instance. One that was made on the way to another keeps its place and
// becomes virtual; one that is virtual already stays what it is.
static SaifTreeNode *virtual_instance(const char *path, int32_t kind, SaifTree *tree) {
    void *info = reinterpret_cast<void *>(static_cast<intptr_t>(kind));
    SaifTreeNode *node = saifout_find_node(path, '/', tree);
    if (node == nullptr) {
        return saifout_create_node(path, '/', info, nullptr, tree);
    }
    if (node->node_info == nullptr) {
        saifout_insert_node_info_at_this_level(node, info);
    }
    return node;
}

static int add_virtual_port(const char *full_name, int32_t kind, BitActivity *activity,
                            SaifTree *tree) {
    char *path = nullptr;
    char *leaf = nullptr;
    if (!mfli_split_path_and_name(full_name, &path, &leaf)) {
        return 1;
    }
    dstring *name = string_alloc(leaf);
    const int entered = saifout_insert_port_net_at_this_level(virtual_instance(path, kind, tree),
                                                              name, activity, 1);
    string_free(name);
    free(path);
    free(leaf);
    return entered;
}

// Writes the brackets of the instances that an object's two names have in common as those of bits
// that no object names: both are in one instance of the report then, however the file spells it.
static void join_instances(char *full_name, const char *path_key, const RtlObject *object) {
    const size_t path = strlen(path_key);
    char *first = mfli_add_path_to_name(string_to_char(object->object_name),
                                        string_to_char(object->instance_path), 1);
    const char *below_top = first == nullptr ? "" : first + strnlen(first, RTL_PREFIX_LENGTH);
    size_t joined = path;
    const auto square = [](char c) { return c == '(' ? '[' : c == ')' ? ']' : c; };
    for (size_t i = 0; below_top[i] != '\0' && square(below_top[i]) == square(full_name[path + i]);
         ++i) {
        joined = below_top[i] == '/' ? path + i : joined;
    }
    free(first);
    const char end = full_name[joined];
    full_name[joined] = '\0';
    mfli_convert_paren_to_squareb(full_name);
    full_name[joined] = end;
}

// An object is reported under its second full name, the one that begins with the outermost instance
// of the forward file: less that instance's three characters it begins with '/', so it is put
// straight behind the testbench path, as registration does with the first name.
int add_to_rtl_saif_tree(const RtlObject *object, const char *path_key, const char *,
                         BitActivity *activity, SaifTree *tree) {
    if (string_len(object->second_full_name) < RTL_PREFIX_LENGTH) {
        return 1;
    }
    const char *below_top = string_to_char(object->second_full_name) + RTL_PREFIX_LENGTH;
    char *full_name = mfli_add_path_to_name(below_top, path_key, 0);
    if (full_name == nullptr) {
        return 0;
    }
    join_instances(full_name, path_key, object);
    int complete = 1;
    if (object->kind == RTL_ORDINARY) {
        complete = saifout_insert_port_net_full_hier(full_name, activity, 1, tree);
    } else if (object->kind == RTL_SEQUENTIAL || object->kind == RTL_TRI_STATE) {
        complete = add_virtual_port(full_name, object->kind, activity, tree);
    }
    free(full_name);
    return complete;
}

static int add_all_objects(list *objects, const char *path_key, const char *instance,
                           BitActivity *activity, SaifTree *tree) {
    int complete = 1;
    for (list_walk walk(objects); walk; walk.step()) {
        const auto *object = static_cast<const RtlObject *>(walk.item());
        complete &= add_to_rtl_saif_tree(object, path_key, instance, activity, tree);
    }
    return complete;
}

int insert_rtl_subelements_into_saif_tree(MonitorElement *element, const char *name,
                                          const char *instance, SaifTree *tree) {
    const int is_port = signal_is_port(element->signal);
    int complete = 1;
    for (int32_t i = 0; i < element->width(); i++) {
        BitActivity *activity = mfli_bit(element, i);
        char *bit = bit_name(element, name, i);
        if (bit == nullptr) {
            return 0;
        }
        const char *path_key = nullptr;
        list *objects = get_gate_name_list(bit, &path_key);
        if (objects != nullptr) {
            complete &= add_all_objects(objects, path_key, instance, activity, tree);
        } else {
            // Unlike in the gate-level tree, an unmatched bit is written with square brackets.
            mfli_convert_paren_to_squareb(bit);
            complete &= insert_bit(element, i, bit, is_port, tree);
        }
        free(bit);
    }
    return complete;
}

typedef int (*EnterElement)(MonitorElement *element, const char *name, const char *instance,
                            SaifTree *tree);

static int enter_under_gate_name(MonitorElement *element, const char *name, const char *,
                                 SaifTree *tree) {
    return insert_subelements_into_saif_tree(element, name, tree);
}

static int enter_under_all_names(MonitorElement *element, const char *name, const char *instance,
                                 SaifTree *tree, EnterElement enter) {
    int complete = enter(element, name, instance, tree);
    for (list_walk walk(mfli_element_aliases(element)); walk; walk.step()) {
        complete &= enter(element, static_cast<const char *>(walk.item()), instance, tree);
    }
    return complete;
}

static int enter_all_elements(const char *instance, SaifTree *tree, EnterElement enter) {
    if (mfli_monitor_table == nullptr) {
        return 1;
    }
    int complete = 1;
    void *value = nullptr;
    st_generator *elements = st_init_gen(mfli_monitor_table);
    while (st_gen_kptr_vptr(elements, nullptr, &value)) {
        auto *element = static_cast<MonitorElement *>(value);
        const char *name = element == nullptr ? nullptr : mfli_element_name(element);
        if (name != nullptr && mfli_first_in_second_region(name, instance)) {
            complete &= enter_under_all_names(element, name, instance, tree, enter);
        }
    }
    st_free_gen(elements);
    return complete;
}

int build_saif_tree(const char *instance, SaifTree *tree) {
    if (mfli_debug_level > 1) {
        mfli_print_text("Starting build_saif_tree");
    }
    const int complete = enter_all_elements(instance, tree, enter_under_gate_name);
    if (mfli_debug_level > 1) {
        mfli_print_text("Ending build_saif_tree");
    }
    return complete;
}

int build_rtl_saif_tree(const char *instance, SaifTree *tree) {
    if (mfli_debug_level > 1) {
        mfli_print_text("Starting build_rtl_saif_tree");
        mfli_print_rtl_table();
    }
    const int complete = enter_all_elements(instance, tree, insert_rtl_subelements_into_saif_tree);
    if (mfli_debug_level > 1) {
        mfli_print_text("Ending build_rtl_saif_tree");
    }
    return complete;
}

static void put_timing(RecordText *record, const saif_timing_attribute *timing, double scale) {
    record_put(record, "(T0 ");
    record_put_fixed(record, timing->t0 * scale);
    record_put(record, ") (T1 ");
    record_put_fixed(record, timing->t1 * scale);
    record_put(record, ") (TX ");
    record_put_fixed(record, timing->tx * scale);
    record_put(record, ")\n");
}

static void put_toggles(RecordText *record, const saif_toggle_attribute *toggle) {
    record_put(record, "(TC ");
    record_put_fixed(record, toggle->tc);
    record_put(record, ") (IG ");
    record_put_fixed(record, toggle->ig);
    record_put(record, ")\n");
}

void net_print(FILE *stream, const dstring *name, void *switching, double scale, int indentation) {
    const auto *activity = static_cast<const saif_switching_attribute *>(switching);
    RecordText record;
    record_begin(&record, stream);
    record_put_blanks(&record, indentation);
    record_put(&record, "(");
    record_put(&record, string_to_char(name), string_len(name));
    record_put(&record, "\n");
    // The blanks of a line whose record is missing are written all the same.
    record_put_blanks(&record, indentation + INDENTATION_STEP);
    if (activity->timing != nullptr) {
        put_timing(&record, activity->timing, scale);
    }
    record_put_blanks(&record, indentation + INDENTATION_STEP);
    if (activity->toggle != nullptr) {
        put_toggles(&record, activity->toggle);
    }
    record_put_blanks(&record, indentation);
    record_put(&record, ")\n");
    record_end(&record);
}

void begin_bit_print() {
    printed_activity = init_saif_switching_struct();
}

void end_bit_print() {
    free_saif_switching_struct(printed_activity);
    printed_activity = nullptr;
}

void bit_print(FILE *stream, const dstring *name, void *activity, double scale, int indentation) {
    mfli_read_activity(static_cast<const BitActivity *>(activity), printed_activity);
    net_print(stream, name, printed_activity, scale, indentation);
}

void node_print(FILE *stream, const dstring *name, void *node_info, int *indentation) {
    const auto kind = static_cast<int32_t>(reinterpret_cast<intptr_t>(node_info));
    RecordText record;
    record_begin(&record, stream);
    record_put_blanks(&record, *indentation);
    if (kind == RTL_SEQUENTIAL) {
        record_put(&record, "(VIRTUAL_INSTANCE \"sequential\" ");
    } else if (kind == RTL_TRI_STATE) {
        record_put(&record, "(VIRTUAL_INSTANCE \"tri-state\" ");
    } else {
        record_put(&record, "(INSTANCE ");
    }
    record_put(&record, string_to_char(name), string_len(name));
    record_put(&record, "\n");
    record_end(&record);
    *indentation += INDENTATION_STEP;
}
