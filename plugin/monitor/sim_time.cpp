// SPDX-License-Identifier: Apache-2.0
// Reads the simulator's clock and calculates with its time record.
#include "plugin/monitor/sim_time.h"

#include <cmath>
#include <cstdlib>

static mtiTime64T *new_time() {
    return static_cast<mtiTime64T *>(malloc(sizeof(mtiTime64T)));
}

mtiTime64T *mfli_stime(mtiTime64T *buffer) {
    mtiTime64T *now = mti_NowIndirect(buffer);
    if (now == nullptr || buffer != nullptr) {
        return now;
    }
    mtiTime64T *copy = new_time();
    if (copy != nullptr) {
        *copy = *now;
    }
    mti_VsimFree(now);
    return copy;
}

mtiTime64T *mfli_diff_time64(const mtiTime64T *a, const mtiTime64T *b) {
    const auto a_low = static_cast<uint32_t>(MTI_TIME64_LO32(*a));
    const auto b_low = static_cast<uint32_t>(MTI_TIME64_LO32(*b));
    const uint32_t borrow = a_low < b_low ? 1 : 0;
    const uint32_t high = static_cast<uint32_t>(MTI_TIME64_HI32(*a)) -
                          static_cast<uint32_t>(MTI_TIME64_HI32(*b)) - borrow;
    mtiTime64T *difference = new_time();
    if (difference != nullptr) {
        MTI_TIME64_ASGN(*difference, static_cast<int32_t>(high), a_low - b_low);
    }
    return difference;
}

double mfli_convert_time(const mtiTime64T *time) {
    // The simulator's header may have the low word signed.
    return static_cast<double>(MTI_TIME64_HI32(*time)) * pow(2.0, 32.0) +
           static_cast<double>(static_cast<uint32_t>(MTI_TIME64_LO32(*time)));
}

double mfli_time_in_prev_state(const mtiTime64T *last) {
    mtiTime64T *now = mfli_stime(nullptr);
    mtiTime64T *difference = now == nullptr ? nullptr : mfli_diff_time64(now, last);
    const double ticks = difference == nullptr ? 0.0 : mfli_convert_time(difference);
    free(now);
    free(difference);
    return ticks;
}

mtiTime64T mfli_now() {
    mtiTime64T now;
    MTI_TIME64_ASGN(now, 0, 0);
    mfli_stime(&now);
    return now;
}

double mfli_current_ticks() {
    const mtiTime64T now = mfli_now();
    return mfli_convert_time(&now);
}
