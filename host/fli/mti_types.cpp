// SPDX-License-Identifier: Apache-2.0
// Interface functions: types.
#include <mti.h>

#include "host/fli/call.h"

using wf::Call;
using wf::Type;
using wf::TypeKind;

namespace {

mtiTypeKindT kind_code(TypeKind kind) {
    constexpr mtiTypeKindT codes[] = {MTI_TYPE_SCALAR, MTI_TYPE_ARRAY,    MTI_TYPE_RECORD,
                                      MTI_TYPE_ENUM,   MTI_TYPE_PHYSICAL, MTI_TYPE_REAL,
                                      MTI_TYPE_ACCESS, MTI_TYPE_FILE,     MTI_TYPE_TIME};
    return codes[static_cast<int>(kind)];
}

// A type's number, traced; 0 for what is no type.
template <typename Number>
mtiInt32T answer(const Call &call, mtiTypeIdT handle, Number number) {
    const Type *type = call.type(handle);
    if (type == nullptr) {
        return 0;
    }
    const mtiInt32T value = number(*type);
    if (call.traced()) [[unlikely]] {
        call.trace("(%s) = %d", type->name.c_str(), value);
    }
    return value;
}

}  // namespace

extern "C" {

// A handle that is none is answered with a kind that nobody can watch.
mtiTypeKindT mti_GetTypeKind(mtiTypeIdT type) {
    const Call call("mti_GetTypeKind");
    const Type *record = call.type(type);
    if (record == nullptr) {
        return MTI_TYPE_ACCESS;
    }
    const mtiTypeKindT kind = kind_code(record->kind);
    if (call.traced()) [[unlikely]] {
        call.trace("(%s) = %d", record->name.c_str(), static_cast<int>(kind));
    }
    return kind;
}

mtiTypeIdT mti_GetArrayElementType(mtiTypeIdT type) {
    const Call call("mti_GetArrayElementType");
    const Type *record = call.type(type);
    if (record == nullptr) {
        return nullptr;
    }
    if (record->kind != TypeKind::array) {
        call.complain(record->name + " is not an array type");
        return nullptr;
    }
    if (call.traced()) [[unlikely]] {
        call.trace("(%s) = %s", record->name.c_str(), record->element->name.c_str());
    }
    return wf::to_handle(record->element);
}

char **mti_GetEnumValues(mtiTypeIdT type) {
    const Call call("mti_GetEnumValues");
    const Type *record = call.type(type);
    if (record == nullptr) {
        return nullptr;
    }
    if (record->kind != TypeKind::enumeration) {
        call.complain(record->name + " is not an enumeration type");
        return nullptr;
    }
    if (call.traced()) [[unlikely]] {
        call.trace("(%s) = %d literals", record->name.c_str(), static_cast<int>(record->length));
    }
    return const_cast<char **>(record->literal_texts.data());
}

// A length that does not fit its 32 bits is 0, that of the full integer range first of all.
mtiInt32T mti_TickLength(mtiTypeIdT type) {
    return answer(Call("mti_TickLength"), type, [](const Type &t) {
        return t.length <= INT32_MAX ? static_cast<mtiInt32T>(t.length) : 0;
    });
}

mtiInt32T mti_TickLeft(mtiTypeIdT type) {
    return answer(Call("mti_TickLeft"), type, [](const Type &t) { return t.left; });
}

mtiInt32T mti_TickRight(mtiTypeIdT type) {
    return answer(Call("mti_TickRight"), type, [](const Type &t) { return t.right; });
}

mtiInt32T mti_TickDir(mtiTypeIdT type) {
    return answer(Call("mti_TickDir"), type,
                  [](const Type &t) { return static_cast<mtiInt32T>(t.direction); });
}

}  // extern "C"
