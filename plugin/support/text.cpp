// SPDX-License-Identifier: Apache-2.0
// Routines on plain names.
#include "plugin/support/text.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "plugin/support/counted_string.h"

enum : size_t { INDEX_BYTES = 16 };  // "(-2147483648)" and its NUL fit

char *mfli_strdup(const char *text) {
    return text == nullptr ? nullptr : strdup(text);
}

void mfli_strcat(char **owned, const char *text) {
    if (*owned == nullptr || text == nullptr) {
        return;
    }
    const size_t length = strlen(*owned);
    const size_t added = strlen(text);
    auto *grown = static_cast<char *>(realloc(*owned, length + added + 1));
    if (grown == nullptr) {
        free(*owned);
    } else {
        memcpy(grown + length, text, added + 1);
    }
    *owned = grown;
}

int32_t mfli_substring_position(const char *text, const char *pattern) {
    const char *found = strstr(text, pattern);
    return found == nullptr ? -1 : static_cast<int32_t>(found - text);
}

int32_t mfli_last_substring_position(const char *text, const char *pattern) {
    const size_t length = strlen(pattern);
    auto position = static_cast<int32_t>(strlen(text)) - static_cast<int32_t>(length);
    while (position >= 0 && strncmp(text + position, pattern, length) != 0) {
        --position;
    }
    return position < 0 ? -1 : position;
}

// Changes each character of `from` to the one at the same place in `to`.
static void convert(char *text, const char *from, const char *to) {
    for (char *c = strpbrk(text, from); c != nullptr; c = strpbrk(c, from)) {
        *c = to[strchr(from, *c) - from];
    }
}

void mfli_convert_squareb_to_paren(char *text) {
    convert(text, "[]", "()");
}

void mfli_convert_paren_to_squareb(char *text) {
    convert(text, "()", "[]");
}

char *convert_index_to_string(int32_t index) {
    auto *text = static_cast<char *>(malloc(INDEX_BYTES));
    if (text != nullptr) {
        snprintf(text, INDEX_BYTES, "(%d)", index);
    }
    return text;
}

char *mfli_add_index_to_name(const char *name, int32_t index) {
    char suffix[INDEX_BYTES];
    snprintf(suffix, sizeof(suffix), "(%d)", index);
    char *indexed = mfli_strdup(name);
    mfli_strcat(&indexed, suffix);
    return indexed;
}

void mfli_split_name_and_index(const char *name, char **base, char **index) {
    *base = mfli_strdup(name);
    *index = nullptr;
    const int32_t position = mfli_substring_position(name, "(");
    if (position >= 0 && *base != nullptr) {
        (*base)[position] = '\0';
        *index = mfli_strdup(name + position);
    }
}

char *mfli_add_path_to_name(const char *name, const char *path, int separator) {
    char *joined = mfli_strdup(path == nullptr ? "" : path);
    if (separator != 0) {
        mfli_strcat(&joined, "/");
    }
    mfli_strcat(&joined, name);
    return joined;
}

// Position of the "/" that separates path and leaf, or 0 when none does.
static int32_t separator_position(const char *full) {
    auto position = static_cast<int32_t>(strlen(full)) - 1;
    if (position >= 0 && full[position] == '/') {
        --position;
    }
    while (position > 0 && full[position] != '/') {
        --position;
    }
    return position < 0 ? 0 : position;
}

static char *copy_part(const dstring *full, int32_t start, int32_t end) {
    dstring *part = string_substr(full, start, end);
    char *copy = mfli_strdup(string_to_char(part));
    string_free(part);
    return copy;
}

int mfli_split_path_and_name(const char *full, char **path, char **leaf) {
    const int32_t position = full == nullptr ? 0 : separator_position(full);
    if (position == 0) {
        return 0;
    }
    dstring *name = string_alloc(full);
    *path = copy_part(name, 0, position - 1);
    *leaf = copy_part(name, position + 1, static_cast<int32_t>(string_len(name)) - 1);
    string_free(name);
    return 1;
}

int mfli_first_in_second_region(const char *name, const char *region) {
    if (region == nullptr || *region == '\0') {
        return 0;
    }
    return strncmp(name, region, strlen(region)) == 0 ? 1 : 0;
}
