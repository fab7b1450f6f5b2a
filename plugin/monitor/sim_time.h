// SPDX-License-Identifier: Apache-2.0
// Simulated time: a signed 64-bit count of the simulator's resolution ticks, held in the
// simulator's own time record (mtiTime64T) and reached through its macros only. Durations are
// subtracted as 64-bit integers and converted afterwards, so that long simulations keep the full
// resolution.
#ifndef WATTFORGE_PLUGIN_MONITOR_SIM_TIME_H
#define WATTFORGE_PLUGIN_MONITOR_SIM_TIME_H

#include <mti.h>

#include <cstdint>

// The current time, into `buffer`; with a null buffer into a new one, which the caller releases
// with free(). Null when the simulator gives no time.
mtiTime64T *mfli_stime(mtiTime64T *buffer);

// a - b in 64-bit two's complement, in a new buffer, which the caller releases with free().
mtiTime64T *mfli_diff_time64(const mtiTime64T *a, const mtiTime64T *b);

// The ticks of `time` as a double: high * 2^32 + low, high signed and low unsigned.
double mfli_convert_time(const mtiTime64T *time);

// The ticks from `last` to now; negative when `last` lies ahead.
double mfli_time_in_prev_state(const mtiTime64T *last);

// The current time by value, for callers that keep no buffer; 0 when the simulator gives no time.
mtiTime64T mfli_now();

// The ticks of the current time.
double mfli_current_ticks();

// The ticks from `earlier` to `later`, as mfli_convert_time of mfli_diff_time64 gives them but
// without a buffer: one subtraction and one conversion for each changed element.
inline double mfli_ticks_between(mtiTime64T earlier, mtiTime64T later) {
    const auto whole = [](mtiTime64T &time) {
        return static_cast<uint64_t>(static_cast<uint32_t>(MTI_TIME64_HI32(time))) << 32 |
               static_cast<uint32_t>(MTI_TIME64_LO32(time));
    };
    return static_cast<double>(static_cast<int64_t>(whole(later) - whole(earlier)));
}

#endif
