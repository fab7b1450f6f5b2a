// SPDX-License-Identifier: Apache-2.0
// Counted strings: random edits of shared and private values against std::string, with every
// value's block checked after each step; tables of parts, growth and sharing; lines and listings.
#include "plugin/support/counted_string.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace {

std::string text_of(const dstring *s) {
    return string_to_char(s);
}

std::string text_and_free(dstring *s) {
    std::string text = text_of(s);
    EXPECT_EQ(string_len(s), text.size());
    string_free(s);
    return text;
}

struct Owner {
    dstring *value;
    std::string expected;
};

// Blocks are well-formed and the owners of each shared value are as many as it counts.
void check(const std::vector<Owner> &owners) {
    for (const Owner &owner : owners) {
        ASSERT_EQ(text_of(owner.value), owner.expected);
        ASSERT_EQ(string_len(owner.value), owner.expected.size());
        if (owner.value == nullptr) {
            continue;
        }
        ASSERT_EQ(owner.value->max_len & 3U, 3U);
        ASSERT_LE(owner.value->len, owner.value->max_len);
        unsigned holders = 0;
        for (const Owner &other : owners) {
            holders += other.value == owner.value ? 1 : 0;
            // Two interned values of one text would not be found as one.
            ASSERT_FALSE(other.value != nullptr && other.value != owner.value &&
                         other.value->refcnt != 0 && owner.value->refcnt != 0 &&
                         other.expected == owner.expected);
        }
        ASSERT_EQ(owner.value->refcnt == 0 ? 1U : unsigned{owner.value->refcnt}, holders);
    }
}

void random_step(std::mt19937 &random, std::vector<Owner> &owners) {
    Owner &owner = owners[random() % owners.size()];
    Owner &other = owners[random() % owners.size()];
    const std::string piece(random() % 5, static_cast<char>('a' + random() % 2));
    switch (random() % 9) {
        case 0:
            string_concat(&owner.value, other.value);
            owner.expected += std::string(other.expected);
            break;
        case 1:
            string_concat_char(&owner.value, piece.c_str());
            owner.expected += piece;
            break;
        case 2:
            string_concat_ch(&owner.value, 'z');
            owner.expected += 'z';
            break;
        case 3:
            string_copy(&owner.value, other.value);
            owner.expected = std::string(other.expected);
            break;
        case 4:
            string_copy_char(&owner.value, piece.c_str());
            owner.expected = piece;
            break;
        case 5:
            string_free(owner.value);
            owner = {nullptr, ""};
            break;
        case 6:
            string_concat_char(&owner.value, string_to_char(owner.value));
            owner.expected += std::string(owner.expected);
            break;
        default:
            string_memorize(&owner.value);
    }
    if (owner.expected.size() > 200) {
        string_copy_char(&owner.value, "");
        owner.expected.clear();
    }
}

TEST(CountedString, HoldsWhatTheStandardStringHolds) {
    for (unsigned seed = 1; seed <= 30; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        std::vector<Owner> owners(6, Owner{nullptr, ""});
        for (int step = 0; step < 1000 && !testing::Test::HasFatalFailure(); ++step) {
            random_step(random, owners);
            check(owners);
        }
        for (const Owner &owner : owners) {
            string_free(owner.value);
        }
    }
}

TEST(CountedString, GrowsByDoubling) {
    const struct {
        const char *start;
        size_t appended;
        uint32_t max_len;
    } rows[] = {{nullptr, 0, 3}, {"", 3, 3},       {"", 4, 7},         {"abc", 1, 7},
                {"abcd", 4, 15}, {"abcd", 50, 55}, {"abcdefgh", 0, 11}};
    for (const auto &row : rows) {
        dstring *s = row.start == nullptr ? nullptr : string_alloc(row.start);
        string_concat_char(&s, std::string(row.appended, 'x').c_str());
        EXPECT_EQ(s->max_len, row.max_len) << row.appended;
        string_free(s);
    }
    dstring *shared = string_alloc("abcd");
    string_concat_char(&shared, std::string(100, 'x').c_str());
    string_memorize(&shared);
    string_concat_ch(&shared, 'y');
    EXPECT_EQ(shared->max_len, 107U) << "the last owner's block is cut to what is needed";
    string_free(shared);
}

