// SPDX-License-Identifier: Apache-2.0
// Comparisons and hashes of table keys. They see keys only, never a table.
#ifndef WATTFORGE_PLUGIN_SUPPORT_HASH_FUNCTIONS_H
#define WATTFORGE_PLUGIN_SUPPORT_HASH_FUNCTIONS_H

#include <cstdint>

// A comparison returns 0 when two keys are equal. A hash returns the same word for equal keys.
typedef int (*st_compare_fn)(const void *a, const void *b);
typedef uint32_t (*st_hash_fn)(const void *key);

// A key made of several texts, for st_dastrcmp and st_dastrhash.
struct st_string_array {
    uint32_t length;
    const char *const *strings;
};

// Texts, by bytes and without regard to case.
int st_strcmp(const void *a, const void *b);
int st_strcmp_case(const void *a, const void *b);
uint32_t st_strhash(const void *key);
uint32_t st_strhash_case(const void *key);

// Words (a pointer or an integer cast to one): 1 when they differ, else 0.
int st_ptrcmp(const void *a, const void *b);
int st_numcmp(const void *a, const void *b);
uint32_t st_ptrhash(const void *key);
uint32_t st_numhash(const void *key);

// st_string_array keys: by length first, then text by text.
int st_dastrcmp(const void *a, const void *b);
uint32_t st_dastrhash(const void *key);

#endif
