// SPDX-License-Identifier: Apache-2.0
// The steps of one report.
#include "plugin/saif/report.h"

#include <mti.h>

#include "plugin/monitor/window.h"
#include "plugin/saif/report_tree.h"
#include "plugin/saif/time_units.h"
#include "plugin/saif/writer.h"
#include "plugin/support/c_numbers.h"
#include "plugin/support/messages.h"
#include "plugin/support/run_state.h"

#include <cerrno>
#include <cmath>

static void trace(const char *step) {
    if (mfli_debug_level > 1) {
        mfli_print_text(step);
    }
}

int init_saif_header(FILE *stream, double duration, double unit_exponent, saif_header *header) {
    const char *unit = nullptr;
    double multiplier = 0.0;
    if (!convert_time_to_printing_units(unit_exponent, &unit, &multiplier)) {
        return 0;
    }
    header->duration = duration;
    header->timescale_value = static_cast<float>(multiplier);
    string_copy_char(&header->timescale_unit, unit);
    string_copy_char(&header->saif_version, "\"2.0\"");
    string_copy(&header->design, nullptr);
    string_copy(&header->date, nullptr);
    string_copy_char(&header->vendor, "Kelvara, Inc");
    string_copy_char(&header->program_name, "Wattforge FLI");
    string_copy_char(&header->program_version, "4.1.0");
    header->output = stream;
    header->direction = 0;
    header->divider = '/';
    return 1;
}

static SaifTree *create_tree() {
    trace("Starting saifout_create_tree");
    SaifTree *tree = saifout_create_tree(nullptr, nullptr, nullptr, nullptr);
    trace("Starting registering print functions");
    saifout_register_net_print_function(tree, bit_print);
    saifout_register_port_print_function(tree, bit_print);
    saifout_register_node_print_function(tree, node_print);
    return tree;
}

static int fill_tree(const char *instance, SaifTree *tree) {
    trace("Starting to build saif tree (gate/rtl)");
    if (mfli_is_rtl_read()) {
        return build_rtl_saif_tree(instance, tree);
    }
    return build_saif_tree(instance, tree);
}

static int write_tree(FILE *stream, double unit_exponent, SaifTree *tree) {
    const double scale = pow(10.0, mti_GetResolutionLimit() - unit_exponent);
    saif_header *header = saif_create_header_struct();
    trace("Starting init_saif_header");
    int written = init_saif_header(stream, mfli_window_time * scale, unit_exponent, header);
    if (written) {
        trace("Starting saifout_generate_saif");
        written = saifout_generate_saif(header, tree, scale);
    } else {
        errno = 0;
    }
    const int cause = errno;
    saif_free_header_struct(header);
    errno = cause;
    return written;
}

int saif_process(FILE *stream, double unit_exponent, const char *instance) {
    const mfli_c_numbers with_a_point;
    SaifTree *tree = create_tree();
    int cause = ENOMEM;
    int written = 0;
    begin_bit_print();
    if (tree != nullptr && fill_tree(instance, tree)) {
        written = write_tree(stream, unit_exponent, tree);
        cause = errno;
    }
    end_bit_print();
    trace("Starting saifout_free_tree");
    saifout_free_tree(tree);
    errno = cause;
    return written;
}
