// SPDX-License-Identifier: Apache-2.0
// Megabytes a second of VCD text, generated in memory: parsed alone, and replayed into a kernel in
// which nothing is watched. Three kinds: single bits, narrow vectors, wide buses.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <limits>
#include <random>
#include <string>

#include "host/design/design.h"
#include "host/kernel/kernel.h"
#include "host/source/vcd/declare.h"
#include "host/source/vcd/events.h"
#include "host/source/vcd/source.h"

namespace {

using namespace wf;

enum Kind : int64_t { single_bits, narrow_vectors, wide_buses };

struct Shape {
    uint32_t signals;
    uint32_t width;
};

constexpr Shape shapes[] = {{50000, 1}, {3000, 8}, {700, 128}};

// The way simulators count: the first character is the lowest digit.
std::string code_of(uint32_t number) {
    std::string code;
    for (uint64_t rest = uint64_t{number} + 1; rest > 0; rest = (rest - 1) / 94) {
        code += static_cast<char>('!' + (rest - 1) % 94);
    }
    return code;
}

// A random value, without its leading zeros, as simulators write it.
void append_vector(std::string &text, uint32_t width, std::mt19937_64 &random) {
    const auto digits = static_cast<uint32_t>(1 + random() % width);
    text += "b1";
    for (uint32_t i = 1; i < digits; ++i) {
        text += static_cast<char>('0' + (random() & 1));
    }
    text += ' ';
}

const std::string &waveform(Kind kind) {
    static std::string texts[3];
    std::string &text = texts[kind];
    if (!text.empty()) {
        return text;
    }
    const Shape shape = shapes[kind];
    std::mt19937_64 random(20240229);
    text = "$timescale 1ns $end\n$scope module top $end\n";
    for (uint32_t i = 0; i < shape.signals; ++i) {
        text += "$var wire " + std::to_string(shape.width) + " " + code_of(i) + " s" +
                std::to_string(i) + " $end\n";
    }
    text += "$upscope $end\n$enddefinitions $end\n";
    constexpr std::size_t wanted = 32U << 20;
    std::string bits(shape.signals, '0');
    for (uint64_t time = 0; text.size() < wanted; time += 10) {
        text += "#" + std::to_string(time) + "\n";
        for (uint32_t i = static_cast<uint32_t>(random() % 8); i < shape.signals;
             i += 1 + static_cast<uint32_t>(random() % 8)) {
            if (shape.width > 1) {
                append_vector(text, shape.width, random);
            } else {
                text += bits[i] ^= 1;
            }
            text += code_of(i) + "\n";
        }
    }
    return text;
}

// Adds up what it is given, so that nothing of the parsing can be left out.
struct CountingSink {
    uint64_t sum = 0;
    bool time(Ticks) { return true; }
    void bit(Slot slot, uint8_t value) { sum += slot + value; }
    void bits(Slot first, const uint8_t *values, uint32_t count) {
        sum += first + values[count - 1];
    }
    void real(Slot slot, double) { sum += slot; }
};

void parse_vcd(benchmark::State &state) {
    const std::string &text = waveform(static_cast<Kind>(state.range(0)));
    while (state.KeepRunning()) {
        state.PauseTiming();
        Design design;
        vcd::IdTable ids;
        vcd::Tokens tokens(make_memory_input("bench.vcd", text));
        Remarks remarks;
        std::string error;
        if (!vcd::declare(tokens, design, ids, remarks, &error)) {
            state.SkipWithError(error.c_str());
        }
        state.ResumeTiming();
        vcd::Events events(tokens, ids, {});
        CountingSink sink;
        if (events.run(sink) != vcd::EventsEnd::end_of_data) {
            state.SkipWithError(events.error().c_str());
        }
        benchmark::DoNotOptimize(sink.sum);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

void replay_vcd(benchmark::State &state) {
    const std::string &text = waveform(static_cast<Kind>(state.range(0)));
    while (state.KeepRunning()) {
        state.PauseTiming();
        Design design;
        const std::unique_ptr<Source> source =
            vcd::make_source(make_memory_input("bench.vcd", text));
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
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

void load_vcd(benchmark::State &state) {
    const auto signals = static_cast<uint32_t>(state.range(0));
    std::string text = "$timescale 1ns $end\n$scope module top $end\n";
    for (uint32_t i = 0; i < signals; ++i) {
        text += "$var wire 1 " + code_of(i) + " s" + std::to_string(i) + " $end\n";
    }
    text += "$upscope $end\n$enddefinitions $end\n";
    while (state.KeepRunning()) {
        Design design;
        if (!vcd::make_source(make_memory_input("bench.vcd", text))->load(design)) {
            state.SkipWithError("not loaded");
        }
    }
    state.SetItemsProcessed(state.iterations() * signals);
}

BENCHMARK(parse_vcd)->Arg(single_bits)->Arg(narrow_vectors)->Arg(wide_buses);
BENCHMARK(replay_vcd)->Arg(single_bits)->Arg(narrow_vectors)->Arg(wide_buses);
BENCHMARK(load_vcd)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace
