// SPDX-License-Identifier: Apache-2.0
// Escaping of names.
#include "plugin/saif/legal_name.h"

#include <cstdlib>
#include <cstring>

int is_legal_saif_hchar(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

int is_legal_saif_char(char c) {
    return is_legal_saif_hchar(c) || (c >= '0' && c <= '9') || c == '/';
}

static int must_escape(const char *text, const char *at) {
    return at == text ? !is_legal_saif_hchar(*at) : !is_legal_saif_char(*at);
}

static const char *first_to_escape(const char *text) {
    const char *at = text;
    while (*at != '\0' && !must_escape(text, at)) {
        at++;
    }
    return at;
}

void chg_to_saif_name(dstring **name) {
    const char *text = string_to_char(*name);
    const char *at = first_to_escape(text);
    if (*at == '\0') {
        return;  // most names are legal: the replacement would be the same text
    }
    char small[256];
    const size_t most = 2 * size_t{string_len(*name)} + 1;
    char *legal = most <= sizeof small ? small : static_cast<char *>(malloc(most));
    if (legal == nullptr) {
        return;
    }
    const auto kept = static_cast<size_t>(at - text);
    memcpy(legal, text, kept);
    char *end = legal + kept;
    for (; *at != '\0'; at++) {
        if (must_escape(text, at)) {
            *end++ = '\\';
        }
        *end++ = *at;
    }
    *end = '\0';
    string_copy_char(name, legal);
    if (legal != small) {
        free(legal);
    }
}
