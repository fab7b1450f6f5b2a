// SPDX-License-Identifier: Apache-2.0
// Counted strings: comparing, formatting, diagnostic output.
#include "plugin/support/counted_string.h"

#include <cstdio>
#include <cstring>

#include "plugin/support/counted_string_block.h"
#include "plugin/support/hash_functions.h"

int32_t string_debug_threshold = 64;

int string_compare(const dstring *a, const dstring *b) {
    return strcmp(string_to_char(a), string_to_char(b));
}

int string_compare_char(const dstring *s, const char *text) {
    return strcmp(string_to_char(s), text == nullptr ? "" : text);
}

uint32_t string_hash(const dstring *s) {
    return st_strhash(string_to_char(s));
}

dstring *string_vsprintf(const char *format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    // The analyser loses sight of a list that its caller has started.
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
    const int length = vsnprintf(nullptr, 0, format, arguments);
    const auto room = static_cast<uint32_t>(length < 0 ? 0 : length);
    dstring *s = string_block(room);
    if (length > 0) {
        vsnprintf(string_characters(s), size_t{room} + 1, format, again);
        s->len = room;
    }
    va_end(again);
    return s;
}

dstring *string_sprintf(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    dstring *s = string_vsprintf(format, arguments);
    va_end(arguments);
    return s;
}

void string_sprintf_concat(dstring **dst, const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    dstring *appended = string_vsprintf(format, arguments);
    va_end(arguments);
    string_concat(dst, appended);
    string_free(appended);
}

void string_print(const dstring *s) {
    fputs(string_to_char(s), stdout);
}

void string_debug(const dstring *s) {
    if (s == nullptr) {
        puts("string = null");
        return;
    }
    printf("string = %p, len = %u, refcnt = %u, max_len = %u\n", static_cast<const void *>(s),
           s->len, unsigned{s->refcnt}, s->max_len);
    printf("    \"%.*s\"%s\n", string_debug_threshold, string_to_char(s),
           string_len(s) > static_cast<uint32_t>(string_debug_threshold) ? " ..." : "");
}
