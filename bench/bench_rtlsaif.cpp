// SPDX-License-Identifier: Apache-2.0
// Reading forward SAIF files of different sizes: the time for an object must not grow with the
// number of objects. Reads from memory, so that the disk has no part in it.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "plugin/rtlsaif/parser.h"
#include "plugin/rtlsaif/rtl_table.h"
#include "plugin/support/hash_table.h"

// A forward file of `objects` bits: instances of 100 registers of eight bits each.
static std::string forward_file(int64_t objects) {
    std::string text =
        "(SAIFILE (SAIFVERSION \"2.0\") (DIRECTION \"forward\") (DESIGN \"d\") (DATE) (VENDOR)\n"
        "(PROGRAM_NAME) (VERSION) (DIVIDER /)\n(INSTANCE \"d\" top\n";
    char line[200];
    for (int64_t i = 0; i < objects; ++i) {
        const long unit = static_cast<long>(i / 800);
        const int name = static_cast<int>(i / 8 % 100);
        const int bit = static_cast<int>(i % 8);
        if (i % 800 == 0) {
            snprintf(line, sizeof line, "%s(INSTANCE \"unit\" u%ld\n(NET\n", i > 0 ? "))\n" : "",
                     unit);
            text += line;
        }
        snprintf(line, sizeof line, "(count%d[%d] count%d_reg\\[%d\\]/Q \"sequential\")\n", name,
                 bit, name, bit);
        text += line;
    }
    return text + ")))\n)\n";
}

static void read_forward_file(benchmark::State &state) {
    std::string text = forward_file(state.range(0));
    for ([[maybe_unused]] auto round : state) {
        st_table *objects = st_alloc_abo(st_strcmp, st_strhash);
        saifrtl_parse_init(nullptr, nullptr);
        saifrtl_hash_var = objects;
        FILE *stream = fmemopen(text.data(), text.size(), "r");
        const int result = saifrtl_parse(stream, nullptr, nullptr, 1, "forward");
        saifrtl_parse_reset();
        if (result != 0 || st_count(objects) != state.range(0)) {
            state.SkipWithError("not all objects were read");
        }
        mfli_free_rtl_hash(objects);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}
BENCHMARK(read_forward_file)->Arg(20000)->Arg(200000)->Unit(benchmark::kMillisecond);
