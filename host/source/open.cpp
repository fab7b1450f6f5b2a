// SPDX-License-Identifier: Apache-2.0
// From a path to the source that can read what lies there, by its content.
#include <string_view>
#include <utility>

#include "host/source/ghw/source.h"
#include "host/source/input.h"
#include "host/source/quoted.h"
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

constexpr std::string_view fst = "an FST file; fst2vcd FILE | wfsim - reads it";

// What users hand over by mistake, so that the message can name it.
constexpr Signature signatures[] = {
    {"\xfd"
     "7zXZ",
     "a file compressed with xz"},
    {"\x28\xb5\x2f\xfd", "a file compressed with zstd"},
    {std::string_view("\0\0\0\0\0\0\0\x01\x49", 9), fst},
    {"PK\x03\x04", "a ZIP archive"},
};

std::string describe(std::string_view beginning) {
    if (beginning.empty()) {
        return "an empty file";
    }
    // A whole FST file compressed once more: its two lengths, then gzip.
    if (beginning.front() == '\xfe' && beginning.substr(1).find("\x1f\x8b") == 16) {
        return std::string(fst);
    }
    for (const Signature &signature : signatures) {
        if (beginning.starts_with(signature.bytes)) {
            return std::string(signature.format);
        }
    }
    return "something else, beginning with " + quoted(beginning.substr(0, 16));
}

}  // namespace

std::unique_ptr<Source> open_source(const std::string &path, std::string *error,
                                    StopFlag stop_reading) {
    std::unique_ptr<Input> input = open_file_input(path, error, stop_reading);
    return input == nullptr ? nullptr : open_source(std::move(input), error);
}

std::unique_ptr<Source> open_source(std::unique_ptr<Input> input, std::string *error) {
    if (input->peek(looked_at).starts_with("\x1f\x8b")) {
        input = make_gzip_input(std::move(input));
    } else if (input->peek(looked_at).starts_with("BZh")) {
        input = make_bzip2_input(std::move(input));
    }
    const std::string_view beginning = input->peek(looked_at);
    if (vcd::recognise(beginning)) {
        return vcd::make_source(std::move(input));
    }
    if (ghw::recognise(beginning)) {
        return ghw::make_source(std::move(input));
    }
    const std::string got =
        beginning.empty() && input->failed() ? input->failure() : describe(beginning);
    *error = input->name() +
             ": expected a VCD or GHW file (plain, or compressed with gzip or bzip2), got " + got;
    return nullptr;
}

}  // namespace wf
