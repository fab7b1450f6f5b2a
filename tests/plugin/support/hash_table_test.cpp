// SPDX-License-Identifier: Apache-2.0
// The hash table against a reference map that remembers the order, with its structure checked after
// every step, and tables of hashes, shapes and forms.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "plugin/support/hash_table_forms.h"
#include "plugin/support/hash_table_tools.h"

namespace {

using Pairs = std::vector<std::pair<intptr_t, intptr_t>>;

const void *key_of(intptr_t number) {
    return reinterpret_cast<const void *>(number);
}
void *word(intptr_t number) {
    return reinterpret_cast<void *>(number);
}

Pairs walk(st_table *table) {
    Pairs pairs;
    st_generator *generator = st_init_gen(table);
    intptr_t key = 0;
    intptr_t value = 0;
    while (st_gen_kint_vint(generator, &key, &value) != 0) {
        pairs.emplace_back(key, value);
    }
    EXPECT_EQ(st_gen_kint_vint(generator, &key, &value), 0) << "a walk that ended began again";
    st_free_gen(generator);
    return pairs;
}

// Every entry hangs in the bin of its key, the counts agree, sequence numbers are unique and
// bounded.
void check_structure(const st_table *table) {
    const uint32_t bins = table->bins.length;
    ASSERT_EQ(bins & (bins - 1), 0U);
    std::vector<int32_t> sequences;
    for (uint32_t index = 0; index < bins; ++index) {
        for (void *entry = *st_bin(&table->bins, index); entry != nullptr;
             entry = *st_link_of(table, entry)) {
            ASSERT_EQ(table->hash(st_key_of(table, entry)) & (bins - 1), index);
            sequences.push_back(static_cast<st_entry *>(entry)->sequence);
            ASSERT_LE(sequences.size(), static_cast<size_t>(table->count));
        }
    }
    ASSERT_EQ(sequences.size(), static_cast<size_t>(table->count));
    std::sort(sequences.begin(), sequences.end());
    ASSERT_EQ(std::adjacent_find(sequences.begin(), sequences.end()), sequences.end());
    ASSERT_TRUE(sequences.empty() || sequences.back() <= table->last_sequence);
}

// What the table should hold: values by key, and the keys in order of first insertion.
struct Reference {
    std::map<intptr_t, intptr_t> values;
    std::vector<intptr_t> order;

