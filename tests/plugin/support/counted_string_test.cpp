// SPDX-License-Identifier: Apache-2.0
// Counted strings: appending, parts, sharing, texts.
#include "plugin/support/counted_string.h"

#include <gtest/gtest.h>

#include <string>

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

TEST(CountedString, AppendsWhateverItHoldsItself) {
    dstring *s = nullptr;
    string_concat_char(&s, nullptr);
    EXPECT_EQ(s, nullptr);
    string_concat_ch(&s, 'a');
    string_concat_char(&s, "bc");
    for (int i = 0; i < 6; ++i) {
        string_concat(&s, s);
        string_concat_char(&s, string_to_char(s) + string_len(s) - 1);
        EXPECT_EQ(s->max_len & 3U, 3U);
        EXPECT_LE(s->len, s->max_len);
    }
    EXPECT_EQ(string_len(s), 255U);
    EXPECT_EQ(text_of(s).substr(0, 16), "abcabccabcabccca");
    string_copy(&s, nullptr);
    EXPECT_EQ(s, nullptr);
    string_copy_char(&s, "x");
    EXPECT_EQ(text_and_free(s), "x");
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
    string_free(s);
    EXPECT_EQ(string_len(nullptr), 0U);
    EXPECT_STREQ(string_to_char(nullptr), "");
    EXPECT_EQ(string_dup(nullptr), nullptr);
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
    string_concat_ch(&c, '2');
    EXPECT_EQ(text_of(c), "clk2");
    EXPECT_EQ(text_of(a), "clk");
    string_copy_char(&c, "clk");

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
    EXPECT_LT(string_compare(nullptr, ten), 0);
    EXPECT_EQ(string_compare_container(&two, &two), 0);
    EXPECT_EQ(string_hash_container(&two), string_hash(two));
    EXPECT_NE(string_hash(two), string_hash(ten));
    EXPECT_EQ(string_hash(nullptr), 0x1870d1a0U);
    string_free(two);
    string_free(ten);
}

}  // namespace
