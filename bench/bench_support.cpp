// SPDX-License-Identifier: Apache-2.0
// The containers under the plug-in: the hash table by pointer and by text, its ordered walk, and
// the list whose items pass between the changed and the spare ones. Items are entries.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "plugin/support/hash_functions.h"
#include "plugin/support/hash_table.h"
#include "plugin/support/linked_list.h"

namespace {

// Addresses 32 bytes apart, as a simulator's signal handles are.
struct alignas(32) Handle {
    char bytes[32];
};

void count_entries(benchmark::State &state) {
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}

st_table *filled(std::vector<Handle> *handles) {
    st_table *table = st_alloc_abo(st_ptrcmp, st_ptrhash);
    for (Handle &handle : *handles) {
        st_insert_kptr_vptr(table, &handle, &handle);
    }
    return table;
}

void hash_insert(benchmark::State &state) {
    std::vector<Handle> handles(static_cast<size_t>(state.range(0)));
    while (state.KeepRunning()) {
        st_free(filled(&handles));
    }
    count_entries(state);
}
BENCHMARK(hash_insert)->Arg(1000)->Arg(100000)->Arg(1000000);

void hash_look_up(benchmark::State &state) {
    std::vector<Handle> handles(static_cast<size_t>(state.range(0)));
    st_table *table = filled(&handles);
    while (state.KeepRunning()) {
        for (Handle &handle : handles) {
            void *value = nullptr;
            benchmark::DoNotOptimize(st_lookup_kptr_vptr(table, &handle, &value));
        }
    }
    st_free(table);
    count_entries(state);
}
BENCHMARK(hash_look_up)->Arg(1000)->Arg(100000)->Arg(1000000);

void hash_look_up_text(benchmark::State &state) {
    std::vector<std::string> names(static_cast<size_t>(state.range(0)));
    st_table *table = st_alloc_abo(st_strcmp, st_strhash);
    for (size_t i = 0; i < names.size(); ++i) {
        names[i] = "/top/instance/signal(" + std::to_string(i) + ")";
        st_insert_kptr_vptr(table, names[i].c_str(), &names[i]);
    }
    while (state.KeepRunning()) {
        for (const std::string &name : names) {
            void *value = nullptr;
            benchmark::DoNotOptimize(st_lookup_kptr_vptr(table, name.c_str(), &value));
        }
    }
    st_free(table);
    count_entries(state);
}
BENCHMARK(hash_look_up_text)->Arg(1000)->Arg(100000);

void hash_walk(benchmark::State &state) {
    std::vector<Handle> handles(static_cast<size_t>(state.range(0)));
    st_table *table = filled(&handles);
    while (state.KeepRunning()) {
        st_generator *generator = st_init_gen(table);
        void *key = nullptr;
        void *value = nullptr;
        while (st_gen_kptr_vptr(generator, &key, &value) != 0) {
            benchmark::DoNotOptimize(value);
        }
        st_free_gen(generator);
    }
    st_free(table);
    count_entries(state);
}
BENCHMARK(hash_walk)->Arg(1000)->Arg(100000)->Arg(1000000);

// As a counting step does it: items taken from the spare ones, then all of them given back.
void list_pass_items(benchmark::State &state) {
    list *changed = list_alloc();
    list *spare = list_alloc();
    for (int64_t i = 0; i < state.range(0); ++i) {
        list_append(spare, nullptr);
    }
    while (state.KeepRunning()) {
        while (spare->head != nullptr) {
            list_move_handle(spare->head, changed);
        }
        while (changed->head != nullptr) {
            list_move_handle(changed->head, spare);
        }
    }
    list_free(changed, nullptr);
    list_free(spare, nullptr);
    count_entries(state);
}
BENCHMARK(list_pass_items)->Arg(10)->Arg(1000)->Arg(100000);

}  // namespace
