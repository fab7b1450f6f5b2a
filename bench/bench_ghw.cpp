// SPDX-License-Identifier: Apache-2.0
// Megabytes a second of GHW bytes, generated in memory: parsed alone, and replayed into a kernel in
// which nothing is watched. Three kinds: scattered single bits, vectors that change as a whole,
// integers.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <limits>
#include <random>
#include <string>

#include "host/design/design.h"
#include "host/kernel/kernel.h"
#include "host/source/ghw/declare.h"
#include "host/source/ghw/events.h"
#include "host/source/ghw/header.h"
#include "host/source/ghw/source.h"

namespace {

using namespace wf;

enum Kind : int64_t { single_bits, vectors, integers };

constexpr uint32_t width = 32;       // of a vector
constexpr uint32_t scalars = 50016;  // a multiple of it

void append_number(std::string &bytes, uint64_t value) {
    for (; value >= 0x80; value >>= 7) {
        bytes += static_cast<char>(value | 0x80);
    }
    bytes += static_cast<char>(value);
}

void append_signed(std::string &bytes, int64_t value) {
    for (; value < -64 || value > 63; value >>= 7) {
        bytes += static_cast<char>(value | 0x80);
    }
    bytes += static_cast<char>(value & 0x7f);
}

void append_word(std::string &bytes, uint64_t value, int size) {
    for (int i = 0; i < size; ++i) {
        bytes += static_cast<char>(value >> (8 * i));
    }
}

void append_section(std::string &bytes, std::string_view name) {
    bytes.append(name).append(5, '\0');
}

// One region "s" of signals "s": bits and vectors of a type of two literals, or integers.
std::string header(Kind kind) {
    std::string bytes("GHDLwave\n\x10\0\1\1\4\1\0", 16);
    append_section(bytes, "STR");
    append_word(bytes, 3, 4);
    append_word(bytes, 0, 4);
    bytes.append(
        "'0'\1"
        "1'\0s\0EOS\0",
        13);
    append_section(bytes, "TYP");
    append_word(bytes, 4, 4);
    // 1 of two literals, 2 integer, 3 array of 1, 4 a vector
    bytes.append(
        "\x16\3\2\1\2"
        "\x19\3"
        "\x1f\3\1\1\2"
        "\x23\3\3\x19\0\x1f\0",
        19);
    append_section(bytes, "HIE");
    append_word(bytes, 1, 4);
    append_word(bytes, scalars, 4);
    append_word(bytes, scalars, 4);
    bytes += "\6\3";
    const uint32_t step = kind == vectors ? width : 1;
    for (uint32_t first = 1; first + step <= scalars + 1; first += step) {
        bytes.append("\x10\3");
        bytes += kind == vectors ? '\4' : kind == integers ? '\2' : '\1';
        for (uint32_t i = 0; i < step; ++i) {
            append_number(bytes, first + i);
        }
    }
    return bytes.append("\x0f\0EOH\0", 6);
}

// The numbers that change in a cycle, with their values; `bits` are the values before it.
void append_changes(std::string &bytes, Kind kind, std::string &bits, std::mt19937_64 &random) {
    const auto count = static_cast<uint32_t>(bits.size());
    uint32_t last = 0;
    uint32_t next = 1 + static_cast<uint32_t>(random() % 8);
    while (next <= count) {
        append_number(bytes, next - last);
        last = next;
        if (kind == integers) {
            append_signed(bytes, static_cast<int64_t>(random() % 65536) - 32768);
        } else {
            bytes += bits[next - 1] ^= 1;
        }
        next += kind == vectors && next % width != 0 ? 1 + static_cast<uint32_t>(random() & 1)
                                                     : 1 + static_cast<uint32_t>(random() % 8);
    }
}

const std::string &waveform(Kind kind) {
    static std::string texts[3];
    std::string &bytes = texts[kind];
    if (!bytes.empty()) {
        return bytes;
    }
    std::mt19937_64 random(20240229);
    bytes = header(kind);
    bytes.append("CYC\0", 4);
    append_word(bytes, 0, 8);
    constexpr std::size_t wanted = 16U << 20;
    std::string bits(scalars, '\0');
    while (bytes.size() < wanted) {
        append_changes(bytes, kind, bits, random);
        bytes.append("\0\n", 2);
    }
    return bytes.append(
        "\0\x7f"
        "ECY\0TAI\0\0\1\4\1\0\0\0\0",
        18);
}

// Adds up what it is given, so that nothing of the parsing can be left out.
struct CountingSink {
    uint64_t sum = 0;
    bool time(Ticks) { return true; }
    void byte(Slot slot, uint8_t value) { sum += slot + value; }
    void word(Slot slot, int64_t value) { sum += slot + static_cast<uint64_t>(value); }
};

void parse_ghw(benchmark::State &state) {
    const std::string &bytes = waveform(static_cast<Kind>(state.range(0)));
    while (state.KeepRunning()) {
        state.PauseTiming();
        Design design;
        ghw::IdTable ids;
        ghw::Tokens tokens(make_memory_input("bench.ghw", bytes));
        ghw::Declarations declarations(design, ids, tokens);
        if (!ghw::read_header(tokens, design.types, declarations)) {
            state.SkipWithError(tokens.error().c_str());
        }
        state.ResumeTiming();
        ghw::Events events(tokens, ids);
        CountingSink sink;
        if (events.run(sink) != ghw::EventsEnd::end_of_data) {
            state.SkipWithError(events.error().c_str());
        }
        benchmark::DoNotOptimize(sink.sum);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes.size()));
}

void replay_ghw(benchmark::State &state) {
    const std::string &bytes = waveform(static_cast<Kind>(state.range(0)));
    while (state.KeepRunning()) {
        state.PauseTiming();
        Design design;
        const std::unique_ptr<Source> source =
            ghw::make_source(make_memory_input("bench.ghw", bytes));
        if (!source->load(design)) {
            state.SkipWithError(source->error().c_str());
        }
        Kernel kernel(design);
        state.ResumeTiming();
        if (source->advance_to(kernel, std::numeric_limits<Ticks>::max(), nullptr) !=
            Progress::end_of_data) {
            state.SkipWithError(source->error().c_str());
        }
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes.size()));
}

BENCHMARK(parse_ghw)->Arg(single_bits)->Arg(vectors)->Arg(integers);
BENCHMARK(replay_ghw)->Arg(single_bits)->Arg(vectors)->Arg(integers);

}  // namespace
