// SPDX-License-Identifier: Apache-2.0
// The kernel's cost of a change: watched by two processes as a recorder watches a bit, unwatched,
// unchanged, and by the vector. Items are bits.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include "host/kernel/kernel.h"

namespace {

using wf::Kernel;
using wf::Slot;

// As large as what a recorder keeps for a bit.
struct Record {
    uint64_t changes = 0;
    uint64_t more[23] = {};
};

// Many one-bit signals in one region, in a design of its own.
struct Bits {
    explicit Bits(uint32_t count) : first(design.new_storage(type_of(count))) {
        auto *region = design.add_region(nullptr, "top", wf::RegionKind::module);
        bus = design.add_signal(region, "bus", type_of(count), wf::Mode::internal, first);
        kernel = std::make_unique<Kernel>(design);
    }

    const wf::Type *type_of(uint32_t count) {
        return design.types.array(design.types.std_logic(), 0, static_cast<int32_t>(count) - 1);
    }

    // Two processes for every bit, as a recorder has them: a normal one that marks the bit's record
    // and a postponed one that finds its work done.
    void watch(uint32_t count) {
        const auto mark = [](void *record) { ++static_cast<Record *>(record)->changes; };
        const auto nothing = [](void * /*record*/) {};
        const wf::Signal *bits = design.elements(bus);
        records.resize(count);
        for (uint32_t bit = 0; bit < count; ++bit) {
            kernel->sensitize(kernel->create_process("track", mark, &records[bit]), bits[bit]);
            kernel->sensitize(
                kernel->create_process("count", nothing, nullptr, wf::Priority::postponed),
                bits[bit]);
        }
    }

    wf::Design design;
    Slot first;
    wf::Signal *bus;
    std::vector<Record> records;
    std::unique_ptr<Kernel> kernel;
};

// Slots in an order that no cache foresees.
std::vector<Slot> shuffled(const Bits &bits, uint32_t count) {
    std::vector<Slot> order(count);
    for (uint32_t i = 0; i < count; ++i) {
        order[i] = bits.first + i;
    }
    std::shuffle(order.begin(), order.end(), std::minstd_rand(1));
    return order;
}

// One changed bit of `range(0)` watched ones, ten changes to a step.
void changed_watched_bit(benchmark::State &state) {
    const auto count = static_cast<uint32_t>(state.range(0));
    Bits bits(count);
    bits.watch(count);
    const std::vector<Slot> order = shuffled(bits, count);
    size_t next = 0;
    while (state.KeepRunning()) {
        for (int i = 0; i < 10; ++i) {
            const Slot slot = order[next];
            next = next + 1 < order.size() ? next + 1 : 0;
            bits.kernel->set_byte(slot, bits.kernel->byte(slot) ^ 1);
        }
        bits.kernel->finish_step();
    }
    benchmark::DoNotOptimize(bits.records.data());
    state.SetItemsProcessed(state.iterations() * 10);
}
BENCHMARK(changed_watched_bit)->Arg(1000)->Arg(100000)->Arg(1000000);

void changed_unwatched_bit(benchmark::State &state) {
    const auto count = static_cast<uint32_t>(state.range(0));
    Bits bits(count);
    const std::vector<Slot> order = shuffled(bits, count);
    size_t next = 0;
    while (state.KeepRunning()) {
        const Slot slot = order[next];
        next = next + 1 < order.size() ? next + 1 : 0;
        bits.kernel->set_byte(slot, bits.kernel->byte(slot) ^ 1);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(changed_unwatched_bit)->Arg(1000)->Arg(1000000);

enum Change { nothing, one_bit, half_the_bits };

// set_bytes of a vector of `range(0)` bits, of which `range(1)` change.
void set_bytes(benchmark::State &state) {
    const auto width = static_cast<uint32_t>(state.range(0));
    Bits bits(width);
    bits.watch(width);
    std::vector<uint8_t> values[2] = {std::vector<uint8_t>(width, 2),
                                      std::vector<uint8_t>(width, 2)};
    for (uint32_t bit = 0; bit < width; ++bit) {
        const bool flips = state.range(1) == half_the_bits ? bit % 2 == 0 : bit == 5;
        values[1][bit] = flips && state.range(1) != nothing ? 3 : 2;
    }
    unsigned turn = 0;
    while (state.KeepRunning()) {
        bits.kernel->set_bytes(bits.first, values[turn ^= 1U].data(), width);
        bits.kernel->finish_step();
    }
    benchmark::DoNotOptimize(bits.records.data());
    state.SetItemsProcessed(state.iterations() * width);
}
BENCHMARK(set_bytes)->ArgsProduct({{32, 64}, {nothing, one_bit, half_the_bits}});

// Making and sensitising the two processes of a bit.
void watch_bits(benchmark::State &state) {
    const auto count = static_cast<uint32_t>(state.range(0));
    while (state.KeepRunning()) {
        state.PauseTiming();
        auto bits = std::make_unique<Bits>(count);
        state.ResumeTiming();
        bits->watch(count);
        state.PauseTiming();
        bits.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(watch_bits)->Arg(100000)->Arg(1000000);

}  // namespace