TEST(CountedString, TakesParts) {
    const struct {
        int32_t start, count;
        const char *part;
    } by_length[] = {{0, 6, "abcdef"},  {2, 3, "cde"},      {2, 0, "cdef"}, {2, 5, "cdef"},
                     {-2, 1, "e"},      {-9, 2, "ab"},      {6, 1, ""},     {99, 1, ""},
                     {0, -1, "abcdef"}, {5, INT32_MAX, "f"}};
    dstring *s = string_alloc("abcdef");
    for (const auto &row : by_length) {
        EXPECT_EQ(text_and_free(string_substr_len(s, row.start, row.count)), row.part) << row.start;
    }
    EXPECT_EQ(text_and_free(string_substr(s, 0, 5)), "abcdef");
    EXPECT_EQ(text_and_free(string_substr(s, 1, 1)), "b");
    EXPECT_EQ(text_and_free(string_substr(s, 2, 1)), "cdef");
    EXPECT_EQ(text_and_free(string_substr(nullptr, 2, 3)), "");
    EXPECT_EQ(string_fetch(s, 0), 'a');
    EXPECT_EQ(string_fetch(s, -1), 'f');
    EXPECT_EQ(string_fetch(s, 6), '\0');
    EXPECT_EQ(string_fetch(s, -7), '\0');
    EXPECT_EQ(string_strchr(s, 'c'), 2);
    EXPECT_EQ(string_strchr(s, 'x'), -1);
    string_concat(&s, s);
    EXPECT_EQ(string_strrchr(s, 'c'), 8);
    char *copy = string_to_char_copy(s);
    EXPECT_STREQ(copy, "abcdefabcdef");
    free(copy);
    string_free(s);
    EXPECT_EQ(string_len(nullptr), 0U);
    EXPECT_STREQ(string_to_char(nullptr), "");
    EXPECT_EQ(string_dup(nullptr), nullptr);
}

TEST(CountedString, SplitsAtEverySeparator) {
    const struct {
        const char *text, *separators, *parts;
    } rows[] = {{"a/b.c", "/.", "<a><b><c>"},
                {"", "/", "<>"},
                {"/a//", "/", "<><a><><>"},
                {"ab", "", "<ab>"},
                {"a b", "/", "<a b>"}};
    for (const auto &row : rows) {
        dstring *s = string_alloc(row.text);
        list *parts = string_split(s, row.separators);
        std::string shown;
        for (list_walk walk(parts); walk; walk.step()) {
            shown += '<' + text_of(static_cast<dstring *>(walk.item())) + '>';
        }
        EXPECT_EQ(shown, row.parts);
        list_free(parts, [](void *part) { string_free(static_cast<dstring *>(part)); });
        string_free(s);
    }
}

TEST(CountedString, SharesOnlyWhatIsInterned) {
    dstring *a = string_alloc("clk");
    dstring *copy = string_dup(a);
    EXPECT_NE(copy, a);
    dstring *b = string_alloc("clk");
    string_memorize(&a);
    string_memorize(&b);
    EXPECT_EQ(a, b);
    EXPECT_EQ(a->refcnt, 2);
    string_memorize(&b);
    EXPECT_EQ(a->refcnt, 2) << "interned already";
    dstring *c = string_dup(a);
    EXPECT_EQ(c, a);
    string_toupper(&c);
    EXPECT_EQ(text_of(c), "CLK");
    EXPECT_EQ(text_of(a), "clk");
    string_tolower(&c);
    EXPECT_EQ(string_compare(a, c), 0);

    string_unmemorize(a);  // two owners go on sharing it, a third does not join
    string_memorize(&c);
    EXPECT_NE(c, a);
    string_free(b);
    string_unmemorize(a);
    EXPECT_EQ(a->refcnt, 0) << "its only owner has it private again";
    testing::internal::CaptureStdout();
    string_memo_info();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "shared strings: 1 values, 1 owners, 3 characters\n");
    for (dstring *s : {a, copy, c}) {
        string_free(s);
    }
    string_free(nullptr);
    string_unmemorize(nullptr);
}

