// SPDX-License-Identifier: Apache-2.0
// The linked list: random edits with walks in progress against a model of what each walk must meet
// next, with the links checked after every step; tables of sorting and duplicates; the listing.
#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <map>
#include <random>
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

// A list beside what it should hold: the live nodes in order, and for each parked node the one that
// stood behind it when it was deleted (0: none). Items are the numbers of the nodes.
class Model {
  public:
    explicit Model(unsigned seed) : random_(seed) {}
    ~Model() {
        walks_.clear();
        list_free_container(list_);
    }
    Model(const Model &) = delete;
    Model &operator=(const Model &) = delete;

    void step() {
        const auto choice = random_() % 16;
        if (choice < 6) {
            insert();
        } else if (choice < 10 && !live_.empty()) {
            remove();
        } else if (choice < 12) {
            walks_.emplace_back(list_, live_.empty() ? 0 : live_.front());
        } else if (choice < 15 && !walks_.empty()) {
            move_on(*any_walk());
        } else if (!walks_.empty()) {
            walks_.erase(any_walk());
            if (walks_.empty()) {
                behind_.clear();
            }
        }
    }

    void check() {
        EXPECT_EQ(read(list_), Items(live_.begin(), live_.end()));
        EXPECT_EQ(list_->iterator, static_cast<int32_t>(walks_.size()));
        size_t parked = 0;
        for (const list_handle *dead = list_->dead; dead != nullptr && parked <= behind_.size();
             dead = static_cast<const list_handle *>(dead->data)) {
            EXPECT_EQ(dead->list, nullptr);
            ++parked;
        }
        EXPECT_EQ(parked, behind_.size()) << "deleted in a walk: parked until the last walk ends";
    }

  private:
    struct Walk {
        Walk(list *container, intptr_t first) : walk(container), node(first) {}
        list_walk walk;
        intptr_t node;  // on which it should stand; 0 at the end
    };

    bool is_live(intptr_t node) {
        return std::find(live_.begin(), live_.end(), node) != live_.end();
    }

    std::list<Walk>::iterator any_walk() {
        return std::next(walks_.begin(), static_cast<long>(random_() % walks_.size()));
    }

    intptr_t any() {
        auto node = live_.begin();
        std::advance(node, random_() % live_.size());
        return *node;
    }

    void insert() {
        const intptr_t node = ++last_node_;
        const bool at_head = live_.empty() || random_() % 4 == 0;
        const intptr_t place = at_head ? 0 : any();
        handles_[node] = list_insert_after_int(list_, at_head ? nullptr : handles_.at(place), node);
        live_.insert(
            at_head ? live_.begin() : std::next(std::find(live_.begin(), live_.end(), place)),
            node);
    }

    // Often the node on which a walk stands.
    void remove() {
        intptr_t node = any();
        if (!walks_.empty() && random_() % 2 == 0 && is_live(walks_.back().node)) {
            node = walks_.back().node;
        }
        const auto place = std::find(live_.begin(), live_.end(), node);
        if (!walks_.empty()) {
            behind_[node] = std::next(place) == live_.end() ? 0 : *std::next(place);
        }
        live_.erase(place);
        EXPECT_EQ(list_handle_delete(handles_.at(node)), reinterpret_cast<void *>(node));
    }

    intptr_t behind(intptr_t node) {
        while (node != 0 && !is_live(node)) {
            node = behind_.at(node);
            if (node == 0 || is_live(node)) {
                return node;
            }
        }
        const auto place = std::find(live_.begin(), live_.end(), node);
        return std::next(place) == live_.end() ? 0 : *std::next(place);
    }

    void move_on(Walk &walk) {
        if (walk.node == 0) {
            EXPECT_FALSE(walk.walk);
            return;
        }
        walk.node = behind(walk.node);
        walk.walk.step();
        ASSERT_EQ(static_cast<bool>(walk.walk), walk.node != 0);
        if (walk.node != 0) {
            EXPECT_EQ(reinterpret_cast<intptr_t>(walk.walk.item()), walk.node);
        }
    }

    std::mt19937 random_;
    list *list_ = list_alloc();
    std::list<intptr_t> live_;
    std::map<intptr_t, intptr_t> behind_;
    std::map<intptr_t, list_handle *> handles_;
    std::list<Walk> walks_;
    intptr_t last_node_ = 0;
};

TEST(LinkedList, SurvivesEditsUnderWalks) {
    for (unsigned seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Model model(seed);
        for (int step = 0; step < 400 && !testing::Test::HasFailure(); ++step) {
            model.step();
            model.check();
        }
    }
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

TEST(LinkedList, MovesWholeLists) {
    list *source = make({1, 2, 3});
    list *target = make({});
    list_move_all(source, target);
    EXPECT_EQ(read(target), (Items{1, 2, 3}));
    list_move_all(target, source);
    EXPECT_EQ(read(target), Items{});
    list_append(target, nullptr);
    list_move_all(target, source);
    EXPECT_EQ(read_and_free(target), Items{});
    EXPECT_EQ(read_and_free(source), (Items{0, 1, 2, 3}));
}

TEST(LinkedList, UnlinksAndRelinksAnyPlace) {
    for (int32_t place = 0; place < 3; ++place) {
        list *items = make({10, 11, 12});
        list_handle *handle = items->head;
        for (int32_t i = 0; i < place; ++i) {
            handle = handle->next;
        }
        list_unlink(handle);
        EXPECT_EQ(read(items).size(), 2U);
        list_relink(handle);
        EXPECT_EQ(read(items), (Items{10, 11, 12}));
        list_gen_init(items);
        list_unlink(handle);
        EXPECT_EQ(list_unlink_free(handle), reinterpret_cast<void *>(intptr_t{10} + place));
        EXPECT_EQ(items->dead, handle);
        list_gen_fini(items);
        EXPECT_EQ(read_and_free(items).size(), 2U);
    }
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

std::string shown(const list *container) {
    testing::internal::CaptureStdout();
    list_debug(container);
    return testing::internal::GetCapturedStdout();
}

size_t lines_with(const std::string &text, const std::string &part) {
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

TEST(LinkedList, ShowsItsStructure) {
    const struct {
        size_t items, deleted, lines, truncations;
    } rows[] = {{25, 0, 25, 0}, {26, 0, 26, 1}, {30, 0, 26, 1}, {30, 3, 29, 1}, {60, 30, 52, 2}};
    for (const auto &row : rows) {
        list *items = make(Items(row.items, 1));
        list_gen_init(items);
        for (size_t i = 0; i < row.deleted; ++i) {
            list_delete(items->head);
        }
        const std::string text = shown(items);
        EXPECT_EQ(lines_with(text, ": prev="), row.lines) << text;
        EXPECT_EQ(lines_with(text, "    ... list truncated\n"), row.truncations) << text;
        list_gen_fini(items);
        list_free_container(items);
    }
    list *one = list_alloc();
    list_handle *handle = list_append(one, one);
    char expected[512];
    snprintf(expected, sizeof(expected),
             "list->head = %p\nlist->tail = %p\nlist->length = 1\nlist->iterator = 0\n"
             "    %p: prev=(nil) next=(nil) list=%p data=%p\nlist->dead = (nil)\n",
             static_cast<void *>(handle), static_cast<void *>(handle), static_cast<void *>(handle),
             static_cast<void *>(one), static_cast<void *>(one));
    EXPECT_EQ(shown(one), expected);
    list_free_container(one);
}

}  // namespace
