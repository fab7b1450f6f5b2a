// SPDX-License-Identifier: Apache-2.0
// toggle_report: arguments, file, closing message.
#include "plugin/core/report_command.h"

#include <mti.h>

#include "plugin/core/arguments.h"
#include "plugin/core/order.h"
#include "plugin/monitor/sim_time.h"
#include "plugin/saif/report.h"
#include "plugin/saif/report_file.h"
#include "plugin/saif/time_units.h"
#include "plugin/select/names.h"
#include "plugin/support/c_numbers.h"
#include "plugin/support/messages.h"
#include "plugin/support/run_state.h"
#include "plugin/support/text.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

static int read_file_name(const char *argument, char **file_name) {
    if (argument[0] == '\0') {
        mfli_print_text("Error (KLVA-PWR): output filename empty");
        return 0;
    }
    *file_name = mfli_strdup(argument);
    return *file_name != nullptr;
}

static int read_unit(const char *argument, double *unit_exponent) {
    const mfli_c_numbers with_a_point;
    const double unit = strtod(argument, nullptr);
    if (unit == 0.0) {
        mfli_message("Error (KLVA-PWR): Could not interpret argument %s as number", argument);
        return 0;
    }
    if (unit < 0.0) {
        mfli_print_text("Error (KLVA-PWR): The synthesis time unit must be positive");
        return 0;
    }
    // Towards zero, whatever the unit: 5.0e-9 counts as 1.0e-8.
    *unit_exponent = trunc(log10(unit));
    return 1;
}

static int read_instance(char *argument, char **instance_name) {
    mtiRegionIdT region = mfli_find_region(argument);
    if (region == nullptr) {
        mfli_message("Error (KLVA-PWR): Invalid instance_str %s; no region of this name found",
                     argument);
        return 0;
    }
    *instance_name = mfli_get_region_full_name(region);
    return *instance_name != nullptr;
}

static char *argument_at(list *arguments, int position) {
    return static_cast<char *>(list_get_nth_item(arguments, position));
}

int check_toggle_report_args(const char *command_line, char **file_name, double *unit_exponent,
                             char **instance_name) {
    *file_name = nullptr;
    *instance_name = nullptr;
    int good = 0;
    list *arguments = mfli_parse_cmd_args(command_line, "toggle_report");
    if (arguments->length < 3) {
        mfli_print_text("Error (KLVA-PWR): toggle_report requires at least three arguments");
    } else {
        // A fourth argument alone is ignored without a word.
        if (arguments->length > 4) {
            mfli_print_text(
                "Warning (KLVA-PWR): toggle_report takes only three arguments, all the rest will "
                "be ignored");
        }
        good = read_file_name(argument_at(arguments, 0), file_name) &&
               read_unit(argument_at(arguments, 1), unit_exponent) &&
               read_instance(argument_at(arguments, 2), instance_name);
    }
    list_free(arguments, list_data_free);
    if (good) {
        return 1;
    }
    free(*file_name);
    *file_name = nullptr;
    return 0;
}

static void report_failure(const char *file_name, ReportEnd end, int cause) {
    mfli_message("Error (KLVA-PWR): Could not write file %s: %s%s", file_name, strerror(cause),
                 end == REPORT_INCOMPLETE ? "; what it holds is not complete" : "");
}

// One attempt; whatever failed has been told, unless the answer is REPORT_NOT_MOVED.
static ReportEnd write_file(const char *file_name, ReportPlace place, double unit_exponent,
                            const char *instance) {
    ReportFile file;
    if (!report_file_open(&file, file_name, place)) {
        mfli_message("Error (KLVA-PWR): Could not open filename %s for writing", file_name);
        return REPORT_FAILED;
    }
    static char buffer[256 * 1024];
    setvbuf(file.stream, buffer, _IOFBF, sizeof buffer);
    const int written = saif_process(file.stream, unit_exponent, instance);
    const ReportEnd end = report_file_close(&file, written);
    if (end == REPORT_FAILED || end == REPORT_INCOMPLETE) {
        report_failure(file_name, end, errno);
    }
    return end;
}

static void write_report(const char *file_name, double unit_exponent, const char *instance) {
    // Before the file is opened: a bad unit must not cost the user an earlier report.
    const char *unit = nullptr;
    double multiplier = 0.0;
    if (!convert_time_to_printing_units(unit_exponent, &unit, &multiplier)) {
        return;
    }
    ReportEnd end = write_file(file_name, REPORT_BESIDE_NAME, unit_exponent, instance);
    if (end == REPORT_NOT_MOVED) {
        end = write_file(file_name, REPORT_IN_PLACE, unit_exponent, instance);
    }
    if (end != REPORT_DONE) {
        return;
    }
    mfli_set_toggle_report_status();
    mfli_message("Information (KLVA-PWR): Report done, wrote file \"%s\" at time %f", file_name,
                 mfli_current_ticks());
}

void mfli_report(void *command_line) {
    if (!mfli_check_toggle_report_starting_point()) {
        return;
    }
    char *file_name = nullptr;
    char *instance = nullptr;
    double unit_exponent = 0.0;
    if (!check_toggle_report_args(static_cast<const char *>(command_line), &file_name,
                                  &unit_exponent, &instance)) {
        return;
    }
    write_report(file_name, unit_exponent, instance);
    free(file_name);
    free(instance);
}
