// SPDX-License-Identifier: Apache-2.0
// Counted strings: comparing, searching, changing case, formatting, lines, diagnostic output.
#include "plugin/support/counted_string.h"

#include <cstdlib>
#include <cstring>

#include "plugin/support/counted_string_block.h"
#include "plugin/support/hash_functions.h"
#include "plugin/support/utilities.h"

int32_t string_debug_threshold = 64;

int string_compare(const dstring *a, const dstring *b) {
    return strcmp(string_to_char(a), string_to_char(b));
}

int string_compare_int(const dstring *a, const dstring *b) {
    return util_strcmp_int(string_to_char(a), string_to_char(b));
}

int string_compare_char(const dstring *s, const char *text) {
    return strcmp(string_to_char(s), text == nullptr ? "" : text);
}

uint32_t string_hash(const dstring *s) {
    return st_strhash(string_to_char(s));
}

static int32_t position_of(const dstring *s, const char *found) {
    return found == nullptr ? -1 : static_cast<int32_t>(found - string_to_char(s));
}

int32_t string_strchr(const dstring *s, char c) {
    return position_of(s, strchr(string_to_char(s), c));
}

int32_t string_strrchr(const dstring *s, char c) {
    return position_of(s, strrchr(string_to_char(s), c));
}

// Moves every character between `first` and `last` by `distance`.
static void shift_letters(dstring **s, char first, char last, int distance) {
    string_make_room(s, string_len(*s));
    for (char *c = string_characters(*s); *c != '\0'; ++c) {
        if (*c >= first && *c <= last) {
            *c = static_cast<char>(*c + distance);
        }
    }
}

void string_toupper(dstring **s) {
    shift_letters(s, 'a', 'z', 'A' - 'a');
}

void string_tolower(dstring **s) {
    shift_letters(s, 'A', 'Z', 'a' - 'A');
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

dstring *string_fgets(FILE *stream) {
    char *line = nullptr;
    size_t capacity = 0;
    dstring *s = nullptr;
    if (getline(&line, &capacity, stream) >= 0) {
        s = string_alloc(line);
    }
    free(line);
    return s;
}

dstring *string_gets() {
    dstring *line = string_fgets(stdin);
    if (line != nullptr && string_fetch(line, -1) == '\n') {
        string_characters(line)[--line->len] = '\0';
    }
    return line;
}

int string_fputs(const dstring *s, FILE *stream) {
    return fputs(string_to_char(s), stream);
}

int string_puts(const dstring *s) {
    return puts(string_to_char(s));
}

void string_print(const dstring *s) {
    string_fputs(s, stdout);
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
