// SPDX-License-Identifier: Apache-2.0
// Time steps: who wakes, how often, in which order, and at what cost.
#include "host/kernel/kernel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>

namespace wf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A region with signals, and processes that write their letter into a log when they run.
class KernelTest : public testing::Test {
  protected:
    struct Letter {
        std::string *log;
        std::string text;
        std::function<void()> action;
    };

    Signal *signal(const Type *type) {
        Signal *made =
            design.add_signal(region, "s", type, Mode::internal, design.new_storage(type));
        kernel.sync();
        return made;
    }

    Process *process(const char *letter, Priority priority = Priority::normal,
                     std::function<void()> action = {}) {
        letters.push_back(std::make_unique<Letter>(Letter{&log, letter, std::move(action)}));
        return kernel.create_process("p", &KernelTest::write, letters.back().get(), priority);
    }

    Process *watching(const char *letter, const Signal *watched,
                      Priority priority = Priority::normal) {
        Process *made = process(letter, priority);
        kernel.sensitize(made, *watched);
        return made;
    }

    std::string ran() {
        kernel.finish_step();
        return std::exchange(log, {});
    }

    static void write(void *parameter) {
        auto *letter = static_cast<Letter *>(parameter);
        *letter->log += letter->text;
        if (letter->action) {
            letter->action();
        }
    }

    Design design;
    TypeTable &types = design.types;
    Region *region = design.add_region(nullptr, "top", RegionKind::module);
    Kernel kernel{design};
    std::vector<std::unique_ptr<Letter>> letters;
    std::string log;
};

TEST_F(KernelTest, RunsImmediateThenNormalThenPostponed) {
    const Signal *a = signal(types.bit());
    const Signal *b = signal(types.bit());
    watching("P", a, Priority::postponed);
    watching("1", a);
    watching("2", a);
    watching("Q", b, Priority::postponed);
    watching("3", b);
    watching("!", b, Priority::immediate);
    kernel.set_byte(a->slot, 1);
    kernel.set_byte(b->slot, 1);
    EXPECT_EQ(ran(), "!123PQ");
    kernel.set_byte(b->slot, 0);
    EXPECT_EQ(ran(), "!3Q");
}

TEST_F(KernelTest, RunsAProcessOfSeveralSlotsOnce) {
    const Signal *bus = signal(types.array(types.array(types.std_logic(), 3, 0), 0, 1));
    const Signal *rec = signal(types.record("r", {{"f", types.bit()}, {"n", types.real()}}));
    watching("b", bus);
    watching("B", bus, Priority::postponed);
    watching("!", bus, Priority::immediate);
    Process *both = watching("x", rec);
    kernel.sensitize(both, *bus);
    kernel.sensitize(both, *bus);
    const uint8_t ones[8] = {3, 3, 3, 3, 3, 3, 3, 3};
    kernel.set_bytes(bus->slot, ones, 8);
    kernel.set_real(rec->slot + 1, 0.5);
    EXPECT_EQ(ran(), "!bxB");
    kernel.set_byte(bus->slot + 7, 2);
    EXPECT_EQ(ran(), "!bxB") << "in the next step again";
    kernel.set_byte(rec->slot, 1);
    EXPECT_EQ(ran(), "x");
}

TEST_F(KernelTest, LetsProcessesMakeProcessesAndChanges) {
    const Signal *a = signal(types.bit());
    const Signal *b = signal(types.bit());
    Process *maker = process("m", Priority::normal, [&] {
        for (int i = 0; i < 200; ++i) {
            watching("n", a);
            watching("", a, Priority::postponed);
        }
        kernel.set_byte(b->slot, kernel.byte(b->slot) ^ 1);
    });
    kernel.sensitize(maker, *a);
    watching("P", a, Priority::postponed);
    watching("b", b);
    watching("P", b, Priority::postponed);
    Process *late = process("L", Priority::postponed,
                            [&] { kernel.set_byte(b->slot, kernel.byte(b->slot) ^ 1); });
    kernel.sensitize(late, *a);
    kernel.sensitize(late, *b);
    kernel.set_byte(a->slot, 1);
    EXPECT_EQ(ran(), "mbPLP") << "new watchers wait for the next change, a delta cycle does not";
    EXPECT_EQ(ran(), "bPL") << "what a postponed process changes belongs to the next step";
    kernel.restart();
    EXPECT_EQ(ran(), "") << "and is forgotten when there is none";
    kernel.set_byte(b->slot, kernel.byte(b->slot) ^ 1);
    EXPECT_EQ(ran(), "bPL");
}

