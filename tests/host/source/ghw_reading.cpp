// SPDX-License-Identifier: Apache-2.0
// The writing and reading of GHW files for tests.
#include "tests/host/source/ghw_reading.h"

#include <algorithm>

#include "host/design/design.h"
#include "host/source/ghw/declare.h"
#include "host/source/ghw/events.h"
#include "tests/host/source/vcd_reading.h"

namespace wf::test {
namespace {

const char *const mode_names[] = {"", " in", " out", " inout"};

std::string bounds(const Type &type) {
    return std::to_string(type.left) + ":" + std::to_string(type.right);
}

std::string describe_type(const Type &type) {
    switch (type.kind) {
        case TypeKind::array:
            return "(" + bounds(type) + ") of " + describe_type(*type.element);
        case TypeKind::record: {
            std::string text = "{";
            for (const Field &field : type.fields) {
                text +=
                    (text.size() > 1 ? ", " : "") + field.name + " " + describe_type(*field.type);
            }
            return text + "}";
        }
        case TypeKind::enumeration:
            return type.name + "/" + std::to_string(type.length);
        case TypeKind::integer:
        case TypeKind::physical:
            return type.name + " " + bounds(type);
        default:
            return type.name;
    }
}

std::string signal_text(Design &design, const Signal *signal) {
    return " " + describe_type(*signal->type) +
           mode_names[static_cast<int>(design.mode_of(signal))];
}

}  // namespace

GhwBytes &GhwBytes::text(std::string_view bytes) {
    bytes_ += bytes;
    return *this;
}

GhwBytes &GhwBytes::bytes(std::initializer_list<int> values) {
    for (const int value : values) {
        byte(value);
    }
    return *this;
}

GhwBytes &GhwBytes::word(uint32_t value) {
    for (int i = 0; i < 4; ++i) {
        byte(static_cast<int>(value >> (order_ == std::endian::little ? 8 * i : 24 - 8 * i)));
    }
    return *this;
}

GhwBytes &GhwBytes::long_word(uint64_t value) {
    const auto low = static_cast<uint32_t>(value);
    const auto high = static_cast<uint32_t>(value >> 32);
    return order_ == std::endian::little ? word(low).word(high) : word(high).word(low);
}

GhwBytes &GhwBytes::number(uint64_t value) {
    for (; value >= 0x80; value >>= 7) {
        byte(static_cast<int>(value & 0x7f) | 0x80);
    }
    return byte(static_cast<int>(value));
}

GhwBytes &GhwBytes::signed_number(int64_t value) {
    for (; value < -64 || value > 63; value >>= 7) {
        byte(static_cast<int>(value & 0x7f) | 0x80);
    }
    return byte(static_cast<int>(value & 0x7f));
}

GhwBytes &GhwBytes::preamble(int minor) {
    return text("GHDLwave\n").bytes({16, 0, minor, order_ == std::endian::little ? 1 : 2, 4, 1, 0});
}

GhwBytes &GhwBytes::strings(const std::vector<std::string> &strings) {
    section("STR").word(static_cast<uint32_t>(strings.size())).word(0);
    for (std::size_t i = 0; i < strings.size(); ++i) {
        const std::string &next = i + 1 < strings.size() ? strings[i + 1] : "";
        const std::size_t shorter = std::min(strings[i].size(), next.size());
        std::size_t shared = 0;
        while (shared < shorter && strings[i][shared] == next[shared]) {
            ++shared;
        }
        const std::string &before = i > 0 ? strings[i - 1] : "";
        const auto known = static_cast<std::size_t>(
            std::mismatch(strings[i].begin(), strings[i].end(), before.begin(), before.end())
                .first -
            strings[i].begin());
        text(strings[i].substr(known));
        for (; shared >= 32; shared >>= 5) {
            byte(static_cast<int>(shared & 0x1f) | 0x80);
        }
        byte(static_cast<int>(shared));
    }
    return text({"EOS\0", 4});
}

GhwBytes &GhwBytes::advance(int64_t time) {
    byte(0).signed_number(time);
    return time == -1 ? text({"ECY\0", 4}) : *this;
}

GhwBytes &GhwBytes::tail() {
    text({"DIR\0\0\1\4\1", 8}).word(2).text({"STR\0", 4}).word(16).text({"EOH\0", 4});
    return word(UINT32_MAX).text({"EOD\0TAI\0\0\1\4\1", 12}).word(7);
}

Reading read_ghw(const std::string &bytes, std::size_t block, std::size_t piece) {
    Reading reading;
    Design design;
    ghw::IdTable ids;
    ghw::Tokens tokens(make_memory_input("t.ghw", bytes, piece), block);
    ghw::Declarations declarations(design, ids, tokens);
    reading.loaded = read_header(tokens, design.types, declarations);
    if (reading.loaded) {
        reading.design = describe(design, signal_text);
        reading.resolution = design.resolution_exponent;
        ListSink sink(reading, design.slot_count());
        ghw::Events(tokens, ids).run(sink);
    }
    reading.error = tokens.error();
    return reading;
}

std::string ghw_error(std::size_t offset, const std::string &message) {
    const std::size_t colon = message.find(": ");
    return "t.ghw: byte " + std::to_string(offset) + ", section " + message.substr(0, colon) +
           ": expected " + message.substr(colon + 2);
}

}  // namespace wf::test
