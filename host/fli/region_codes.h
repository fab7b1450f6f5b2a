// SPDX-License-Identifier: Apache-2.0
// The numbers by which the interface tells kinds of regions apart.
#pragma once

#include "host/design/region.h"

namespace wf {

// What acc_fetch_fulltype and mti_GetRegionKind answer.
struct RegionCodes {
    int full_type;
    int kind;
};

// Plug-ins tell scopes that hold no nets by the full types 1011 to 1013 and the kinds 1040
// (package), 1080, 1090 and 1100; every other kind of region only needs numbers that are none of
// these.
constexpr RegionCodes region_codes(RegionKind kind) {
    switch (kind) {
        case RegionKind::module:
            return {1000, 1000};
        case RegionKind::program:
            return {1001, 1001};
        case RegionKind::interface:
            return {1002, 1002};
        case RegionKind::instance:
            return {1003, 1010};
        case RegionKind::block:
            return {1004, 1020};
        case RegionKind::generate:
            return {1005, 1030};
        case RegionKind::record:
            return {1006, 1050};
        case RegionKind::named_block:
            return {1007, 1060};
        case RegionKind::process:
            return {1008, 1070};
        case RegionKind::package:
            return {1009, 1040};
        case RegionKind::task:
            return {1011, 1080};
        case RegionKind::function:
            return {1012, 1090};
        case RegionKind::statement:
            return {1013, 1100};
    }
    return {0, 0};
}

}  // namespace wf
