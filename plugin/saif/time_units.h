// SPDX-License-Identifier: Apache-2.0
// From a time unit's power of ten to the words of a TIMESCALE line. Touches the messages only.
#ifndef WATTFORGE_PLUGIN_SAIF_TIME_UNITS_H
#define WATTFORGE_PLUGIN_SAIF_TIME_UNITS_H

// The exponent, truncated to an integer from -15 to 0, as a unit ("fs" to "s", a constant text) and
// a multiplier of 1, 10 or 100: -10 is 100 ps. 1 on success; 0 for any other exponent, with the
// error line printed and both outputs left alone.
int convert_time_to_printing_units(double unit_exponent, const char **unit, double *multiplier);

#endif
