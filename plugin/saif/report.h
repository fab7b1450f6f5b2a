// SPDX-License-Identifier: Apache-2.0
// Makes one report: builds the writer's tree from what was recorded, fills the header and has the
// file written. Opening and closing the file, and all talk about it, are the command's.
#ifndef WATTFORGE_PLUGIN_SAIF_REPORT_H
#define WATTFORGE_PLUGIN_SAIF_REPORT_H

#include <cstdio>

#include "plugin/saif/attributes.h"

// Writes the report of everything recorded below `instance` (a full region name) to the stream,
// with durations in units of 10^unit_exponent seconds. 1 when every byte was handed to the system.
// 0 when not: errno has the cause, and is 0 when nothing was written because there is no such unit,
// whose error line is then printed.
int saif_process(FILE *stream, double unit_exponent, const char *instance);

// Fills every field of an initialised header; `duration` is in units of 10^unit_exponent seconds.
// 0, with the unit's error line, when there is no such unit; the header is then unchanged.
int init_saif_header(FILE *stream, double duration, double unit_exponent, saif_header *header);

#endif
