// SPDX-License-Identifier: Apache-2.0
// Comparisons and hashes of table keys.
#include "plugin/support/hash_functions.h"

#include <cstring>

// Spreads every bit of a word over the low bits, by which a bin is chosen.
static uint32_t spread(uint32_t k) {
    uint32_t x = k ^ 0x1de5U;
    x ^= x << 8;
    x ^= x >> 5;
    x ^= k;
    x ^= x >> 29;
    x ^= x << 23;
    x ^= x >> 19;
    x ^= x << 17;
    x ^= x >> 13;
    x ^= x << 11;
    x ^= x >> 7;
    x ^= x << 5;
    x ^= x >> 3;
    x ^= x << 1;
    return x;
}

static uint32_t add_byte(uint32_t hash, unsigned char byte) {
    hash ^= byte;
    hash ^= hash << 8;
    hash ^= hash >> 5;
    return hash;
}

static unsigned char lower_case(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(byte + ('a' - 'A')) : byte;
}

int st_strcmp(const void *a, const void *b) {
    return strcmp(static_cast<const char *>(a), static_cast<const char *>(b));
}

int st_strcmp_case(const void *a, const void *b) {
    const auto *text_a = static_cast<const char *>(a);
    const auto *text_b = static_cast<const char *>(b);
    while (*text_a != '\0' && lower_case(*text_a) == lower_case(*text_b)) {
        ++text_a;
        ++text_b;
    }
    return lower_case(*text_a) - lower_case(*text_b);
}

uint32_t st_strhash(const void *key) {
    uint32_t hash = 0;
    for (const auto *c = static_cast<const unsigned char *>(key); *c != 0; ++c) {
        hash = add_byte(hash, *c);
    }
    return spread(hash);
}

uint32_t st_strhash_case(const void *key) {
    uint32_t hash = 0;
    for (const auto *c = static_cast<const char *>(key); *c != '\0'; ++c) {
        hash = add_byte(hash, lower_case(*c));
    }
    return spread(hash);
}

int st_ptrcmp(const void *a, const void *b) {
    return a != b ? 1 : 0;
}

int st_numcmp(const void *a, const void *b) {
    return st_ptrcmp(a, b);
}

uint32_t st_ptrhash(const void *key) {
    const uint64_t word = reinterpret_cast<uintptr_t>(key);
    return spread(static_cast<uint32_t>(word) ^ static_cast<uint32_t>(word >> 32));
}

uint32_t st_numhash(const void *key) {
    return st_ptrhash(key);
}

int st_dastrcmp(const void *a, const void *b) {
    const auto *array_a = static_cast<const st_string_array *>(a);
    const auto *array_b = static_cast<const st_string_array *>(b);
    if (array_a->length != array_b->length) {
        return array_a->length < array_b->length ? -1 : 1;
    }
    int difference = 0;
    for (uint32_t i = 0; i < array_a->length && difference == 0; ++i) {
        difference = strcmp(array_a->strings[i], array_b->strings[i]);
    }
    return difference;
}

uint32_t st_dastrhash(const void *key) {
    const auto *array = static_cast<const st_string_array *>(key);
    uint32_t hash = array->length;
    for (uint32_t i = 0; i < array->length; ++i) {
        hash = spread(hash) ^ st_strhash(array->strings[i]);
    }
    return spread(hash);
}
