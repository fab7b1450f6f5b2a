// SPDX-License-Identifier: Apache-2.0
// Feeds damaged waveforms to the readers for a while: fuzz_readers SECONDS SEED FILE...
// The files are the samples to damage. Each run is a whole replay through the source that the
// content calls for, with the checks that hold for any file. A crash or a sanitizer's report names
// the run; SEED makes it come again (0: another one each time). Meant for a build with sanitizers.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "host/design/design.h"
#include "host/kernel/kernel.h"
#include "host/source/ghw/source.h"
#include "host/source/vcd/source.h"

namespace {

using namespace wf;
using Random = std::mt19937_64;

// Numbers that stand for other things than they are near: ends of ranges, continued LEB128 bytes.
constexpr unsigned char odd_bytes[] = {0,  1,    2,    15,   16,   31,   34,
                                       35, 0x7e, 0x7f, 0x80, 0x81, 0xfe, 0xff};

struct Totals {
    uint64_t runs = 0;
    uint64_t loaded = 0;
    uint64_t whole = 0;    // read to the end without complaint
    uint64_t longest = 0;  // milliseconds of the slowest run
};

// Every other time near the end: what makes no sense in the header ends a run early.
std::size_t place_in(const std::string &text, Random &random) {
    const std::size_t from = (random() & 1) != 0 ? text.size() / 2 : 0;
    return text.empty() ? 0 : from + random() % (text.size() - from);
}

// One change: a byte, an odd byte, a bit, a cut, a stretch left out, doubled, or from elsewhere.
void damage(std::string &text, const std::string &other, Random &random) {
    const std::size_t at = place_in(text, random);
    const std::size_t length = 1 + random() % 16;
    switch (random() % 8) {
        case 0:
            text.resize(at);
            break;
        case 1:
            text.erase(at, length);
            break;
        case 2:
            text.insert(at, text.substr(at, length));
            break;
        case 3:
            text.insert(at, length, static_cast<char>(random()));
            break;
        case 4:
            text.insert(at, other.substr(place_in(other, random), length * 4));
            break;
        case 5:
            if (!text.empty()) {
                text[at] = static_cast<char>(text[at] ^ (1 << random() % 8));
            }
            break;
        case 6:
            if (!text.empty()) {
                text[at] = static_cast<char>(random());
            }
            break;
        default:
            if (!text.empty()) {
                text[at] = static_cast<char>(odd_bytes[random() % sizeof odd_bytes]);
            }
    }
}

void require(bool holds, const char *what, const std::string &error) {
    if (!holds) {
        std::fprintf(stderr, "fuzz_readers: %s; the message is \"%s\"\n", what, error.c_str());
        std::abort();
    }
}

std::unique_ptr<Source> open(const std::string &text, Random &random) {
    const std::size_t block = random() % 300;
    const std::size_t piece = 1 + random() % 300;
    auto input = make_memory_input("fuzz", text, piece);
    return ghw::recognise(text) ? ghw::make_source(std::move(input), block)
                                : vcd::make_source(std::move(input), block);
}

// Registers a process on every signal, as a plug-in would, and replays in two stretches.
void replay(const std::string &text, Random &random, Totals &totals) {
    const std::unique_ptr<Source> source = open(text, random);
    Design design;
    if (!source->load(design)) {
        require(source->error().starts_with("fuzz:"), "not loaded without a message",
                source->error());
        return;
    }
    ++totals.loaded;
    Kernel kernel(design);
    uint64_t wakes = 0;
    Process *process = kernel.create_process(
        "watcher", [](void *count) { ++*static_cast<uint64_t *>(count); }, &wakes);
    std::vector<Region *> regions = design.roots();
    while (!regions.empty()) {
        const Region *region = regions.back();
        regions.pop_back();
        regions.insert(regions.end(), region->children.begin(), region->children.end());
        for (const Signal *signal : region->signals) {
            kernel.sensitize(process, *signal);
        }
    }
    source->advance_to(kernel, static_cast<Ticks>(random() % 4000000), nullptr);
    const Progress end = source->advance_to(kernel, std::numeric_limits<Ticks>::max(), nullptr);
    require(end == Progress::end_of_data || end == Progress::damaged, "neither ended nor damaged",
            source->error());
    require((end == Progress::damaged) == source->error().starts_with("fuzz:"),
            "damage and message disagree", source->error());
    totals.whole += end == Progress::end_of_data ? 1 : 0;
}

std::string content_of(const char *path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        std::fprintf(stderr, "fuzz_readers: cannot read %s\n", path);
        std::exit(2);
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

int main(int argc, char **argv) {
    if (argc < 4) {
        std::fprintf(stderr, "usage: fuzz_readers SECONDS SEED FILE...\n");
        return 2;
    }
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::seconds(std::atol(argv[1]));
    const uint64_t given = std::strtoull(argv[2], nullptr, 10);
    const uint64_t seed = given != 0 ? given : std::random_device()();
    std::vector<std::string> samples;
    std::transform(argv + 3, argv + argc, std::back_inserter(samples), content_of);
    std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
    std::fflush(stdout);
    Random random(seed);
    Totals totals;
    for (auto now = Clock::now(); now < end; ++totals.runs) {
        std::string text = samples[random() % samples.size()];
        const std::string &other = samples[random() % samples.size()];
        for (uint64_t changes = 1 + random() % (1 + random() % 6); changes > 0; --changes) {
            damage(text, other, random);
        }
        replay(text, random, totals);
        const auto before = std::exchange(now, Clock::now());
        const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(now - before);
        totals.longest = std::max(totals.longest, static_cast<uint64_t>(took.count()));
    }
    std::printf("%llu runs, %llu loaded, %llu read to the end, the slowest took %llu ms\n",
                static_cast<unsigned long long>(totals.runs),
                static_cast<unsigned long long>(totals.loaded),
                static_cast<unsigned long long>(totals.whole),
                static_cast<unsigned long long>(totals.longest));
    return 0;
}
