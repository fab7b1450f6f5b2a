// SPDX-License-Identifier: Apache-2.0
// Small helpers of the support library itself.
#include "plugin/support/utilities.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

void util_stop(const char *what) {
    fprintf(stderr, "Internal error: %s\n", what);
    abort();
}

static bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

// Past the leading zeros of a run of digits, as long as a digit follows.
static const char *skip_zeros(const char *digits) {
    while (digits[0] == '0' && is_digit(digits[1])) {
        ++digits;
    }
    return digits;
}

// Compares the runs of digits at the heads of both texts and moves past them.
static int compare_numbers(const char **a, const char **b) {
    const char *number_a = skip_zeros(*a);
    const char *number_b = skip_zeros(*b);
    const size_t digits_a = strspn(number_a, "0123456789");
    const size_t digits_b = strspn(number_b, "0123456789");
    *a = number_a + digits_a;
    *b = number_b + digits_b;
    if (digits_a != digits_b) {
        return digits_a < digits_b ? -1 : 1;
    }
    return memcmp(number_a, number_b, digits_a);
}

int util_strcmp_int(const char *a, const char *b) {
    const char *rest_a = a;
    const char *rest_b = b;
    while (*rest_a != '\0' && *rest_b != '\0') {
        if (is_digit(*rest_a) && is_digit(*rest_b)) {
            const int difference = compare_numbers(&rest_a, &rest_b);
            if (difference != 0) {
                return difference;
            }
        } else if (*rest_a == *rest_b) {
            ++rest_a;
            ++rest_b;
        } else {
            break;
        }
    }
    const int difference = strcmp(rest_a, rest_b);
    // Texts that differ in leading zeros alone are not equal either.
    return difference != 0 ? difference : strcmp(a, b);
}
