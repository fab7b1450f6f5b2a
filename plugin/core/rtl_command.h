// SPDX-License-Identifier: Apache-2.0
// The command read_rtl_saif: checks its arguments and has the forward file read into the RTL table.
// How the file is read is rtlsaif/'s.
#ifndef WATTFORGE_PLUGIN_CORE_RTL_COMMAND_H
#define WATTFORGE_PLUGIN_CORE_RTL_COMMAND_H

// Handler of read_rtl_saif FILE [TESTBENCH]. Receives the whole command line (char *).
void mfli_rtl(void *command_line);

// 1 when the arguments are usable: an owned copy of the file name, and of the testbench region's
// full name, or null when none was given. 0 after the error line of the first that is not; what the
// outputs then hold is the caller's to free.
int check_read_rtl_arg(const char *command_line, char **file_name, char **testbench);

#endif
