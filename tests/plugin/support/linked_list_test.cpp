// SPDX-License-Identifier: Apache-2.0
// The linked list: deletions under walks, with the links checked; tables of sorting and duplicates;
// the listing.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "plugin/support/linked_list.h"

namespace {

using Items = std::vector<intptr_t>;

list *make(const Items &items) {
    list *made = list_alloc();
    for (const intptr_t item : items) {
        list_insert_after_int(made, made->tail, item);
    }
    return made;
}

// The items, after checking that every link, end, owner and count agrees with every other.
Items read(const list *container) {
    Items items;
    const list_handle *previous = nullptr;
    for (const list_handle *h = container->head; h != nullptr; h = h->next) {
        EXPECT_EQ(h->prev, previous);
        EXPECT_EQ(h->list, container);
        items.push_back(list_data_int(h));
        previous = h;
        if (items.size() > static_cast<size_t>(container->length)) {
            break;
        }
    }
    EXPECT_EQ(container->tail, previous);
    EXPECT_EQ(items.size(), static_cast<size_t>(container->length));
    return items;
}

Items read_and_free(list *container) {
    Items items = read(container);
    EXPECT_EQ(container->dead, nullptr);
    EXPECT_EQ(container->iterator, 0);
    list_free_container(container);
    return items;
}

TEST(LinkedList, SurvivesDeletionsUnderWalks) {
    list *items = make({1, 2, 3, 4, 5, 6});
    {
        list_walk outer(items);
        outer.step();
        {
            // The one on which a walk stands, its neighbours, and another walk's.
            list_walk inner(items);
            EXPECT_EQ(list_handle_delete(inner.handle()->next), reinterpret_cast<void *>(2));
            EXPECT_EQ(list_handle_delete(inner.handle()), reinterpret_cast<void *>(1));
            list_handle_delete(items->head);
            list_insert_after_int(items, nullptr, 7);
            inner.step();
            EXPECT_EQ(inner.item(), reinterpret_cast<void *>(4));
            EXPECT_EQ(read(items), (Items{7, 4, 5, 6}));
        }
        EXPECT_NE(items->dead, nullptr) << "parked until the last walk ends";
        outer.step();
        EXPECT_EQ(outer.item(), reinterpret_cast<void *>(4));
        while (items->tail != nullptr) {
            list_handle_delete(items->tail);
        }
        outer.step();
        EXPECT_FALSE(outer);
    }
    list_handle_delete(list_insert_after_int(items, nullptr, 8));
    EXPECT_EQ(read_and_free(items), Items{});
}

TEST(LinkedList, StepsBackOverTheDead) {
    list *items = make({1, 2, 3, 4});
    {
        const list_walk walk(items);
        list_handle *fourth = items->tail;
        list_handle *third = fourth->prev;
        list_delete(third);
        list_delete(fourth->prev);
        EXPECT_EQ(list_prev_handle_safe(third), items->head);
        EXPECT_EQ(list_prev_handle_safe(items->head), nullptr);
        EXPECT_EQ(list_next_handle_safe(items->head), fourth);
    }
    EXPECT_EQ(read_and_free(items), (Items{1, 4}));
    int visits = 0;
    for (list_walk walk(nullptr); walk; walk.step()) {
        ++visits;
    }
    EXPECT_EQ(visits, 0);
}

TEST(LinkedList, SortsStablyAndDropsDuplicates) {
    const struct {
        Items items, sorted, uniq, uniq_unsorted;
    } rows[] = {
        {{}, {}, {}, {}},
        {{7}, {7}, {7}, {7}},
        {{3, 1, 2, 1}, {1, 1, 2, 3}, {3, 1, 2, 1}, {3, 1, 2}},
        {{5, 5, 5}, {5, 5, 5}, {5}, {5}},
        {{2, -1, 2, 2, -1, 0, 2}, {-1, -1, 0, 2, 2, 2, 2}, {2, -1, 2, -1, 0, 2}, {2, -1, 0}},
        {{9, 8, 7, 6, 5}, {5, 6, 7, 8, 9}, {9, 8, 7, 6, 5}, {9, 8, 7, 6, 5}}};
    for (const auto &row : rows) {
        list *sorted = make(row.items);
        list_sort(sorted, list_numcmp);
        EXPECT_EQ(read_and_free(sorted), row.sorted);
        list *uniq = make(row.items);
        list_uniq(uniq, list_numcmp, nullptr);
        EXPECT_EQ(read_and_free(uniq), row.uniq);
        list *unsorted = make(row.items);
        list_uniq_unsorted(unsorted, list_numcmp, nullptr);
        EXPECT_EQ(read_and_free(unsorted), row.uniq_unsorted);
    }
    std::mt19937 random(5);
    Items items;
    for (int i = 0; i < 3000; ++i) {
        items.push_back(static_cast<intptr_t>(random() % 500) * 10000 + i);
    }
    const auto by_rank = [](const void *a, const void *b) {
        return static_cast<int>(reinterpret_cast<intptr_t>(a) / 10000 -
                                reinterpret_cast<intptr_t>(b) / 10000);
    };
    list *sorted = make(items);
    list_sort(sorted, by_rank);
    std::sort(items.begin(), items.end());
    EXPECT_EQ(read_and_free(sorted), items) << "equal items keep their order";
}

std::vector<std::string> released;

TEST(LinkedList, HandsRemovedItemsToTheirRelease) {
    const char *texts[] = {"b", "a", "b", "c", "a"};
    list *items = list_alloc();
    for (const char *text : texts) {
        list_append(items, const_cast<char *>(text));
    }
    released.clear();
    const auto release = [](void *item) { released.emplace_back(static_cast<char *>(item)); };
    list_uniq_unsorted(items, list_strcmp, release);
    std::sort(released.begin(), released.end());
    EXPECT_EQ(released, (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(list_get_nth_item(items, 0), texts[0]);
    EXPECT_EQ(list_get_nth_item(items, -3), texts[0]);
    EXPECT_EQ(list_get_nth_item(items, 1), texts[1]);
    EXPECT_EQ(list_get_nth_item(items, 2), texts[3]);
    EXPECT_DEATH(list_get_nth_item(items, 3), "position");
    released.clear();
    list_free(items, release);
    EXPECT_EQ(released, (std::vector<std::string>{"b", "a", "c"}));
    list_free(nullptr, release);
}

TEST(LinkedList, CopiesJoinsSplitsAndMoves) {
    const auto twice = [](void *item) {
        return reinterpret_cast<void *>(reinterpret_cast<intptr_t>(item) * 2);
    };
    list *a = make({1, 2, 3});
    list *b = make({4, 5});
    EXPECT_EQ(read_and_free(list_dup(a, twice)), (Items{2, 4, 6}));
    EXPECT_EQ(read_and_free(list_dup_reverse(a, nullptr)), (Items{3, 2, 1}));
    EXPECT_EQ(read_and_free(list_concat(a, b)), (Items{1, 2, 3, 4, 5}));
    list_append_list(b, b);
    EXPECT_EQ(read(b), (Items{4, 5, 4, 5}));
    list_join(a, b);
    EXPECT_EQ(read(a), (Items{1, 2, 3, 4, 5, 4, 5}));

    EXPECT_EQ(read_and_free(list_split(a->head)), Items{});
    EXPECT_EQ(read_and_free(list_split(a->tail->prev)), (Items{1, 2, 3, 4, 5}));
    EXPECT_EQ(read(a), (Items{4, 5}));

    list *target = make({8});
    list_handle *moved = a->head;
    list_move_handle(moved, target);
    EXPECT_EQ(target->tail, moved);
    EXPECT_EQ(read(a), (Items{5}));
    list_move_handle(a->head, target);
    EXPECT_EQ(read_and_free(a), Items{});
    list_replace_int(moved, 44);
    list_move_handle(moved, target);
    EXPECT_EQ(read_and_free(target), (Items{8, 5, 44}));
}

TEST(LinkedList, ComparesItems) {
    const auto number = [](intptr_t item) { return reinterpret_cast<void *>(item); };
    EXPECT_EQ(list_numcmp(number(-5), number(3)), -1);
    EXPECT_EQ(list_ptrcmp(number(-5), number(3)), 1);
    EXPECT_EQ(list_numcmp(number(INTPTR_MIN), number(INTPTR_MAX)), -1);
    EXPECT_EQ(list_ptrcmp(number(3), number(3)), 0);
    const char *const ascending[] = {
        "",       "b",       "bus",        "bus(1)",      "bus(02)",
        "bus(2)", "bus(10)", "bus(10)(3)", "bus(10)(20)", "bus(99999999999999999999)",
        "c"};
    for (size_t i = 0; i < std::size(ascending); ++i) {
        for (size_t j = 0; j < std::size(ascending); ++j) {
            const int sign = list_strcmp_int(ascending[i], ascending[j]);
            EXPECT_EQ(sign < 0, i < j) << ascending[i] << ' ' << ascending[j];
            EXPECT_EQ(sign > 0, i > j) << ascending[i] << ' ' << ascending[j];
        }
    }
}

// By the beginnings of its lines: 26 items are shown, and what is parked.
TEST(LinkedList, ShowsItsStructure) {
    list *items = make(Items(30, 1));
    list_gen_init(items);
    list_delete(items->head);
    testing::internal::CaptureStdout();
    list_debug(items);
    std::istringstream text(testing::internal::GetCapturedStdout());
    std::vector<std::string> starts;
    for (std::string line; std::getline(text, line);) {
        starts.push_back(line.substr(0, line.find_first_of("0(:t")));
    }
    std::vector<std::string> expected = {"lis", "lis", "lis", "lis"};
    expected.insert(expected.end(), 26, "    ");
    for (const char *start : {"    ... lis", "lis", "    "}) {
        expected.emplace_back(start);
    }
    EXPECT_EQ(starts, expected);
    list_gen_fini(items);
    list_free_container(items);
}

}  // namespace