// A bit's own two watchers, which the kernel keeps in a form of their own, and what ends that form.
TEST_F(KernelTest, WakesAPairLikeAnyOtherWatchers) {
    const Signal *bits[] = {signal(types.bit()), signal(types.bit()), signal(types.bit())};
    Letter same{&log, "P", {}};
    const auto pair_on = [&](const char *letter, const Signal *bit) {
        Process *normal = watching(letter, bit);
        kernel.sensitize(kernel.create_process("p", &KernelTest::write, &same, Priority::postponed),
                         *bit);
        return normal;
    };
    const auto flip = [&](std::initializer_list<int> numbers) {
        for (const int number : numbers) {
            kernel.set_byte(bits[number]->slot, kernel.byte(bits[number]->slot) ^ 1);
        }
        return ran();
    };
    pair_on("a", bits[0]);
    Process *second = pair_on("b", bits[1]);
    EXPECT_EQ(flip({1, 0, 1, 1}), "abPP") << "one call for each process, equal calls or not";
    watching("3", bits[0]);
    EXPECT_EQ(flip({0, 1}), "a3bPP");
    kernel.sensitize(second, *bits[2]);
    EXPECT_EQ(flip({2, 1}), "bP") << "once, though it watches both";
    EXPECT_EQ(flip({2}), "b");
    EXPECT_EQ(flip({1}), "bP");
    pair_on("x", bits[2]);
    EXPECT_EQ(flip({2, 0}), "a3bxPP");
}

// A bus whose bits have watchers of all sorts, and a model that says who is to run in which order.
// A normal process may pass its bit's change on to another bit: the next delta cycle.
class ModelTest : public KernelTest {
  protected:
    static constexpr uint32_t width = 150;
    struct Watcher {
        ModelTest *test;
        uint32_t bit;
        bool postponed;
        int passes_on_to;  // the bit that it flips, or -1
    };

    ModelTest() {
        // Not at the beginning of a group.
        signal(types.array(types.bit(), 0, static_cast<int32_t>(below(70))));
        bus = signal(types.array(types.std_logic(), 0, width - 1));
        for (uint32_t bit = 0; bit < width; ++bit) {
            const uint32_t sort = below(8);
            for (uint32_t pairs = sort < 4 ? 1 + sort * below(40) / 3 : 0; pairs > 0; --pairs) {
                watch(bit, false, sort == 0 && bit + 10 < width ? static_cast<int>(bit + 10) : -1);
                add(bit, &ModelTest::count_postponed, nullptr, Priority::postponed);
            }
            for (uint32_t more = sort == 5 || sort == 3 ? below(4) : 0; more > 0; --more) {
                watch(bit, below(2) == 0, -1);
            }
        }
    }

    uint32_t below(uint32_t limit) { return static_cast<uint32_t>(random() % limit); }
    void add(uint32_t bit, ProcessFunction function, void *parameter, Priority priority) {
        kernel.sensitize(kernel.create_process("p", function, parameter, priority),
                         design.elements(bus)[bit]);
        if (parameter == nullptr) {
            ++calls[bit];
        }
    }
    void watch(uint32_t bit, bool postponed, int passes_on_to) {
        watchers.push_back(std::make_unique<Watcher>(Watcher{this, bit, postponed, passes_on_to}));
        add(bit, &ModelTest::note, watchers.back().get(),
            postponed ? Priority::postponed : Priority::normal);
    }
    static void note(void *parameter) {
        const auto *watcher = static_cast<const Watcher *>(parameter);
        watcher->test->got.push_back(watcher);
        if (watcher->passes_on_to >= 0) {
            const Slot slot = watcher->test->bus->slot + static_cast<Slot>(watcher->passes_on_to);
            watcher->test->kernel.set_byte(slot, watcher->test->kernel.byte(slot) ^ 1);
        }
    }
    static void count_postponed(void *) { ++postponed_calls; }

