// SPDX-License-Identifier: Apache-2.0
// Designs: hierarchy, names and paths, elements, storage, and telling handles from other addresses.
#include "host/design/design.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <set>

namespace wf {
namespace {

// A small design with every shape of name.
class DesignTest : public testing::Test {
  protected:
    DesignTest() {
        const Type *bus = types.array(types.std_logic(), 7, 0);
        const Type *pair = types.record("pair", {{"a", types.bit()}, {"arr", bus}});
        package = design.add_region(nullptr, "pkg", RegionKind::package);
        top = design.add_region(nullptr, "top", RegionKind::module);
        u1 = design.add_region(top, "u1", RegionKind::module);
        add(package, "shared", types.bit());
        add(top, "clk", types.std_logic());
        add(top, "bus", bus);
        add(top, "mem", types.array(bus, 0, 3));
        add(top, "rec", pair);
        add(top, "recs", types.array(pair, 0, 1));
        add(u1, "clk", types.std_logic());
        add(u1, "odd.name(3)", types.array(types.bit(), 0, 1));
        Region *odd = design.add_region(top, "a/b", RegionKind::generate);
        add(odd, "x", types.bit());
        add(design.add_region(design.add_region(top, "a", RegionKind::block), "b c",
                              RegionKind::block),
            "y", types.bit());
        add(u1, "n/m", types.bit());
        add(design.add_region(top, "slot[0]", RegionKind::generate), "z", types.bit());
    }

    Signal *add(Region *region, const char *name, const Type *type) {
        return design.add_signal(region, name, type, Mode::internal, design.new_storage(type));
    }

    std::string found(Signal *signal) { return signal ? design.full_name(signal) : "none"; }
    std::string found(Region *region) { return region ? design.full_name(region) : "none"; }

