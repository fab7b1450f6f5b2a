// SPDX-License-Identifier: Apache-2.0
// From a path to the source that can read what lies there, by its content.
#include <string_view>
#include <utility>

#include "host/source/input.h"
#include "host/source/source.h"
#include "host/source/vcd/source.h"

namespace wf {
namespace {

// Enough to see past the blanks that may stand before a VCD file's first section.
constexpr std::size_t looked_at = 4096;

struct Signature {
    std::string_view bytes;
    std::string_view format;
};

// What users hand over by mistake, so that the message can name it.
constexpr Signature signatures[] = {
    {"GHDLwave", "a GHW file"},
    {"BZh", "a file compressed with bzip2"},
    {"\xfd"
     "7zXZ",
     "a file compressed with xz"},
    {"\x28\xb5\x2f\xfd", "a file compressed with zstd"},
    {std::string_view("\0\0\0\0\0\0\0\x01\x49", 9), "an FST file (fst2vcd converts it)"},
    {"PK\x03\x04", "a ZIP archive"},
};

std::string describe(std::string_view beginning) {
    if (beginning.empty()) {
        return "an empty file";
    }
    for (const Signature &signature : signatures) {
        if (beginning.starts_with(signature.bytes)) {
            return std::string(signature.format);
        }
    }
    return "something else, beginning with " + vcd::quoted(beginning.substr(0, 16));
}

}  // namespace

std::unique_ptr<Source> open_source(const std::string &path, std::string *error) {
    std::unique_ptr<Input> input = open_file_input(path, error);
    if (input == nullptr) {
        return nullptr;
    }
    if (input->peek(looked_at).starts_with("\x1f\x8b")) {
        input = make_gzip_input(std::move(input));
    }
    const std::string_view beginning = input->peek(looked_at);
    if (vcd::recognise(beginning)) {
        return vcd::make_source(std::move(input));
    }
    const std::string got =
        beginning.empty() && input->failed() ? input->failure() : describe(beginning);
    *error = input->name() + ": expected a VCD file (plain or compressed with gzip), got " + got;
    return nullptr;
}

}  // namespace wf
