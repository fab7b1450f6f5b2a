// SPDX-License-Identifier: Apache-2.0
// Interface functions: signals.
#include <mti.h>

#include <algorithm>
#include <cstring>

#include "host/fli/call.h"

using wf::Call;
using wf::Signal;
using wf::to_handle;
using wf::TypeKind;

namespace {

// Copies a text as far as it fits, its end mark included.
void copy_bounded(const std::string &text, char *buffer, int length) {
    if (length <= 0) {
        return;
    }
    const size_t fits = std::min(text.size(), static_cast<size_t>(length) - 1);
    std::memcpy(buffer, text.data(), fits);
    buffer[fits] = '\0';
}

// The signal under the cursor; moves on to the next.
Signal *take_from_cursor(wf::Session::Cursor &cursor) {
    if (cursor.region == nullptr || cursor.position >= cursor.region->signals.size()) {
        return nullptr;
    }
    return cursor.region->signals[cursor.position++];
}

// Whether values of the type cross the wall as one 32-bit number.
bool is_number(const wf::Type &type) {
    return type.kind == TypeKind::enumeration || type.kind == TypeKind::integer ||
           type.kind == TypeKind::physical;
}

// mti_GetSignalValue in full: any type, the trace, the complaints.
mtiInt32T value_in_full(mtiSignalIdT signal) {
    const Call call("mti_GetSignalValue");
    const Signal *record = call.signal(signal);
    if (record == nullptr) {
        return 0;
    }
    const wf::Type &type = *record->type;
    if (!is_number(type)) {
        call.complain(call.name(record) + " has no 32-bit value");
        return 0;
    }
    call->kernel.fetch(*record);
    const auto value = type.is_byte() ? mtiInt32T{call->kernel.byte(record->slot)}
                                      : static_cast<mtiInt32T>(call->kernel.word(record->slot));
    if (call.traced()) {
        call.trace("(%s) = %d", call.name(record).c_str(), value);
    }
    return value;
}

// The way from one block of signals to the next, and to everything else.
__attribute__((noinline)) mtiInt32T value_of(mtiSignalIdT signal) {
    mtiInt32T value = 0;
    if (wf::Session *session = wf::Session::current()) {
        session->open_byte_values(signal);
        if (wf::Session::byte_values().find(signal, &value)) {
            return value;
        }
    }
    return value_in_full(signal);
}

}  // namespace

extern "C" {

mtiSignalIdT mti_FindSignal(char *name) {
    const Call call("mti_FindSignal");
    if (call.text(name, "signal name") == nullptr) {
        return nullptr;
    }
    Signal *signal = call->design.find_signal(name);
    if (call.traced()) [[unlikely]] {
        call.trace("(%s) = %s", name, call.name(signal).c_str());
    }
    return to_handle(signal);
}

mtiSignalIdT mti_FirstSignal(mtiRegionIdT region) {
    const Call call("mti_FirstSignal");
    const wf::Region *record = call.region(region);
    if (record == nullptr) {
        return nullptr;
    }
    call->cursor = {record, 0};
    Signal *first = take_from_cursor(call->cursor);
    if (call.traced()) [[unlikely]] {
        call.trace("(%s) = %s", call.name(record).c_str(), call.name(first).c_str());
    }
    return to_handle(first);
}

mtiSignalIdT mti_NextSignal(void) {
    const Call call("mti_NextSignal");
    if (!call) {
        return nullptr;
    }
    if (call->cursor.region == nullptr) {
        call.complain("mti_FirstSignal has not been called");
        return nullptr;
    }
    Signal *signal = take_from_cursor(call->cursor);
    if (call.traced()) [[unlikely]] {
        call.trace("() = %s", call.name(signal).c_str());
    }
    return to_handle(signal);
}

mtiRegionIdT mti_GetSignalRegion(mtiSignalIdT signal) {
    const Call call("mti_GetSignalRegion");
    const Signal *record = call.signal(signal);
    if (record == nullptr) {
        return nullptr;
    }
    wf::Region *region = call->design.region_of(record);
    if (call.traced()) [[unlikely]] {
        call.trace("(%s) = %s", call.name(record).c_str(), call.name(region).c_str());
    }
    return to_handle(region);
}

char *mti_GetSignalName(mtiSignalIdT signal) {
    const Call call("mti_GetSignalName");
    const Signal *record = call.signal(signal);
    if (record == nullptr) {
        return nullptr;
    }
    char *name = call->design.name_of(record);
    if (call.traced()) [[unlikely]] {
        call.trace("(%s) = %s", call.name(record).c_str(), name);
    }
    return name;
}

char *mti_GetSignalNameIndirect(mtiSignalIdT signal, char *buf, int length) {
    const Call call("mti_GetSignalNameIndirect");
    const Signal *record = call.signal(signal);
    if (record == nullptr) {
        return nullptr;
    }
    std::string name;
    call->design.append_indirect_name(record, name);
    char *result = buf;
    if (buf == nullptr) {
        result = static_cast<char *>(call->ledger.allocate(name.size() + 1));
        std::memcpy(result, name.c_str(), name.size() + 1);
    } else {
        copy_bounded(name, buf, length);
    }
    if (call.traced()) [[unlikely]] {
        call.trace("(%s, %s) = %s", call.name(record).c_str(), buf == nullptr ? "null" : "buffer",
                   name.c_str());
    }
    return result;
}

mtiTypeIdT mti_GetSignalType(mtiSignalIdT signal) {
    const Call call("mti_GetSignalType");
    const Signal *record = call.signal(signal);
    if (record == nullptr) {
        return nullptr;
    }
    if (call.traced()) [[unlikely]] {
        call.trace("(%s) = %s", call.name(record).c_str(), record->type->name.c_str());
    }
    return to_handle(record->type);
}

mtiSignalIdT *mti_GetSignalSubelements(mtiSignalIdT signal, mtiSignalIdT *buf) {
    const Call call("mti_GetSignalSubelements");
    Signal *record = call.signal(signal);
    if (record == nullptr) {
        return nullptr;
    }
    const uint32_t count = record->type->element_count();
    if (call.traced()) [[unlikely]] {
        call.trace("(%s, %s) = %u elements", call.name(record).c_str(),
                   buf == nullptr ? "null" : "buffer", count);
    }
    if (!record->type->is_composite()) {
        return nullptr;
    }
    Signal *elements = call->design.elements(record);
    if (buf == nullptr) {
        buf = static_cast<mtiSignalIdT *>(call->ledger.allocate(count * sizeof(mtiSignalIdT)));
    }
    for (uint32_t i = 0; i < count; ++i) {
        buf[i] = to_handle(elements + i);
    }
    return buf;
}

mtiDirectionT mti_GetSignalMode(mtiSignalIdT signal) {
    const Call call("mti_GetSignalMode");
    const Signal *record = call.signal(signal);
    if (record == nullptr) {
        return MTI_INTERNAL;
    }
    constexpr mtiDirectionT directions[] = {MTI_INTERNAL, MTI_DIR_IN, MTI_DIR_OUT, MTI_DIR_INOUT};
    const mtiDirectionT direction = directions[static_cast<int>(call->design.mode_of(record))];
    if (call.traced()) [[unlikely]] {
        call.trace("(%s) = %d", call.name(record).c_str(), static_cast<int>(direction));
    }
    return direction;
}

mtiInt32T mti_GetSignalValue(mtiSignalIdT signal) {
    mtiInt32T value;
    if (wf::Session::byte_values().find(signal, &value)) [[likely]] {
        return value;
    }
    return value_of(signal);
}

}  // extern "C"