    Design design;
    TypeTable &types = design.types;
    Region *package, *top, *u1;
};

TEST_F(DesignTest, FindsRegionsByPath) {
    const std::pair<const char *, const char *> rows[] = {
        {"/", "/top"},
        {"/top", "/top"},
        {"top", "/top"},
        {"/top/u1", "/top/u1"},
        {"u1", "/top/u1"},
        {"top/u1", "/top/u1"},
        {"/pkg", "/pkg"},
        {"pkg", "/pkg"},
        {"/top/a/b", "/top/a/b"},
        {"/top/a/b c", "/top/a/b c"},
        {"/u1", "none"},
        {"", "none"},
        {"/top/", "none"},
        {"/top/u", "none"},
        {"//top", "none"},
        {"/top/clk", "none"},
    };
    for (const auto &[path, expected] : rows) {
        EXPECT_EQ(found(design.find_region(path)), expected) << path;
    }
}

TEST_F(DesignTest, FindsSignalsAndElementsByPath) {
    // The third column is what the interface's own rule answers where it differs.
    const struct {
        const char *path, *exact, *interface;
    } rows[] = {
        {"/top/clk", "/top/clk", nullptr},
        {"clk", "/top/clk", nullptr},
        {"u1/clk", "/top/u1/clk", nullptr},
        {"pkg/shared", "/pkg/shared", nullptr},
        {"/top/bus", "/top/bus", nullptr},
        {"/top/bus(3)", "/top/bus(3)", nullptr},
        {"/top/bus(8)", "none", "/top/bus"},
        {"/top/bus(3", "none", "/top/bus"},
        {"/top/bus()", "none", "/top/bus"},
        {"/top/bus(7:0)", "none", "/top/bus"},
        {"/top/bus(+3)", "none", "/top/bus"},
        {"/top/bus(3)(1)", "none", "/top/bus"},
        {"/top/bus(99999999999999999999)", "none", "/top/bus"},
        {"/top/clk(0)", "none", "/top/clk"},
        {"/top/bus[3]", "none", nullptr},
        {"/top/mem(2)(7)", "/top/mem(2)(7)", nullptr},
        {"/top/mem(2)", "/top/mem(2)", "/top/mem"},
        {"/top/mem(2)(9)", "none", "/top/mem"},
        {"/top/rec.a", "/top/rec.a", nullptr},
        {"/top/rec.arr", "/top/rec.arr", nullptr},
        {"/top/rec.arr(0)", "/top/rec.arr(0)", nullptr},
        {"/top/rec.arr(9)", "none", "/top/rec.arr"},
        {"/top/rec.none", "none", nullptr},
        {"/top/rec.none(1)", "none", nullptr},
        {"/top/recs(1).arr(7)", "/top/recs(1).arr(7)", nullptr},
        {"/top/recs(1).arr", "/top/recs(1).arr", "/top/recs"},
        {"/top/recs(2).a", "none", "/top/recs"},
        {"/top/u1/odd.name(3)", "/top/u1/odd.name(3)", nullptr},
        {"/top/u1/odd.name(3)(1)", "/top/u1/odd.name(3)(1)", nullptr},
        {"/top/u1/odd.name", "none", nullptr},
        {"/top/u1/n/m", "/top/u1/n/m", nullptr},
        {"/top/a/b/x", "/top/a/b/x", nullptr},
        {"/top/a/b c/y", "/top/a/b c/y", nullptr},
        {"/top/slot[0]/z", "/top/slot[0]/z", nullptr},
        {"/top/slot(0)/z", "/top/slot[0]/z", nullptr},
        {"/top/slot(1)/z", "none", nullptr},
        {"/top/u1", "none", nullptr},
        {"/clk", "none", nullptr},
        {"", "none", nullptr},
        {"/", "none", nullptr},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(found(design.find_object(row.path)), row.exact);
        EXPECT_EQ(found(design.find_signal(row.path)), row.interface ? row.interface : row.exact);
    }
}

TEST_F(DesignTest, StartsEveryLeafAtItsLeftmostValue) {
    const Type *type = types.record(
        "defaults",
        {{"state", types.bit()}, {"up", types.integer("up", 3, 9)}, {"x", types.real()}});
    const Slot first = design.new_storage(types.array(type, 0, 1));
    for (const Slot element : {first, first + type->slots}) {
        int64_t up = 0;
        std::memcpy(&up, design.values() + element + 1, sizeof up);
        EXPECT_EQ(up, 3);
        EXPECT_EQ(design.values()[element], 0);
    }
    const Slot unknown = design.new_storage(types.array(types.std_logic(), 0, 3), 1);
    EXPECT_EQ(design.values()[unknown + 3], 1);
    EXPECT_EQ(unknown, first + 2 * type->slots);
}

// Look-ups between additions, against a plain search, with names that repeat and collide.
TEST(DesignIndex, AgreesWithAPlainSearchWhileItGrows) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    Design design;
    Region *wide = design.add_region(nullptr, "wide", RegionKind::module);
    const auto name = [&] { return "n" + std::to_string(random() % 600); };
    const auto plain = [](const auto &list, const std::string &wanted, auto name_of) {
        const auto found = std::find_if(list.begin(), list.end(),
                                        [&](auto *entry) { return name_of(entry) == wanted; });
        return found == list.end() ? nullptr : *found;
    };
    for (int step = 0; step < 2000; ++step) {
        design.add_region(wide, name(), RegionKind::module);
        design.add_signal(wide, name(), design.types.bit(), Mode::in, 0);
        const std::string wanted = name();
        ASSERT_EQ(design.find_child(wide, wanted),
                  plain(wide->children, wanted, [](Region *r) { return r->name; }));
        ASSERT_EQ(design.find_local(wide, wanted),
                  plain(wide->signals, wanted, [&](Signal *s) { return design.name_of(s); }));
    }
    std::set<const void *> handles(wide->signals.begin(), wide->signals.end());
    EXPECT_EQ(handles.size(), 2000U);
    EXPECT_TRUE(std::all_of(handles.begin(), handles.end(),
                            [&](const void *handle) { return design.is_signal(handle); }));
}

}  // namespace
}  // namespace wf
