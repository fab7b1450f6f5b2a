// SPDX-License-Identifier: Apache-2.0
// Joins the simulator's region and signal names, and walks an index suffix down to an element.
#include "plugin/select/names.h"

#include "plugin/support/messages.h"
#include "plugin/support/text.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

int64_t convert_index_to_position(mtiTypeIdT array_type, int64_t index) {
    switch (mti_TickDir(array_type)) {
        case 1:
            return index - mti_TickLeft(array_type);
        case -1:
            return mti_TickLength(array_type) - (index - mti_TickRight(array_type)) - 1;
        default:
            return -1;
    }
}

// A copy of the region's full name with "/" behind it.
static char *region_path(mtiRegionIdT region) {
    char *simulators = mti_GetRegionFullName(region);
    char *path = mfli_strdup(simulators);
    mti_VsimFree(simulators);
    mfli_strcat(&path, "/");
    return path;
}

char *mfli_get_signal_full_name(mtiSignalIdT signal) {
    char *name = region_path(mti_GetSignalRegion(signal));
    mfli_strcat(&name, mti_GetSignalName(signal));
    return name;
}

char *mfli_get_signal_full_name_indirect(mtiSignalIdT signal, mtiRegionIdT region) {
    char *name = region_path(region);
    char *indirect = mti_GetSignalNameIndirect(signal, nullptr, 0);
    mfli_strcat(&name, indirect != nullptr ? indirect : mti_GetSignalName(signal));
    if (indirect != nullptr) {
        mti_VsimFree(indirect);
    }
    return name;
}

char *mfli_get_signal_full_indexed_name(mtiSignalIdT signal, const char *user_name) {
    char *name = mfli_get_signal_full_name(signal);
    char *base = nullptr;
    char *suffix = nullptr;
    mfli_split_name_and_index(user_name, &base, &suffix);
    mfli_strcat(&name, suffix);
    free(base);
    free(suffix);
    return name;
}

mtiSignalIdT mfli_find_signal(const char *name) {
    const mtiSignalIdT signal = mti_FindSignal(const_cast<char *>(name));
    if (signal == nullptr) {
        return nullptr;
    }
    char *base = nullptr;
    char *suffix = nullptr;
    mfli_split_name_and_index(name, &base, &suffix);
    const mtiSignalIdT element = find_array_element_recur(signal, suffix);
    free(base);
    free(suffix);
    return element;
}

static mtiSignalIdT subelement_at(mtiSignalIdT signal, int64_t position) {
    mtiSignalIdT *elements = mti_GetSignalSubelements(signal, nullptr);
    if (elements == nullptr) {
        return nullptr;
    }
    const mtiSignalIdT element = elements[position];
    mti_VsimFree(elements);
    return element;
}

// What the first index of the suffix, and through recursion the rest, selects; null for nothing.
static mtiSignalIdT select_by_suffix(mtiSignalIdT signal, const char *suffix) {
    const char *close = suffix[0] == '(' ? strchr(suffix, ')') : nullptr;
    if (close == nullptr) {
        return nullptr;
    }
    // Numbers beyond 32 bits stay beyond every range.
    const int64_t index = std::clamp<int64_t>(strtoll(suffix + 1, nullptr, 10),
                                              INT32_MIN - INT64_C(1), INT32_MAX + INT64_C(1));
    const mtiTypeIdT type = mti_GetSignalType(signal);
    const int64_t position = convert_index_to_position(type, index);
    if (position < 0 || position >= mti_TickLength(type)) {
        return nullptr;
    }
    const mtiSignalIdT element = subelement_at(signal, position);
    return close[1] == '\0' ? element : find_array_element_recur(element, close + 1);
}

mtiSignalIdT find_array_element_recur(mtiSignalIdT signal, const char *suffix) {
    if (signal == nullptr || suffix == nullptr) {
        return signal;
    }
    const mtiTypeKindT kind = mti_GetTypeKind(mti_GetSignalType(signal));
    if (kind != MTI_TYPE_ARRAY && kind != MTI_TYPE_RECORD) {
        return signal;
    }
    const mtiSignalIdT element = select_by_suffix(signal, suffix);
    if (element == nullptr) {
        char *name = mfli_get_signal_full_name(signal);
        mfli_message("Warning (KLVA-PWR): could not find valid array element for signal %s%s", name,
                     suffix);
        free(name);
    }
    return element;
}
