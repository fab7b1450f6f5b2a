// SPDX-License-Identifier: Apache-2.0
// The table of time units.
#include "plugin/saif/time_units.h"

#include "plugin/support/messages.h"

#include <cmath>

static const char *const units[] = {"s", "ms", "us", "ns", "ps", "fs"};
static const double multipliers[] = {1.0, 10.0, 100.0};

int convert_time_to_printing_units(double unit_exponent, const char **unit, double *multiplier) {
    const double exponent = trunc(unit_exponent);
    // Written so that a NaN, which no comparison holds for, is refused too.
    if (!(exponent >= -15.0 && exponent <= 0.0)) {
        mfli_message(
            "Error (KLVA-PWR): Bad synthesis_time_unit (param 2 to $toggle_report): %f, Synthesis "
            "time unit must be of the form 1.0e-n, where 0 <= n <= 15",
            pow(10.0, exponent));
        return 0;
    }
    const int below_second = -static_cast<int>(exponent);  // 0 to 15
    const int step = (below_second + 2) / 3;               // thousandths below the second
    *unit = units[step];
    *multiplier = multipliers[step * 3 - below_second];
    return 1;
}
