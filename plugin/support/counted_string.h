// SPDX-License-Identifier: Apache-2.0
// dstring: a growable text with a stored length that can be shared by interning. Rests on the hash
// table (the sharing table).
//
// A null dstring is valid everywhere and is the empty text. A value is private (refcnt 0: one
// owner) or shared (interned, with refcnt owners); every owner calls string_free once. Whatever
// changes a value takes its address and makes it private first, so no other owner sees the change.
// Memory is assumed to be had.
#ifndef WATTFORGE_PLUGIN_SUPPORT_COUNTED_STRING_H
#define WATTFORGE_PLUGIN_SUPPORT_COUNTED_STRING_H

#include <cstdarg>
#include <cstdint>

// The head of a value's block; max_len characters and a NUL follow it.
struct dstring {
    uint32_t len;      // characters in use
    uint16_t refcnt;   // owners of a shared value; 65535 is final: such a value is never released
    uint16_t unused;   // 0
    uint32_t max_len;  // capacity in characters, its two low bits set
};

static_assert(sizeof(dstring) == 12, "the characters follow the head directly");

// How many characters string_debug shows.
extern int32_t string_debug_threshold;

// Life. A new private copy of a text (null: empty). A further owner of a shared value, a copy of a
// private one. The end of one ownership.
dstring *string_alloc(const char *text);
dstring *string_dup(dstring *s);
void string_free(dstring *s);

// Length; the characters in place.
uint32_t string_len(const dstring *s);
const char *string_to_char(const dstring *s);

// Append a value, a text (null: nothing happens), a character.
void string_concat(dstring **dst, const dstring *s);
void string_concat_char(dstring **dst, const char *text);
void string_concat_ch(dstring **dst, char c);

// Replace.
void string_copy(dstring **dst, dstring *s);
void string_copy_char(dstring **dst, const char *text);

// A new private value of `count` characters from `start`, or of those from `start` to `end`
// inclusive. A negative start counts from the end. A count of 0, or one past the end, means up to
// the end.
dstring *string_substr_len(const dstring *s, int32_t start, int32_t count);
dstring *string_substr(const dstring *s, int32_t start, int32_t end);

// By bytes; against a text.
int string_compare(const dstring *a, const dstring *b);
int string_compare_char(const dstring *s, const char *text);
uint32_t string_hash(const dstring *s);

// Table callbacks: keys are addresses of dstring pointers.
int string_compare_container(const void *a, const void *b);
uint32_t string_hash_container(const void *key);

// As the C library's sprintf: a new value, or appended.
dstring *string_sprintf(const char *format, ...) __attribute__((format(printf, 1, 2)));
dstring *string_vsprintf(const char *format, va_list arguments)
    __attribute__((format(printf, 1, 0)));
void string_sprintf_concat(dstring **dst, const char *format, ...)
    __attribute__((format(printf, 2, 3)));

// Interning. string_memorize replaces a private value by the shared value of equal text.
// string_unmemorize takes a shared value out of the sharing table: its only owner has it private
// again, several owners go on sharing it, but no more join.
void string_memorize(dstring **s);
void string_unmemorize(dstring *s);

// Diagnostic output to standard output: the sharing table, the text, the record.
void string_memo_info();
void string_print(const dstring *s);
void string_debug(const dstring *s);

#endif
