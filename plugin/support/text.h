// SPDX-License-Identifier: Apache-2.0
// Routines on plain names of the simulator: searching, joining, splitting, indices, brackets. Pure
// text; nothing here asks the simulator. Every new text is the caller's, released with free.
#ifndef WATTFORGE_PLUGIN_SUPPORT_TEXT_H
#define WATTFORGE_PLUGIN_SUPPORT_TEXT_H

#include <cstdint>

// A copy; null for null, or when there is no memory.
char *mfli_strdup(const char *text);

// Appends to an owned text, which may move. Nothing happens when either text is null. Without
// memory the owned text is released and becomes null. `text` must not lie in the owned text.
void mfli_strcat(char **owned, const char *text);

// Position of the first or last occurrence of `pattern`, or -1. The empty pattern is found at the
// start or at the end.
int32_t mfli_substring_position(const char *text, const char *pattern);
int32_t mfli_last_substring_position(const char *text, const char *pattern);

// In place: all of "[]" to "()", or back.
void mfli_convert_squareb_to_paren(char *text);
void mfli_convert_paren_to_squareb(char *text);

// "(index)" in a new buffer of 16 bytes; a new text of name and "(index)".
char *convert_index_to_string(int32_t index);
char *mfli_add_index_to_name(const char *name, int32_t index);

// Cuts a name before its first "(": a new base name, and a new index suffix or null.
void mfli_split_name_and_index(const char *name, char **base, char **index);

// A new text: path, "/" when `separator` is non-zero, name. A null path counts as empty.
char *mfli_add_path_to_name(const char *name, const char *path, int separator);

// Splits at the last "/", one at the very end not counted, into two new texts. Returns 0 and sets
// nothing when that leaves no path.
int mfli_split_path_and_name(const char *full, char **path, char **leaf);

// 1 when the name begins with a region name that is neither null nor empty, else 0. The match need
// not end at a "/".
int mfli_first_in_second_region(const char *name, const char *region);

#endif