    // One delta cycle of the model: what ran, and the bits that it changed.
    std::vector<uint32_t> expect_delta(const std::vector<uint32_t> &changed) {
        std::vector<uint32_t> passed_on;
        for (const uint32_t bit : in_order(changed)) {
            for (const auto &watcher : watchers) {
                if (watcher->bit != bit) {
                    continue;
                }
                if (!watcher->postponed) {
                    expected.push_back(watcher.get());
                } else if (!met[bit]) {
                    expected_postponed.push_back(watcher.get());
                }
                if (watcher->passes_on_to >= 0) {
                    model[static_cast<size_t>(watcher->passes_on_to)] ^= 1;
                    passed_on.push_back(static_cast<uint32_t>(watcher->passes_on_to));
                }
            }
            expected_calls += met[bit] ? 0 : calls[bit];
            met[bit] = true;
        }
        return passed_on;
    }

    // Only watched bits count for the order of the groups.
    std::vector<uint32_t> in_order(const std::vector<uint32_t> &changed) const {
        std::vector<uint32_t> groups;
        for (const uint32_t bit : changed) {
            const uint32_t group = (bus->slot + bit) / 64;
            if (kernel.watched(bus->slot + bit, 1) &&
                std::find(groups.begin(), groups.end(), group) == groups.end()) {
                groups.push_back(group);
            }
        }
        std::vector<uint32_t> order;
        for (const uint32_t group : groups) {
            for (uint32_t bit = 0; bit < width; ++bit) {
                if ((bus->slot + bit) / 64 == group &&
                    std::find(changed.begin(), changed.end(), bit) != changed.end()) {
                    order.push_back(bit);
                }
            }
        }
        return order;
    }

    unsigned seed = std::random_device{}();
    std::minstd_rand random{seed};
    Signal *bus = nullptr;
    std::vector<std::unique_ptr<Watcher>> watchers;
    std::vector<uint8_t> model = std::vector<uint8_t>(width);
    std::vector<bool> met;
    std::vector<const Watcher *> got, expected, expected_postponed;
    uint64_t calls[width] = {};
    uint64_t expected_calls = 0;
    static inline uint64_t postponed_calls;
};

TEST_F(ModelTest, AgreesWithTheKernel) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    postponed_calls = 0;
    for (int step = 0; step < 1000; ++step) {
        std::vector<uint32_t> changed;
        for (uint32_t sets = below(4); sets > 0; --sets) {
            const uint32_t first = below(width);
            const uint32_t count = 1 + below(below(2) == 0 ? 12 : width - first);
            const uint32_t end = std::min(first + count, width);
            for (uint32_t bit = first; bit < end; ++bit) {
                const auto value = below(4) == 0 ? static_cast<uint8_t>(below(255)) : model[bit];
                if (model[bit] != value) {
                    changed.push_back(bit);
                }
                model[bit] = value;
            }
            kernel.set_bytes(bus->slot + first, &model[first], end - first);
        }
        met.assign(width, false);
        while (!changed.empty()) {
            changed = expect_delta(changed);
        }
        expected.insert(expected.end(), expected_postponed.begin(), expected_postponed.end());
        kernel.finish_step();
        ASSERT_EQ(got, expected) << "step " << step;
        ASSERT_EQ(postponed_calls, expected_calls) << "step " << step;
        ASSERT_TRUE(std::equal(model.begin(), model.end(), kernel.bytes(bus->slot)));
        got.clear();
        expected.clear();
        expected_postponed.clear();
    }
}

}  // namespace
}  // namespace wf
