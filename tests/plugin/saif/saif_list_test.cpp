// SPDX-License-Identifier: Apache-2.0
// The keyed list of SAIF records, its deliberate oddities, and what new records hold.
#include "plugin/saif/saif_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "plugin/saif/attributes.h"

#include <string>
#include <vector>

using testing::ElementsAre;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

std::vector<std::string> seen;  // by the delete and print functions of a test

int note_deleted(void *data) {
    seen.push_back("free " + std::to_string(*static_cast<int *>(data)));
    return 1;
}

int note_printed(const char *key, void *data) {
    seen.push_back(std::string(key) + "=" + std::to_string(*static_cast<int *>(data)));
    return 1;
}

int numbers[] = {0, 1, 2, 3, 4};

// Lists a, b, c, ... as given, with numbers[1], numbers[2], ...
saif_list *list_of(const std::vector<const char *> &keys, saif_compare_fn compare) {
    seen.clear();
    saif_list *list = saif_list_init(compare, note_printed, note_deleted);
    int *number = numbers;
    for (const char *key : keys) {
        const saif_list_entry entry = {string_alloc(key), ++number};
        EXPECT_EQ(saif_list_enteri(list, &entry, nullptr, 0), 1);
    }
    return list;
}

int found(const saif_list *list, const char *key, int want_previous) {
    const saif_list_entry probe = {string_alloc(key), nullptr};
    const saif_list_item *item = saif_list_findi(list, &probe, want_previous, nullptr);
    string_free(probe.key);
    return item != nullptr ? *static_cast<int *>(item->data) : 0;
}

TEST(SaifList, FindsByItsComparison) {
    struct Row {
        saif_compare_fn compare;
        const char *key;
        int want_previous;
        int position;  // from 1; 0: nothing found
    };
    const Row rows[] = {
        {cmp_func, "a", 0, 1},    {cmp_func, "c", 0, 3},    {cmp_func, "x", 0, 0},
        {cmp_func, "a", 1, 1},    {cmp_func, "c", 1, 2},    {cmp_func, "x", 1, 3},
        {default_cmp, "x", 0, 1}, {default_cmp, "c", 0, 1}, {nullptr, "x", 0, 1},
        {dummy_cmp, "a", 0, 0},   {dummy_cmp, "a", 1, 3},
    };
    for (const Row &row : rows) {
        saif_list *list = list_of({"a", "b", "c"}, row.compare);
        EXPECT_EQ(found(list, row.key, row.want_previous), row.position)
            << row.key << " at row " << &row - rows;
        saif_list_free(list);
    }
    saif_list *empty = saif_list_init(nullptr, nullptr, nullptr);
    EXPECT_EQ(found(empty, "a", 1), 0);
    EXPECT_EQ(found(nullptr, "a", 0), 0);
    saif_list_free(empty);
}

TEST(SaifList, TakesAKeyTwiceOnlyWhenAskedTo) {
    saif_list *list = list_of({"a", "b"}, cmp_func);
    const saif_list_entry again = {string_alloc("a"), &numbers[4]};
    EXPECT_EQ(saif_list_enter(list, &again), 0);
    EXPECT_EQ(list->count, 2U);
    saif_list_item *item = nullptr;
    EXPECT_EQ(saif_list_enteri(list, &again, &item, 0), 1);  // the key is the list's from here on
    EXPECT_EQ(item, list->tail);
    EXPECT_EQ(list->count, 3U);
    EXPECT_EQ(found(list, "a", 0), 1);
    EXPECT_EQ(saif_list_enter(nullptr, &again), 0);
    saif_list_free(list);
    EXPECT_THAT(seen, ElementsAre("free 1", "free 2", "free 4"));
}

TEST(SaifList, FreesAllOrWhatFollowsAnItem) {
    saif_list *list = list_of({"a", "b", "c"}, cmp_func);
    saif_list_env_free(list, list->head);
    EXPECT_THAT(seen, ElementsAre("free 2", "free 3"));
    EXPECT_EQ(list->count, 1U);
    EXPECT_EQ(list->tail, list->head);
    EXPECT_EQ(list->head->next, nullptr);
    for (int round = 0; round < 2; ++round) {  // the second on an empty list
        saif_list_env_free(list, nullptr);
        EXPECT_EQ(list->count, 0U);
        EXPECT_EQ(list->head, nullptr);
        EXPECT_EQ(list->tail, nullptr);
        EXPECT_EQ(saif_list_is_empty(list), 1);
    }
    saif_list_free(list);
}

// Ownership: the leak checker sees what is not freed, the address checker what is freed twice.
TEST(SaifRecords, FreeWhatTheyOwn) {
    saif_state_attribute *states = saif_create_state_attribute_struct();
    saif_state_simple_attribute *state = saif_create_state_simple_attribute_struct();
    EXPECT_EQ(state->kind, 2);
    state->toggle = saif_create_toggle_attribute_struct();
    EXPECT_EQ(state->toggle->marker, -1.0);
    state->path = saif_create_path_attribute_struct();
    const saif_list_entry path = {string_alloc("a"), saif_create_toggle_attribute_struct()};
    for (int i = 0; i < 2; ++i) {  // the comparison never matches: a key may come again
        const saif_list_entry copy = {string_dup(path.key), saif_create_toggle_attribute_struct()};
        EXPECT_EQ(saif_list_enter(state->path->paths, &copy), 1);
    }
    EXPECT_EQ(saif_list_enter(state->path->paths, &path), 1);
    const saif_list_entry entry = {string_alloc("s"), state};
    EXPECT_EQ(saif_list_enter(states->states, &entry), 1);
    saif_free_state_attribute_struct(states);

    saif_path_attribute *bare = saif_create_path_attribute_struct();
    saif_list_free(bare->paths);
    bare->paths = nullptr;
    saif_free_path_attribute_struct(bare);

    saif_lib_attribute *library = saif_create_lib_attribute_struct();
    saif_rtl_attribute *object = saif_create_rtl_attribute_struct();
    EXPECT_EQ(library->kind, 2);
    EXPECT_EQ(object->word, 0);
    for (int i = 0; i < 4; ++i) {
        library->text[i] = string_alloc("library");
        object->text[i] = string_alloc("object");
    }
    saif_free_lib_attribute_struct(library);
    saif_free_rtl_attribute_struct(object);
    saif_free_switching_attribute_struct(saif_create_switching_attribute_struct());
    saif_header *header = saif_create_header_struct();
    EXPECT_EQ(header->timescale_value, 1.0F);
    EXPECT_EQ(header->divider, '.');
    saif_free_header_struct(header);
}

}  // namespace