TEST(CountedString, NeverReleasesAFullCount) {
    dstring *s = string_alloc("vdd");
    string_memorize(&s);
    for (int i = 0; i < 70000; ++i) {
        ASSERT_EQ(string_dup(s), s);
    }
    EXPECT_EQ(s->refcnt, 65535);
    for (int i = 0; i < 70001; ++i) {
        string_free(s);
    }
    EXPECT_EQ(s->refcnt, 65535);
    dstring *changed = s;
    string_concat_ch(&changed, '!');
    EXPECT_EQ(text_of(s), "vdd");
    EXPECT_EQ(text_and_free(changed), "vdd!");
    // Out of the table by hand, so that this test leaves nothing behind.
    s->refcnt = 1;
    string_free(s);
}

TEST(CountedString, ComparesFormatsAndHashes) {
    dstring *s = string_sprintf("%s.%d%%", "top", -12);
    EXPECT_EQ(text_of(s), "top.-12%");
    string_sprintf_concat(&s, " [%s|%5.2f]", string_to_char(s), 1.5);
    EXPECT_EQ(text_of(s), "top.-12% [top.-12%| 1.50]");
    EXPECT_EQ(string_compare_char(s, "top.-12% [top.-12%| 1.50]"), 0);
    EXPECT_GT(string_compare_char(s, nullptr), 0);
    EXPECT_EQ(string_compare_char(nullptr, nullptr), 0);
    string_free(s);
    const std::string wide(5000, 'w');
    s = string_sprintf("%s", wide.c_str());
    EXPECT_EQ(text_of(s), wide);
    string_free(s);

    dstring *two = string_alloc("u2");
    dstring *ten = string_alloc("u10");
    EXPECT_GT(string_compare(two, ten), 0);
    EXPECT_LT(string_compare_int(two, ten), 0);
    EXPECT_LT(string_compare(nullptr, ten), 0);
    EXPECT_EQ(string_compare_container(&two, &two), 0);
    EXPECT_EQ(string_hash_container(&two), string_hash(two));
    EXPECT_NE(string_hash(two), string_hash(ten));
    EXPECT_EQ(string_hash(nullptr), 0x1870d1a0U);
    string_free(two);
    string_free(ten);
}

TEST(CountedString, ReadsAndWritesLines) {
    const std::string wide(1000, 'w');
    FILE *file = tmpfile();
    ASSERT_NE(file, nullptr);
    dstring *s = string_alloc((wide + "\n\nlast").c_str());
    EXPECT_GE(string_fputs(s, file), 0);
    string_free(s);
    rewind(file);
    EXPECT_EQ(text_and_free(string_fgets(file)), wide + "\n");
    EXPECT_EQ(text_and_free(string_fgets(file)), "\n");
    EXPECT_EQ(text_and_free(string_fgets(file)), "last");
    EXPECT_EQ(string_fgets(file), nullptr);
    rewind(file);
    FILE *const console = stdin;
    stdin = file;
    EXPECT_EQ(text_and_free(string_gets()), wide);
    EXPECT_EQ(text_and_free(string_gets()), "");
    EXPECT_EQ(text_and_free(string_gets()), "last");
    EXPECT_EQ(string_gets(), nullptr);
    stdin = console;
    fclose(file);

    testing::internal::CaptureStdout();
    s = string_alloc(std::string(70, 'q').c_str());
    string_puts(nullptr);
    string_print(s);
    string_debug(nullptr);
    string_debug(s);
    string_free(s);
    const std::string text = testing::internal::GetCapturedStdout();
    EXPECT_EQ(text.substr(0, 86), "\n" + std::string(70, 'q') + "string = null\n" + "s");
    EXPECT_NE(
        text.find("len = 70, refcnt = 0, max_len = 71\n    \"" + std::string(64, 'q') + "\" ...\n"),
        std::string::npos);
}

}  // namespace
