// SPDX-License-Identifier: Apache-2.0
// Joins the simulator's region and signal names, and walks an index suffix down to an element.
#include "plugin/select/names.h"

#include "plugin/support/messages.h"
#include "plugin/support/text.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

int64_t convert_index_to_position(mtiTypeIdT array_type, int64_t index) {
    switch (mti_TickDir(array_type)) {
        case 1:
            return index - mti_TickLeft(array_type);
        case -1:
            return mti_TickLength(array_type) - (index - mti_TickRight(array_type)) - 1;
        default:
            return -1;
    }
}

char *mfli_get_region_full_name(mtiRegionIdT region) {
    char *simulators = region == nullptr ? nullptr : mti_GetRegionFullName(region);
    char *name = mfli_strdup(simulators == nullptr ? "" : simulators);
    if (simulators != nullptr) {
        mti_VsimFree(simulators);
    }
    return name;
}

mtiTypeKindT mfli_get_signal_kind(mtiSignalIdT signal) {
    const mtiTypeIdT type = mti_GetSignalType(signal);
    return type == nullptr ? MTI_TYPE_ACCESS : mti_GetTypeKind(type);
}

// The region's full name with "/" behind it.
static char *region_path(mtiRegionIdT region) {
    char *path = mfli_get_region_full_name(region);
    mfli_strcat(&path, "/");
    return path;
}

char *mfli_get_signal_full_name_in(mtiSignalIdT signal, mtiRegionIdT region) {
    char *name = region_path(region);
    mfli_strcat(&name, mti_GetSignalName(signal));
    return name;
}

char *mfli_get_signal_full_name(mtiSignalIdT signal) {
    return mfli_get_signal_full_name_in(signal, mti_GetSignalRegion(signal));
}

// The indirect name, owned by the caller; null when the simulator gives none.
static char *indirect_name(mtiSignalIdT signal) {
    char *simulators = mti_GetSignalNameIndirect(signal, nullptr, 0);
    if (simulators == nullptr) {
        return nullptr;
    }
    char *name = mfli_strdup(simulators);
    mti_VsimFree(simulators);
    return name;
}

char *mfli_get_signal_full_name_indirect(mtiSignalIdT signal, mtiRegionIdT region) {
    char *name = region_path(region);
    char *indirect = mti_GetSignalNameIndirect(signal, nullptr, 0);
    mfli_strcat(&name, indirect != nullptr ? indirect : mti_GetSignalName(signal));
    if (indirect != nullptr) {
        mti_VsimFree(indirect);
    }
    return name;
}

// The first character behind the component that begins at `c`. A '/' in parentheses or in an
// escaped identifier, from a backslash to the next one or to a blank, does not end it.
static const char *end_of_component(const char *c) {
    if (*c == '\\') {
        const size_t escaped = 1 + strcspn(c + 1, "\\ ");
        c += c[escaped] == '\0' ? 0 : escaped + 1;
    }
    for (int depth = 0; *c != '\0' && (*c != '/' || depth > 0); ++c) {
        depth += *c == '(' ? 1 : *c == ')' ? -1 : 0;
    }
    return c;
}

const char *mfli_leaf_of(const char *name) {
    const char *leaf = name;
    for (const char *end = end_of_component(name); *end == '/'; end = end_of_component(leaf)) {
        leaf = end + 1;
    }
    return leaf;
}

mtiRegionIdT mfli_region_of_name(const char *name, mtiSignalIdT signal) {
    const auto length = static_cast<size_t>(mfli_leaf_of(name) - name);
    mtiRegionIdT region = nullptr;
    char *path = length > 1 ? mfli_strdup(name) : nullptr;
    if (path != nullptr) {
        path[length - 1] = '\0';
        region = mfli_find_region(path);
    }
    free(path);
    return region != nullptr ? region : mti_GetSignalRegion(signal);
}

// Brackets as written, then all round, all square, and the leaf's unlike those of its path.
enum { SPELLINGS = 5 };

static void spell(char *name, int spelling) {
    char *leaf = name + (mfli_leaf_of(name) - name);
    const auto convert_path = [&](void (*convert)(char *)) {
        const char first = *leaf;
        *leaf = '\0';
        convert(name);
        *leaf = first;
    };
    switch (spelling) {
        case 1:
            mfli_convert_squareb_to_paren(name);
            break;
        case 2:
            mfli_convert_paren_to_squareb(name);
            break;
        case 3:
            convert_path(mfli_convert_paren_to_squareb);
            mfli_convert_squareb_to_paren(leaf);
            break;
        case 4:
            convert_path(mfli_convert_squareb_to_paren);
            mfli_convert_paren_to_squareb(leaf);
            break;
        default:
            break;
    }
}

// What `find` gives for the first spelling of the name that it knows, which goes to `spelled` (new)
// if that is not null.
template <typename Handle>
static Handle find_spelling(const char *name, Handle (*find)(char *), char **spelled) {
    const int spellings = strpbrk(name, "[]()") == nullptr ? 1 : SPELLINGS;
    for (int i = 0; i < spellings; ++i) {
        char *text = mfli_strdup(name);
        if (text == nullptr) {
            return nullptr;
        }
        spell(text, i);
        const Handle found = i == 0 || strcmp(text, name) != 0 ? find(text) : nullptr;
        if (found != nullptr && spelled != nullptr) {
            *spelled = text;
            return found;
        }
        free(text);
        if (found != nullptr) {
            return found;
        }
    }
    return nullptr;
}

