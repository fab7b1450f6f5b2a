// SPDX-License-Identifier: Apache-2.0
// Interface functions: regions.
#include <acc_user.h>
#include <mti.h>

#include <cstring>

#include "host/fli/call.h"
#include "host/fli/region_codes.h"

using wf::Call;
using wf::Region;
using wf::to_handle;

extern "C" {

mtiRegionIdT mti_GetTopRegion(void) {
    const Call call("mti_GetTopRegion");
    if (!call) {
        return nullptr;
    }
    Region *top = call->design.top();
    if (call.traced()) [[unlikely]] {
        call.trace("() = %s", call.name(top).c_str());
    }
    return to_handle(top);
}

mtiRegionIdT mti_FindRegion(char *name) {
    const Call call("mti_FindRegion");
    if (call.text(name, "region name") == nullptr) {
        return nullptr;
    }
    Region *region = call->design.find_region(name);
    if (call.traced()) [[unlikely]] {
        call.trace("(%s) = %s", name, call.name(region).c_str());
    }
    return to_handle(region);
}

mtiRegionIdT mti_FirstLowerRegion(mtiRegionIdT region) {
    const Call call("mti_FirstLowerRegion");
    const Region *record = call.region(region);
    if (record == nullptr) {
        return nullptr;
    }
    Region *first = record->children.empty() ? nullptr : record->children.front();
    if (call.traced()) [[unlikely]] {
        call.trace("(%s) = %s", call.name(record).c_str(), call.name(first).c_str());
    }
    return to_handle(first);
}

mtiRegionIdT mti_NextRegion(mtiRegionIdT region) {
    const Call call("mti_NextRegion");
    const Region *record = call.region(region);
    if (record == nullptr) {
        return nullptr;
    }
    Region *next = call->design.next(record);
    if (call.traced()) [[unlikely]] {
        call.trace("(%s) = %s", call.name(record).c_str(), call.name(next).c_str());
    }
    return to_handle(next);
}

char *mti_GetRegionFullName(mtiRegionIdT region) {
    const Call call("mti_GetRegionFullName");
    const Region *record = call.region(region);
    if (record == nullptr) {
        return nullptr;
    }
    const std::string &name = call->design.full_name(record);
    auto *copy = static_cast<char *>(call->ledger.allocate(name.size() + 1));
    std::memcpy(copy, name.c_str(), name.size() + 1);
    if (call.traced()) [[unlikely]] {
        call.trace("(%p) = %s", static_cast<const void *>(record), copy);
    }
    return copy;
}

char *mti_GetRegionName(mtiRegionIdT region) {
    const Call call("mti_GetRegionName");
    const Region *record = call.region(region);
    if (record == nullptr) {
        return nullptr;
    }
    if (call.traced()) [[unlikely]] {
        call.trace("(%p) = %s", static_cast<const void *>(record), record->name);
    }
    return record->name;
}

int mti_GetRegionKind(mtiRegionIdT region) {
    const Call call("mti_GetRegionKind");
    const Region *record = call.region(region);
    if (record == nullptr) {
        return 0;
    }
    const int kind = wf::region_codes(record->kind).kind;
    if (call.traced()) [[unlikely]] {
        call.trace("(%s) = %d", call.name(record).c_str(), kind);
    }
    return kind;
}

PLI_INT32 acc_fetch_fulltype(handle object) {
    const Call call("acc_fetch_fulltype");
    const Region *record = call.region(object);
    if (record == nullptr) {
        return 0;
    }
    const int full_type = wf::region_codes(record->kind).full_type;
    if (call.traced()) [[unlikely]] {
        call.trace("(%s) = %d", call.name(record).c_str(), full_type);
    }
    return full_type;
}

}  // extern "C"
