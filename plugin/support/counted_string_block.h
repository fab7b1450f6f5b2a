// SPDX-License-Identifier: Apache-2.0
// What the sources of the counted strings share: the block of a value and its making private. Not
// for other units.
#ifndef WATTFORGE_PLUGIN_SUPPORT_COUNTED_STRING_BLOCK_H
#define WATTFORGE_PLUGIN_SUPPORT_COUNTED_STRING_BLOCK_H

#include "plugin/support/counted_string.h"

enum : uint16_t { STRING_OWNERS_MAX = 65535 };

inline char *string_characters(dstring *s) {
    return reinterpret_cast<char *>(s + 1);
}

// A new private empty value with room for `room` characters.
dstring *string_block(uint32_t room);

// Makes the value private, with room for `room` characters, at least as many as it has.
void string_make_room(dstring **s, uint32_t room);

// Adds an owner to a shared value; drops one and returns how many are left. Neither counts at
// 65535.
void string_add_owner(dstring *s);
uint16_t string_drop_owner(dstring *s);

// Takes this very value out of the sharing table, if it is there.
void string_leave_table(dstring *s);

#endif
