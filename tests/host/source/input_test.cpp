// SPDX-License-Identifier: Apache-2.0
// Inputs: the bytes come out whole from files, pipes and compressed streams, and damage is named.
#include "host/source/input.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <thread>

#include "tests/host/source/vcd_reading.h"
#include "tests/support/scratch.h"

namespace wf::test {
namespace {

using testing::HasSubstr;

std::string read_all(Input &input, std::size_t piece) {
    std::string result;
    std::string buffer(piece, '\0');
    while (const std::size_t count = input.read(buffer.data(), piece)) {
        result.append(buffer, 0, count);
    }
    return result;
}

std::string numbers(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += std::to_string(i * 7919) + "\n";
    }
    return text;
}

TEST(Input, FilesKnowTheirLength) {
    const std::string text = numbers(100000);
    const std::string path = temporary_file("input.txt", text);
    std::string error;
    const auto input = open_file_input(path, &error);
    ASSERT_NE(input, nullptr) << error;
    EXPECT_EQ(input->bytes_total(), text.size());
    EXPECT_EQ(read_all(*input, 65536), text);
    EXPECT_EQ(input->bytes_read(), text.size());

    EXPECT_EQ(open_file_input(path + ".none", &error), nullptr);
    EXPECT_EQ(error, path + ".none: expected a readable file, got: No such file or directory");
    const auto folder = open_file_input(std::filesystem::temp_directory_path().string(), &error);
    EXPECT_EQ(read_all(*folder, 10), "");
    EXPECT_EQ(folder->failure(), "Is a directory");
}

struct Format {
    const char *name;
    std::string (*compress)(const std::string &);
    std::unique_ptr<Input> (*open)(std::unique_ptr<Input>);
};

const Format formats[] = {{"gzip", gzipped, make_gzip_input}, {"bzip2", bzipped, make_bzip2_input}};

TEST(Input, AStreamThatIsCutAnywhereGivesItsBeginningAndFails) {
    const std::string text = numbers(300);
    for (const auto &[name, compress, open] : formats) {
        const std::string compressed = compress(text);
        for (std::size_t length = 1; length < compressed.size(); ++length) {
            const auto input =
                open(make_memory_input("m", compressed.substr(0, length), 1 + length % 50));
            const std::string read = read_all(*input, 100);
            ASSERT_TRUE(text.starts_with(read)) << name << length;
            ASSERT_EQ(input->failure(), std::string("a truncated ") + name + " stream") << length;
        }
    }
}

TEST(Input, AStreamThatIsDamagedIsNamed) {
    const std::string text = numbers(300);
    for (const auto &[name, compress, open] : formats) {
        std::string changed = compress(text);
        changed[changed.size() - 6] ^= 1;  // in the checksum
        const std::string stream = std::string(name) + " stream";
        const bool is_gzip = stream == "gzip stream";
        const std::pair<std::string, std::string> rows[] = {
            {changed,
             "a damaged " + stream + " (" +
                 (is_gzip ? "incorrect data check" : "its checksum or its codes are wrong") + ")"},
            {"\x1f\x8b rather not",
             "a damaged " + stream + " (" +
                 (is_gzip ? "unknown compression method" : "not a bzip2 header") + ")"},
            {compress(text) + "more", "other bytes after the end of the " + stream},
            {compress(text) + compress(text), ""}};
        for (const auto &[compressed, failure] : rows) {
            const auto input = open(make_memory_input("m", compressed));
            const std::string read = read_all(*input, 64);
            EXPECT_EQ(input->failure(), failure);
            EXPECT_TRUE((text + text).starts_with(read));
        }
    }
}

}  // namespace
}  // namespace wf::test
