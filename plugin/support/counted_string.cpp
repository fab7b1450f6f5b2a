// SPDX-License-Identifier: Apache-2.0
// Counted strings: life, growth, appending, parts.
#include "plugin/support/counted_string.h"

#include <cstdlib>
#include <cstring>

#include "plugin/support/counted_string_block.h"

static uint32_t capacity_for(uint32_t room) {
    return room | 3U;
}

static size_t block_bytes(uint32_t max_len) {
    return sizeof(dstring) + max_len + 1;
}

dstring *string_block(uint32_t room) {
    const uint32_t max_len = capacity_for(room);
    auto *s = static_cast<dstring *>(malloc(block_bytes(max_len)));
    s->len = 0;
    s->refcnt = 0;
    s->unused = 0;
    s->max_len = max_len;
    *string_characters(s) = '\0';
    return s;
}

static dstring *resized(dstring *s, uint32_t room) {
    const uint32_t max_len = capacity_for(room);
    s = static_cast<dstring *>(realloc(s, block_bytes(max_len)));
    s->max_len = max_len;
    return s;
}

// A new private value of `length` characters, with room for `room`.
static dstring *copied(const char *characters, uint32_t length, uint32_t room) {
    dstring *s = string_block(room);
    memcpy(string_characters(s), characters, length);
    string_characters(s)[length] = '\0';
    s->len = length;
    return s;
}

static void unshare(dstring **s, uint32_t room) {
    dstring *shared = *s;
    if (string_drop_owner(shared) > 0) {
        *s = copied(string_to_char(shared), shared->len, room);
    } else {
        string_leave_table(shared);
        *s = resized(shared, room);
    }
}

void string_make_room(dstring **s, uint32_t room) {
    if (*s == nullptr) {
        *s = string_block(room);
    } else if ((*s)->refcnt != 0) {
        unshare(s, room);
    } else if ((*s)->max_len < room) {
        const uint32_t doubled = 2 * (*s)->max_len;
        *s = resized(*s, doubled > room ? doubled : room);
    }
}

dstring *string_alloc(const char *text) {
    if (text == nullptr) {
        text = "";
    }
    const auto length = static_cast<uint32_t>(strlen(text));
    return copied(text, length, length);
}

dstring *string_dup(dstring *s) {
    if (s == nullptr) {
        return nullptr;
    }
    if (s->refcnt == 0) {
        return copied(string_to_char(s), s->len, s->len);
    }
    string_add_owner(s);
    return s;
}

void string_free(dstring *s) {
    if (s == nullptr) {
        return;
    }
    if (s->refcnt != 0) {
        if (string_drop_owner(s) > 0) {
            return;
        }
        string_leave_table(s);
    }
    free(s);
}

uint32_t string_len(const dstring *s) {
    return s == nullptr ? 0 : s->len;
}

const char *string_to_char(const dstring *s) {
    return s == nullptr ? "" : reinterpret_cast<const char *>(s + 1);
}

// Appends characters, which may be the value's own.
static void append(dstring **dst, const char *characters, uint32_t length) {
    const char *before = string_to_char(*dst);
    const uint32_t old_length = string_len(*dst);
    const bool own = characters >= before && characters <= before + old_length;
    const auto offset = own ? characters - before : 0;
    string_make_room(dst, old_length + length);
    char *after = string_characters(*dst);
    memmove(after + old_length, own ? after + offset : characters, length);
    after[old_length + length] = '\0';
    (*dst)->len = old_length + length;
}

void string_concat(dstring **dst, const dstring *s) {
    append(dst, string_to_char(s), string_len(s));
}

void string_concat_char(dstring **dst, const char *text) {
    if (text != nullptr) {
        append(dst, text, static_cast<uint32_t>(strlen(text)));
    }
}

void string_concat_ch(dstring **dst, char c) {
    append(dst, &c, 1);
}

void string_copy(dstring **dst, dstring *s) {
    dstring *copy = string_dup(s);
    string_free(*dst);
    *dst = copy;
}

void string_copy_char(dstring **dst, const char *text) {
    dstring *copy = string_alloc(text);
    string_free(*dst);
    *dst = copy;
}

dstring *string_substr_len(const dstring *s, int32_t start, int32_t count) {
    const auto length = static_cast<int64_t>(string_len(s));
    int64_t from = start < 0 ? start + length : start;
    from = from < 0 ? 0 : from;
    from = from > length ? length : from;
    const int64_t left = length - from;
    const int64_t taken = count <= 0 || count > left ? left : count;
    return copied(string_to_char(s) + from, static_cast<uint32_t>(taken),
                  static_cast<uint32_t>(taken));
}

dstring *string_substr(const dstring *s, int32_t start, int32_t end) {
    return string_substr_len(s, start, end - start + 1);
}