    int insert(intptr_t key, intptr_t value) {
        const bool added = values.insert_or_assign(key, value).second;
        if (added) {
            order.push_back(key);
        }
        return added ? 0 : 1;
    }
    int erase(intptr_t key) {
        order.erase(std::remove(order.begin(), order.end(), key), order.end());
        return static_cast<int>(values.erase(key));
    }
    Pairs pairs() const {
        Pairs all;
        for (const intptr_t key : order) {
            all.emplace_back(key, values.at(key));
        }
        return all;
    }
};

void random_step(std::mt19937 &random, st_table *table, Reference &reference, unsigned deletions) {
    const auto key = static_cast<intptr_t>(random() % 300) - 150;
    const auto value = static_cast<intptr_t>(random());
    const auto choice = static_cast<unsigned>(random() % 100);
    if (choice < deletions) {
        intptr_t stored = 0;
        intptr_t last = 0;
        const auto known = reference.values.find(key);
        const intptr_t expected = known == reference.values.end() ? 0 : known->second;
        ASSERT_EQ(st_delete_kint_vint(table, key, &stored, &last), reference.erase(key));
        ASSERT_EQ(last, expected);
    } else if (choice < 90) {
        ASSERT_EQ(st_insert_kint_vint(table, key, value), reference.insert(key, value));
    } else if (choice < 96) {
        ASSERT_EQ(walk(table), reference.pairs());
    } else {
        st_resize(table, 1U << (random() % 9));
    }
    intptr_t found = 0;
    ASSERT_EQ(st_lookup_kint_vint(table, key, &found),
              static_cast<int>(reference.values.count(key)));
    ASSERT_EQ(found, reference.values.count(key) != 0 ? reference.values.at(key) : 0);
    ASSERT_EQ(st_is_member_kint(table, key), static_cast<int>(reference.values.count(key)));
}

TEST(HashTable, HoldsWhatAReferenceHoldsInTheSameOrder) {
    for (unsigned seed = 1; seed <= 24; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        // Keys compared by identity, and by a comparison that is called.
        const st_compare_fn called = [](const void *a, const void *b) { return st_ptrcmp(a, b); };
        st_table *table =
            st_alloc_params(seed % 2 != 0 ? st_numcmp : called, st_numhash,
                            static_cast<int32_t>(seed % 9), static_cast<int32_t>(1 + seed % 5));
        Reference reference;
        for (int step = 0; step < 1500 && !testing::Test::HasFatalFailure(); ++step) {
            // Phases of growth, of balance and of decay, so that both ways to renumber are met.
            const std::array<unsigned, 3> deletions = {10, 45, 85};
            random_step(random, table, reference, deletions[static_cast<size_t>(step / 250) % 3]);
            check_structure(table);
        }
        ASSERT_EQ(walk(table), reference.pairs());
        st_free(table);
    }
}

TEST(HashTable, HashesKnownKeys) {
    const std::vector<std::pair<uint64_t, uint32_t>> words = {
        {0, 0x1870d1a0},          {1, 0x7badb73b},          {0x1de5, 0xcd31aa23},
        {0xffffffff, 0xea4ad45d}, {0x12345678, 0xca48d510}, {0x7f1234560020, 0xc291c366}};
    for (const auto &[key, hash] : words) {
        EXPECT_EQ(st_ptrhash(word(static_cast<intptr_t>(key))), hash) << std::hex << key;
        EXPECT_EQ(st_numhash(word(static_cast<intptr_t>(key))), hash) << std::hex << key;
    }
    const std::vector<std::pair<const char *, uint32_t>> texts = {
        {"", 0x1870d1a0}, {"a", 0x749b9ed0}, {"/top/u1/clk", 0x57787093}, {"\xe9\xff", 0xf4b1816a}};
    for (const auto &[text, hash] : texts) {
        EXPECT_EQ(st_strhash(text), hash) << text;
    }
    EXPECT_EQ(st_strhash_case("Top/U1[7]"), st_strhash("top/u1[7]"));
    EXPECT_NE(st_strhash_case("a["), st_strhash_case("a{"));
}

TEST(HashTable, ComparesKeys) {
    EXPECT_EQ(st_ptrcmp(word(3), word(-3)), 1);
    EXPECT_EQ(st_numcmp(word(3), word(3)), 0);
    EXPECT_LT(st_strcmp("B", "a"), 0);
    EXPECT_GT(st_strcmp_case("B", "a"), 0);
    EXPECT_EQ(st_strcmp_case("CLK_1", "clk_1"), 0);
    EXPECT_LT(st_strcmp_case("ab", "ABc"), 0);
    const char *const texts[] = {"a", "b", "a", "c"};
    const st_string_array ab = {2, texts};
    const st_string_array ac = {2, texts + 2};
    const st_string_array aba = {3, texts};
    const std::string copy = "a";
    const char *const copies[] = {copy.c_str(), "b"};
    const st_string_array same = {2, copies};
    EXPECT_LT(st_dastrcmp(&ab, &ac), 0);
    EXPECT_GT(st_dastrcmp(&aba, &ac), 0);
    EXPECT_EQ(st_dastrcmp(&ab, &same), 0);
    EXPECT_EQ(st_dastrhash(&ab), st_dastrhash(&same));
    EXPECT_NE(st_dastrhash(&ab), st_dastrhash(&ac));
}

TEST(HashTable, GrowsByItsDensity) {
    struct {
        int32_t bins, density, insertions;
        uint32_t expected_bins;
        int32_t expected_max;
    } const rows[] = {{0, 4, 8, 2, 8},   {2, 4, 9, 4, 16},           {3, 4, 12, 4, 12},
                      {3, 4, 13, 8, 24}, {5, 3, 16, 16, 30},         {3, 1, 4, 8, 6},
                      {-1, 1, 2, 2, 2},  {4096, 1, 4097, 8192, 8192}};
    for (const auto &row : rows) {
        st_table *table = st_alloc_params(st_ptrcmp, st_ptrhash, row.bins, row.density);
        for (int32_t i = 0; i < row.insertions; ++i) {
            st_insert_kptr_vptr(table, key_of(i), nullptr);
        }
        EXPECT_EQ(table->bins.length, row.expected_bins) << row.bins << " bins";
        EXPECT_EQ(table->max_count, row.expected_max) << row.bins << " bins";
        check_structure(table);
        st_free(table);
    }
    st_free(nullptr);
    EXPECT_DEATH(st_alloc_params(st_ptrcmp, st_ptrhash, 2, 0), "density");
    EXPECT_DEATH(st_alloc_internal(
                     nullptr, st_ptrhash, +[](const void *e) { return e; }, 0, 8, 2, 4),
                 "key function");
}

TEST(HashTable, ALargeTableStaysSmallAndOrdered) {
    enum : int { COUNT = 200000 };
    st_table *table = st_alloc_ordered(st_ptrcmp, st_ptrhash);
    const size_t empty_bytes = st_mem_usage(table);
    for (intptr_t i = 0; i < COUNT; ++i) {
        st_insert_kptr_vint(table, key_of(-i * 32), i);
    }
    EXPECT_LT(empty_bytes, 256U);
    EXPECT_LT(st_mem_usage(table), size_t{COUNT} * 40);
    const Pairs pairs = walk(table);
    for (intptr_t i = 0; i < COUNT; ++i) {
        ASSERT_EQ(pairs[static_cast<size_t>(i)], std::make_pair(-i * 32, i));
    }
    // What was deleted is used again.
    const size_t full_bytes = st_mem_usage(table);
    for (intptr_t i = 0; i < COUNT; ++i) {
        ASSERT_EQ(st_delete_kptr_vint(table, key_of(-i * 32), nullptr, nullptr), 1);
        ASSERT_EQ(st_insert_kptr_vint(table, key_of(i + 1), i), 0);
    }
    EXPECT_EQ(st_mem_usage(table), full_bytes);
    EXPECT_EQ(walk(table).front(), std::make_pair(intptr_t{1}, intptr_t{0}));
    st_free(table);
}

TEST(HashTable, NumbersAnewBeforeTheNumbersRunOut) {
    st_table *table = st_alloc_abo(st_ptrcmp, st_ptrhash);
    for (const intptr_t key : {5, 6, 7}) {
        st_insert_kint_vint(table, key, key);
    }
    st_entry_of(table, key_of(7))->sequence = INT_MAX;
    table->last_sequence = INT_MAX;
    st_insert_kint_vint(table, 1, 1);
    EXPECT_EQ(walk(table), (Pairs{{5, 5}, {6, 6}, {7, 7}, {1, 1}}));
    EXPECT_EQ(table->last_sequence, 3);
    st_free(table);
}

TEST(HashTable, TurnsIntoCopiesListsAndNothing) {
    st_table *table = st_alloc_params(st_strcmp, st_strhash, 16, 2);
    const std::vector<std::string> names = {"c", "a", "b", "d"};
    for (const std::string &name : names) {
        st_insert_kptr_vptr(table, strdup(name.c_str()), strdup((name + name).c_str()));
    }
    void *old_key = nullptr;
    void *old_value = nullptr;
    ASSERT_EQ(st_delete_kptr_vptr(table, "a", &old_key, &old_value), 1);
    free(old_key);
    free(old_value);
    auto *const copy_text = +[](void *text) -> void * { return strdup(static_cast<char *>(text)); };
    st_table *copy = st_dup(table, copy_text, copy_text);
    EXPECT_EQ(copy->bins.length, 16U);
    EXPECT_EQ(copy->max_count, 32);
    st_free_with_contents(table, free, free);

    list *keys = st_keys_to_list(copy);
    list *values = st_values_to_list(copy);
    std::string shown;
    for (list_walk walk(keys); walk; walk.step()) {
        shown += std::string(static_cast<char *>(walk.item())) + ' ';
    }
    for (list_walk walk(values); walk; walk.step()) {
        shown += std::string(static_cast<char *>(walk.item())) + ' ';
    }
    EXPECT_EQ(shown, "c b d cc bb dd ");
    list_free_container(keys);
    list_free_container(values);
    testing::internal::CaptureStdout();
    st_hash_stats(copy);
    EXPECT_NE(testing::internal::GetCapturedStdout().find("entries = 3, bins = 16,"),
              std::string::npos);
    st_free_with_contents(copy, free, free);
    st_free_with_contents(nullptr, free, free);
}

// An entry that the caller makes, with the key in the middle.
struct Thing {
    int number;
    const char *name;
    void *link;
};

Thing *new_thing(int number, const char *name) {
    auto *thing = static_cast<Thing *>(malloc(sizeof(Thing)));
    *thing = {number, name, nullptr};
    return thing;
}

const void *name_of(const void *thing) {
    return static_cast<const Thing *>(thing)->name;
}

TEST(HashTable, ChainsTheCallersObjects) {
    const auto compare_things = [](const void *a, const void *b) {
        return strcmp(static_cast<const Thing *>(a)->name, static_cast<const Thing *>(b)->name);
    };
    const auto hash_thing = [](const void *thing) { return st_strhash(name_of(thing)); };
    const Thing probe = {0, "n7", nullptr};
    const struct {
        st_table *table;
        const void *key;
    } tables[] = {
        {st_alloc_internal(st_strcmp, st_strhash, nullptr, offsetof(Thing, name),
                           offsetof(Thing, link), 2, 1),
         "n7"},
        {st_alloc_internal(st_strcmp, st_strhash, name_of, 0, offsetof(Thing, link), 2, 1), "n7"},
        {st_alloc_internal(compare_things, hash_thing, nullptr, -1, offsetof(Thing, link), 2, 1),
         &probe}};
    const std::vector<std::string> names = {"n0", "n1", "n2", "n3", "n4", "n5", "n6", "n7", "n8"};
    for (const auto &[table, key] : tables) {
        for (size_t i = 0; i < names.size(); ++i) {
            st_add_internal(table, new_thing(static_cast<int>(i), names[i].c_str()));
        }
        st_add_internal(table, new_thing(70, "n7"));  // pushed in front of its equal
        EXPECT_EQ(table->bins.length, 16U);
        EXPECT_EQ(static_cast<Thing *>(st_find_internal(table, key))->number, 70);
        auto *removed = static_cast<Thing *>(st_delete_internal(table, key));
        EXPECT_EQ(removed->number, 70);
        free(removed);
        EXPECT_EQ(static_cast<Thing *>(st_find_internal(table, key))->number, 7);

        int visited = 0;
        uint32_t bin = 0;
        st_generator *generator = st_init_gen(table);
        void *thing = nullptr;
        while (st_gen_kptr_vptr(generator, nullptr, &thing) != 0) {
            const uint32_t index = st_strhash(name_of(thing)) & 15U;
            EXPECT_GE(index, bin) << "bins are walked from the first to the last";
            bin = index;
            ++visited;
        }
        EXPECT_EQ(visited, 9);
        st_free_gen(generator);
        st_free(table);
    }
}

}  // namespace
