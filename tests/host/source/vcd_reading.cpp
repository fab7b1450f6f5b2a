// SPDX-License-Identifier: Apache-2.0
// The reading of VCD texts for tests.
#include "tests/host/source/vcd_reading.h"

#include <bzlib.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include <fstream>
#include <stdexcept>

#include "host/source/vcd/declare.h"
#include "host/source/vcd/events.h"
#include "tests/support/scratch.h"

namespace wf::test {
namespace {

const char *const kind_names[] = {"module",   "program",  "interface", "instance", "block",
                                  "generate", "record",   "block",     "process",  "package",
                                  "task",     "function", "statement"};

void describe_region(Design &design, Region *region, SignalText text,
                     std::vector<std::string> &lines) {
    lines.push_back(design.full_name(region) + " " + kind_names[static_cast<int>(region->kind)]);
    for (const Signal *signal : region->signals) {
        lines.push_back(std::string("  ") + design.name_of(signal) + text(design, signal) + " @" +
                        std::to_string(signal->slot));
    }
    for (Region *child : region->children) {
        describe_region(design, child, text, lines);
    }
}

}  // namespace

std::string vcd_signal_text(Design &design, const Signal *signal) {
    std::string line;
    const Type *type = signal->type;
    for (; type->kind == TypeKind::array; type = type->element) {
        line += "(" + std::to_string(type->left) + ":" + std::to_string(type->right) + ")";
    }
    line += type->kind == TypeKind::real ? " real" : "";
    const char *const modes[] = {"", " in", " out", " inout"};
    return line + modes[static_cast<int>(design.mode_of(signal))];
}

std::vector<std::string> describe(Design &design, SignalText text) {
    std::vector<std::string> lines;
    for (Region *root : design.roots()) {
        describe_region(design, root, text, lines);
    }
    return lines;
}

Reading read_vcd(const std::string &text, std::size_t block, std::size_t piece) {
    Reading reading;
    Design design;
    vcd::IdTable ids;
    vcd::Tokens tokens(make_memory_input("t.vcd", text, piece), block);
    const auto warn = [&](const std::string &warning) { reading.warnings.push_back(warning); };
    Remarks remarks;
    reading.loaded = declare(tokens, design, ids, remarks, &reading.error);
    if (!reading.loaded) {
        return reading;
    }
    remarks.tell("t.vcd", warn);
    reading.design = describe(design);
    reading.resolution = design.resolution_exponent;
    vcd::Events events(tokens, ids, warn);
    ListSink sink(reading, design.slot_count());
    events.run(sink);
    reading.error = events.error();
    return reading;
}

std::string data_path(std::string_view name) {
    return std::string(TEST_DATA_DIR "/") += name;
}

std::string data_file(std::string_view name) {
    std::ifstream file(data_path(name), std::ios::binary);
    if (!file) {
        throw std::runtime_error("no file " + data_path(name));
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string gzipped(const std::string &text) {
    z_stream stream = {};
    deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY);
    std::string result(deflateBound(&stream, text.size()) + 64, '\0');
    std::string source = text;
    stream.next_in = reinterpret_cast<Bytef *>(source.data());
    stream.avail_in = static_cast<uInt>(source.size());
    stream.next_out = reinterpret_cast<Bytef *>(result.data());
    stream.avail_out = static_cast<uInt>(result.size());
    deflate(&stream, Z_FINISH);
    result.resize(stream.total_out);
    deflateEnd(&stream);
    return result;
}

std::string bzipped(const std::string &text) {
    std::string result(text.size() + text.size() / 50 + 600, '\0');
    auto size = static_cast<unsigned>(result.size());
    std::string source = text;
    BZ2_bzBuffToBuffCompress(result.data(), &size, source.data(),
                             static_cast<unsigned>(source.size()), 1, 0, 0);
    result.resize(size);
    return result;
}

std::string temporary_file(const std::string &name, const std::string &content) {
    std::string path = scratch_file(name);
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << content;
    if (!file.flush()) {
        throw std::runtime_error("cannot write " + path);
    }
    return path;
}

}  // namespace wf::test
