// SPDX-License-Identifier: Apache-2.0
// The command read_rtl_saif.
#include "plugin/core/rtl_command.h"

#include "plugin/core/arguments.h"
#include "plugin/core/order.h"
#include "plugin/rtlsaif/parser.h"
#include "plugin/rtlsaif/rtl_table.h"
#include "plugin/select/names.h"
#include "plugin/support/counted_string.h"
#include "plugin/support/hash_table.h"
#include "plugin/support/linked_list.h"
#include "plugin/support/messages.h"
#include "plugin/support/run_state.h"
#include "plugin/support/text.h"

#include <mti.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

static const char NO_TESTBENCH[] =
    "Warning (KLVA-PWR): You did not specify the path for the testbench modules. This is likely to "
    "cause the FLI routines to fail to register the RTL objects. To specify the path, use:\n"
    "  read_rtl_saif file test_modules/design_instance";

static int refuse(const char *text) {
    mfli_print_text(text);
    return 0;
}

static int is_usable_file(const char *name) {
    if (name[0] == '\0') {
        return refuse("Error (KLVA-PWR): rtlsaif filename is empty.");
    }
    FILE *stream = fopen(name, "r");
    if (stream == nullptr) {
        mfli_message("Error (KLVA-PWR): Unable to open file %s", name);
        return 0;
    }
    (void)fclose(stream);
    return 1;
}

static bool is_separator(char character) {
    return character == '.' || character == '/';
}

// The full name of the region that the word names, or null. One separator at each end of the word
// is passed over.
static char *find_testbench(const char *word) {
    char *trimmed = mfli_strdup(word);
    const size_t length = strlen(trimmed);
    if (length > 0 && is_separator(trimmed[length - 1])) {
        trimmed[length - 1] = '\0';
    }
    const mtiRegionIdT region = mfli_find_region(is_separator(trimmed[0]) ? trimmed + 1 : trimmed);
    free(trimmed);
    if (region == nullptr) {
        return nullptr;
    }
    return mfli_get_region_full_name(region);
}

static const char *word_at(const list *words, int32_t position) {
    return static_cast<const char *>(list_get_nth_item(words, position));
}

static int check_words(const list *words, char **file_name, char **testbench) {
    if (words->length == 0) {
        return refuse("Error (KLVA-PWR): read_rtl_saif must have at least one parameter.");
    }
    if (words->length == 1) {
        mfli_print_text(NO_TESTBENCH);
    }
    if (words->length > 2) {
        return refuse("Error (KLVA-PWR): read_rtl_saif cannot have more that two parameters.");
    }
    if (is_usable_file(word_at(words, 0)) == 0) {
        return 0;
    }
    *file_name = mfli_strdup(word_at(words, 0));
    if (words->length == 1 || word_at(words, 1)[0] == '\0') {
        return 1;
    }
    *testbench = find_testbench(word_at(words, 1));
    if (*testbench == nullptr) {
        return refuse(
            "Error (KLVA-PWR): the second argument gives an invalid path for the testbench "
            "module.");
    }
    return 1;
}

int check_read_rtl_arg(const char *command_line, char **file_name, char **testbench) {
    *file_name = nullptr;
    *testbench = nullptr;
    list *words = mfli_parse_cmd_args(command_line, "read_rtl_saif");
    const int usable = check_words(words, file_name, testbench);
    list_free(words, list_data_free);
    return usable;
}

static void print_reader_message(const dstring *message) {
    mfli_print_text(string_to_char(message));
}

static int compare_texts(const void *first, const void *second) {
    return string_compare(static_cast<const dstring *>(first),
                          static_cast<const dstring *>(second));
}

static uint32_t hash_text(const void *text) {
    return string_hash(static_cast<const dstring *>(text));
}

static void free_modules(st_table *modules) {
    st_generator *generator = st_init_gen(modules);
    void *path = nullptr;
    void *module = nullptr;
    while (st_gen_kptr_vptr(generator, &path, &module) != 0) {
        string_free(static_cast<dstring *>(path));
        string_free(static_cast<dstring *>(module));
    }
    st_free_gen(generator);
    st_free(modules);
}

static void read_forward_file(const char *file_name, st_table *objects) {
    st_table *modules = st_alloc_abo(compare_texts, hash_text);
    saifrtl_parse_init(print_reader_message, print_reader_message);
    if (saifrtl_parse_file_for_design(file_name, objects, modules) != 0) {
        mfli_set_read_rtl_status();
    } else if (mfli_debug_level >= 1 && saifrtl_get_syntax_error_msg() != nullptr) {
        mfli_print_text(string_to_char(saifrtl_get_syntax_error_msg()));
    }
    saifrtl_parse_reset();
    free_modules(modules);
}

void mfli_rtl(void *command_line) {
    if (mfli_check_rtl_starting_point() == 0) {
        return;
    }
    char *file_name = nullptr;
    char *testbench = nullptr;
    if (check_read_rtl_arg(static_cast<const char *>(command_line), &file_name, &testbench) != 0) {
        if (mfli_rtl_table == nullptr) {
            mfli_rtl_table = st_alloc_abo(st_strcmp, st_strhash);
        }
        read_forward_file(file_name, get_rtl_hash(mfli_rtl_table, testbench));
        if (mfli_debug_level > 1) {
            mfli_print_rtl_table();
        }
        mfli_message("Information (KLVA-PWR): Reading rtl saif file \"%s\" done.", file_name);
    }
    free(testbench);
    free(file_name);
}
