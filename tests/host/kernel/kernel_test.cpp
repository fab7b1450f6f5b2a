// SPDX-License-Identifier: Apache-2.0
// Time steps: who wakes, how often, in which order, and at what cost.
#include "host/kernel/kernel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>

#include "tests/support/allocation_count.h"

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

TEST_F(KernelTest, WakesOnChangesOnlyAndOncePerStep) {
    const Signal *a = signal(types.std_logic());
    const Signal *n = signal(types.integer("n", 0, 9));
    watching("a", a);
    watching("n", n);
    kernel.set_byte(a->slot, 0);
    kernel.set_word(n->slot, 0);
    EXPECT_EQ(ran(), "") << "equal values";
    kernel.set_byte(a->slot, 3);
    kernel.set_byte(a->slot, 2);
    kernel.set_byte(a->slot, 0);
    EXPECT_EQ(ran(), "a") << "changed and back";
    kernel.set_word(n->slot, int64_t{1} << 40);
    kernel.set_byte(a->slot, 3);
    EXPECT_EQ(ran(), "na") << "in the order of the changes";
    EXPECT_EQ(kernel.word(n->slot), int64_t{1} << 40);
    EXPECT_EQ(ran(), "") << "nothing left over";
}

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
    EXPECT_EQ(flip({1, 0, 1, 1}), "baPP") << "one call for each process, equal calls or not";
    watching("3", bits[0]);
    EXPECT_EQ(flip({0, 1}), "a3bPP");
    kernel.sensitize(second, *bits[2]);
    EXPECT_EQ(flip({2, 1}), "bP") << "once, though it watches both";
    EXPECT_EQ(flip({2}), "b");
    EXPECT_EQ(flip({1}), "bP");
    pair_on("x", bits[2]);
    EXPECT_EQ(flip({2, 0}), "bxa3PP");
}

// Waking against a plain model: any mixture of stretches, watchers and steps.
TEST_F(KernelTest, AgreesWithAPlainModel) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::minstd_rand random(seed);
    const auto below = [&random](uint32_t limit) {
        return static_cast<uint32_t>(random() % limit);
    };
    constexpr uint32_t width = 61;
    Signal *bus = signal(types.array(types.std_logic(), 0, width - 1));
    std::vector<int> wakes(width, 0);
    std::vector<bool> is_watched(width, false);
    for (uint32_t bit = 0; bit < width; bit += 1 + below(3)) {
        const auto count = [](void *counter) { ++*static_cast<int *>(counter); };
        kernel.sensitize(kernel.create_process("count", count, &wakes[bit]),
                         design.elements(bus)[bit]);
        is_watched[bit] = true;
    }
    std::vector<uint8_t> model(width, 0);
    for (int step = 0; step < 3000; ++step) {
        std::vector<int> expected = wakes;
        std::vector<bool> changed(width, false);
        for (uint32_t sets = below(4); sets > 0; --sets) {
            const uint32_t first = below(width);
            const uint32_t count = 1 + below(width - first);
            for (uint32_t bit = first; bit < first + count; ++bit) {
                const auto value = below(4) == 0 ? static_cast<uint8_t>(below(9)) : model[bit];
                changed[bit] = changed[bit] || model[bit] != value;
                model[bit] = value;
            }
            kernel.set_bytes(bus->slot + first, &model[first], count);
        }
        for (uint32_t bit = 0; bit < width; ++bit) {
            expected[bit] += changed[bit] && is_watched[bit] ? 1 : 0;
        }
        kernel.finish_step();
        ASSERT_EQ(wakes, expected) << "step " << step;
        ASSERT_TRUE(std::equal(model.begin(), model.end(), kernel.bytes(bus->slot)));
    }
}

TEST_F(KernelTest, KnowsWhatIsWatchedAndKeepsItWhileTheDesignGrows) {
    const Signal *a = signal(types.std_logic());
    watching("a", a);
    const uint32_t version = kernel.watch_version();
    watching("A", a);
    EXPECT_EQ(kernel.watch_version(), version);
    Signal *large = signal(types.array(types.std_logic(), 0, 99999));
    EXPECT_FALSE(kernel.watched(large->slot, 100000));
    watching("e", design.elements(large) + 50000);
    EXPECT_TRUE(kernel.watched(large->slot, 100000));
    EXPECT_FALSE(kernel.watched(large->slot, 50000));
    EXPECT_NE(kernel.watch_version(), version);
    kernel.set_byte(a->slot, 1);
    kernel.set_byte(large->slot + 50000, 1);
    kernel.set_byte(large->slot + 50001, 1);
    EXPECT_EQ(ran(), "aAe");
}

TEST_F(KernelTest, TellsProcessHandlesFromOtherAddresses) {
    Process *first = process("f");
    Process *second = process("s");
    EXPECT_TRUE(kernel.is_process(first) && kernel.is_process(second));
    EXPECT_EQ(reinterpret_cast<uintptr_t>(first) / 64, reinterpret_cast<uintptr_t>(second) / 64)
        << "the two processes of a bit share a cache line";
    const void *strangers[] = {nullptr, first - 1, second + 1, &kernel,
                               reinterpret_cast<char *>(first) + 8};
    for (const void *stranger : strangers) {
        EXPECT_FALSE(kernel.is_process(stranger)) << stranger;
    }
}

TEST_F(KernelTest, AllocatesNothingInTheLongRun) {
    Signal *bus = signal(types.array(types.std_logic(), 0, 999));
    for (uint32_t bit = 0; bit < 1000; ++bit) {
        const Signal *element = design.elements(bus) + bit;
        watching("", element);
        watching("", element, Priority::postponed);
    }
    const uint64_t before = test::allocation_count();
    std::vector<uint8_t> values(1000);
    const uint64_t own = test::allocation_count() - before;
    for (Ticks time = 1; time < 100; ++time) {
        kernel.begin_step(time);
        std::fill(values.begin(), values.begin() + 10 * time, static_cast<uint8_t>(time % 9));
        kernel.set_bytes(bus->slot, values.data(), 1000);
        kernel.finish_step();
    }
    if (own == 0) {
        GTEST_SKIP() << "operator new is not the test's own here (valgrind puts its own in place)";
    }
    EXPECT_EQ(test::allocation_count() - before, own);
    EXPECT_EQ(kernel.now(), 99);
}

TEST_F(KernelTest, ShowsEveryWakeToItsTracer) {
    const Signal *a = signal(types.bit());
    watching("a", a);
    watching("P", a, Priority::postponed);
    char mark = '>';
    kernel.trace_wakes(
        [](void *context, const Process &process) {
            *static_cast<Letter *>(process.parameter)->log += *static_cast<char *>(context);
        },
        &mark);
    kernel.set_byte(a->slot, 1);
    EXPECT_EQ(ran(), ">a>P");
    kernel.trace_wakes(nullptr, nullptr);
    kernel.set_byte(a->slot, 0);
    EXPECT_EQ(ran(), "aP");
}

}  // namespace
}  // namespace wf