mtiRegionIdT mfli_find_region(const char *name) {
    return find_spelling(name, mti_FindRegion, nullptr);
}

// What stands behind the signal's own name in a name for which the simulator answered with it; null
// for nothing. Where the simulator has passed over a suffix, or over a part of it, a shorter name
// has the same answer.
static const char *suffix_behind(mtiSignalIdT signal, char *name) {
    char *leaf = name + (mfli_leaf_of(name) - name);
    char *cut = *leaf == '\0' ? nullptr : strpbrk(leaf + 1, "(.");
    for (; cut != nullptr; cut = strpbrk(cut + 1, "(.")) {
        const char first = *cut;
        *cut = '\0';
        const bool is_its_name = mti_FindSignal(name) == signal;
        *cut = first;
        if (is_its_name) {
            return cut;
        }
    }
    return nullptr;
}

char *mfli_get_signal_full_indexed_name(mtiSignalIdT signal, const char *user_name) {
    const mtiRegionIdT region = mfli_region_of_name(user_name, signal);
    char *indirect = indirect_name(signal);
    const char *plain = mti_GetSignalName(signal);
    const bool is_part = indirect != nullptr && (plain == nullptr || strcmp(indirect, plain) != 0);
    char *name = region_path(region);
    mfli_strcat(&name, is_part ? indirect : plain);
    char *spelled = nullptr;
    if (!is_part && find_spelling(user_name, mti_FindSignal, &spelled) != nullptr) {
        // Without indirect names an element cannot be told from its array.
        mfli_strcat(&name, indirect != nullptr ? suffix_behind(signal, spelled)
                                               : strchr(mfli_leaf_of(spelled), '('));
    }
    free(spelled);
    free(indirect);
    return name;
}

mtiSignalIdT mfli_find_signal(const char *name) {
    char *spelled = nullptr;
    mtiSignalIdT signal = find_spelling(name, mti_FindSignal, &spelled);
    if (signal != nullptr) {
        signal = find_array_element_recur(signal, suffix_behind(signal, spelled));
    }
    free(spelled);
    return signal;
}

// Whether the part's indirect name ends in the field's, which is the first `length` characters of
// ".field" and more.
static bool is_field(mtiSignalIdT part, const char *field, size_t length) {
    char *name = indirect_name(part);
    const size_t whole = name == nullptr ? 0 : strlen(name);
    const bool is_it = whole > length && strncmp(name + whole - length, field, length) == 0;
    free(name);
    return is_it;
}

static mtiSignalIdT select_field(mtiSignalIdT record, const char *suffix) {
    const size_t length = 1 + strcspn(suffix + 1, ".(");
    mtiSignalIdT *fields = mti_GetSignalSubelements(record, nullptr);
    if (fields == nullptr) {
        return nullptr;
    }
    mtiSignalIdT found = nullptr;
    const int32_t count = mti_TickLength(mti_GetSignalType(record));
    for (int32_t i = 0; i < count && found == nullptr; ++i) {
        found = is_field(fields[i], suffix, length) ? fields[i] : nullptr;
    }
    mti_VsimFree(fields);
    return suffix[length] == '\0' ? found : find_array_element_recur(found, suffix + length);
}

static mtiSignalIdT subelement_at(mtiSignalIdT signal, int64_t position) {
    mtiSignalIdT *elements = mti_GetSignalSubelements(signal, nullptr);
    if (elements == nullptr) {
        return nullptr;
    }
    const mtiSignalIdT element = elements[position];
    mti_VsimFree(elements);
    return element;
}

// What the first index of the suffix, and through recursion the rest, selects; null for nothing.
static mtiSignalIdT select_by_suffix(mtiSignalIdT signal, const char *suffix) {
    const char *close = suffix[0] == '(' ? strchr(suffix, ')') : nullptr;
    if (close == nullptr) {
        return nullptr;
    }
    // Numbers beyond 32 bits stay beyond every range.
    const int64_t index = std::clamp<int64_t>(strtoll(suffix + 1, nullptr, 10),
                                              INT32_MIN - INT64_C(1), INT32_MAX + INT64_C(1));
    const mtiTypeIdT type = mti_GetSignalType(signal);
    const int64_t position = convert_index_to_position(type, index);
    if (position < 0 || position >= mti_TickLength(type)) {
        return nullptr;
    }
    const mtiSignalIdT element = subelement_at(signal, position);
    return close[1] == '\0' ? element : find_array_element_recur(element, close + 1);
}

mtiSignalIdT find_array_element_recur(mtiSignalIdT signal, const char *suffix) {
    if (signal == nullptr || suffix == nullptr) {
        return signal;
    }
    const mtiTypeKindT kind = mfli_get_signal_kind(signal);
    if (kind != MTI_TYPE_ARRAY && kind != MTI_TYPE_RECORD) {
        return signal;
    }
    const bool is_of_field = kind == MTI_TYPE_RECORD && suffix[0] == '.';
    const mtiSignalIdT element =
        is_of_field ? select_field(signal, suffix) : select_by_suffix(signal, suffix);
    if (element == nullptr) {
        char *name = mfli_get_signal_full_name(signal);
        mfli_message("Warning (KLVA-PWR): could not find valid array element for signal %s%s", name,
                     suffix);
        free(name);
    }
    return element;
}
