// SPDX-License-Identifier: Apache-2.0
// The command toggle_report: checks its arguments, opens and closes the file, says what became of
// it. What stands in the file is saif/'s.
#ifndef WATTFORGE_PLUGIN_CORE_REPORT_COMMAND_H
#define WATTFORGE_PLUGIN_CORE_REPORT_COMMAND_H

// Handler of toggle_report FILE UNIT INSTANCE. Receives the whole command line (char *).
void mfli_report(void *command_line);

// 1 when all three arguments are good: an owned copy of the file name, the unit's power of ten
// (truncated towards zero, not checked against the units there are) and an owned copy of the
// instance's full name. 0 after the error line of the first that is not; the outputs are then null.
int check_toggle_report_args(const char *command_line, char **file_name, double *unit_exponent,
                             char **instance_name);

#endif
