// SPDX-License-Identifier: Apache-2.0
// Small helpers of the support library itself: the assertion that stops the process and the
// comparison of texts with numbers in them.
#ifndef WATTFORGE_PLUGIN_SUPPORT_UTILITIES_H
#define WATTFORGE_PLUGIN_SUPPORT_UTILITIES_H

// Stops the process with `what` on standard error.
[[noreturn]] void util_stop(const char *what);

// The same unless the condition holds. For errors of the caller only, never for bad input.
inline void util_assert(bool condition, const char *what) {
    if (!condition) {
        util_stop(what);
    }
}

// As strcmp, but runs of digits compare as numbers: "bus(2)" stands before "bus(10)".
int util_strcmp_int(const char *a, const char *b);

#endif
