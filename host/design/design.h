// SPDX-License-Identifier: Apache-2.0
// What a simulator knows of a design: its regions, its signals, their types and the storage of
// their values. A source of a waveform fills it, the kernel and the interface's functions read it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/design/arena.h"
#include "host/design/region.h"
#include "host/design/signal.h"
#include "host/design/type.h"

namespace wf {

// Paths. Levels are separated by '/', elements and fields are written as in the interface:
// "/top/u1/bus(3)", "/top/mem(2)(7)", "/top/rec.arr(0)". A relative path is tried below the
// environment first, each ".." that it begins with one level further up, and then as one that lacks
// its leading '/'. A name may itself hold any character (an
// escaped identifier does): at every level the text up to the next '/' is tried as a child's exact
// name, and, only where a region has such names, the text up to each later '/' too. A signal's
// exact name comes before its reading as a name with an element. A region whose name has square
// brackets (a generate block's "slot[0]") is found by its name with parentheses too, since the
// interface writes indices so.
//
// Memory, of a one-bit signal: 36 bytes for its handle, 9 for its declaration, 8 in its region's
// list, its name, and one slot. An element costs 36 bytes once it has been asked for, and its slot.
class Design {
  public:
    Design() = default;
    Design(const Design &) = delete;
    Design &operator=(const Design &) = delete;

    TypeTable types;
    // The length of a tick as a power of ten of seconds, -15 to 2.
    int resolution_exponent = -9;

    // --- filling it ---
    // A new region below `parent`, or a new root when that is null. Two of one name may stand side
    // by side; paths find the first.
    Region *add_region(Region *parent, std::string_view name, RegionKind kind);
    // Room for one object of the type; every leaf starts at the leftmost value of its type (0 for a
    // real). no_slot when the storage would grow past 2^32 - 2 slots.
    Slot new_storage(const Type *type);
    // The same, with every byte of it set to `fill`: for types whose leaves all take one slot.
    Slot new_storage(const Type *type, uint8_t fill);
    // A new signal over storage that new_storage gave. Signals may share storage: they have one
    // value then, and a handle each.
    Signal *add_signal(Region *region, std::string_view name, const Type *type, Mode mode,
                       Slot slot);
    // Lists a signal of another region here too, under the same handle: a port that the simulator
    // has merged with the signal above it. Its region and its name stay what they are; paths
    // through this region find it as `name`, or under its own name when that is empty.
    void add_alias(Region *region, Signal *signal, std::string_view name = {});

    // --- regions ---
    const std::vector<Region *> &roots() const { return roots_; }
    // The top region: the first root that is not a package, else the first root; null in an empty
    // design.
    Region *top() const;
    // Where relative paths start: the top region until another one is chosen.
    Region *environment() const { return environment_ != nullptr ? environment_ : top(); }
    void set_environment(Region *region) { environment_ = region; }
    // Takes the levels ".." that a relative path begins with off it, and answers the region that
    // the rest starts in; null stands for the place above the roots.
    Region *start_of(std::string_view &path) const;
    // The region after this one among its neighbours, or null.
    Region *next(const Region *region) const;
    // The region of that path ("/" is the top region), or null.
    Region *find_region(std::string_view path);
    // Whether the region or one below it, at any depth, has a signal.
    static bool holds_signals(const Region *region);
    // The child (or, for a null region, the root) of exactly that name, or null.
    Region *find_child(Region *region, std::string_view name);
    // "/top/u1"; the text stays as it is until the next call.
    const std::string &full_name(const Region *region);

    // --- signals ---
    // The signal, element or field of that path, as the interface answers it. When the indices of
    // the path select nothing, or a composite, or follow a scalar, the answer is what stands before
    // the first of them, so that the caller's own walk can speak of it. Null when there is none.
    Signal *find_signal(std::string_view path);
    // The object of exactly that path, composite elements included, or null.
    Signal *find_object(std::string_view path);
    // The signal listed in that region under exactly that name, without elements, or null.
    Signal *find_local(Region *region, std::string_view name);
    // The parts one level below, type->element_count() of them side by side; null for a scalar.
    // Made at the first asking, the same ever after.
    Signal *elements(Signal *signal);
    // The declared signal that this is, or is a part of.
    static const Signal *declared(const Signal *signal);
    Region *region_of(const Signal *signal) const {
        return static_cast<Region *>(declared(signal)->owner);
    }
    char *name_of(const Signal *signal) const { return signal_names_[declared(signal)->index]; }
    Mode mode_of(const Signal *signal) const { return modes_[declared(signal)->index]; }
    // Appends the signal as written in its region: "bus(3)", "rec.arr(0)".
    void append_indirect_name(const Signal *signal, std::string &text) const;
    // "/top/u1/bus(3)".
    std::string full_name(const Signal *signal);
    uint32_t signal_count() const { return static_cast<uint32_t>(signal_names_.size()); }

    // --- storage ---
    // The values of all slots; moves when storage is added.
    uint8_t *values() { return values_.data(); }
    const uint8_t *values() const { return values_.data(); }
    Slot slot_count() const { return slot_count_; }
    // Gives every signal the value that new_storage left it with.
    void reset_values();

    // --- handles ---
    // Whether an address is a handle of this design; any address may be asked for.
    bool is_region(const void *handle) const { return regions_.contains(handle); }
    bool is_signal(const void *handle) const { return signals_.contains(handle); }
    // The block of signals that a handle belongs to (empty when it is none), and beside each its
    // slot when its value is one byte, else no_slot. Its count may be larger later.
    using Signals = Arena<Signal, Slot>;
    Signals::View signals_around(const void *handle) const { return signals_.view(handle); }
    bool is_type(const void *handle) const { return types.contains(handle); }

  private:
    Slot grow_storage(Slot slots, uint8_t fill);
    static void fill_defaults(const Type *type, uint8_t *bytes);
    static void list_signal(Region *region, Signal *signal, std::string_view name);
    std::string_view listed_name(const Region *region, uint32_t position) const;
    Region *find_child_by_path(Region *region, std::string_view name);
    Region *walk_regions(Region *from, std::string_view path);
    Signal *walk_signal(Region *from, std::string_view path, bool exact);
    Signal *find_path(std::string_view path, bool exact);
    Signal *find_in_region(Region *region, std::string_view name, bool exact);
    Signal *find_part(Signal *signal, std::string_view suffix, bool exact);
    Signal *select(Signal *signal, std::string_view suffix);

    Arena<Region> regions_;
    Signals signals_;
    TextArena names_;
    std::vector<Region *> roots_;
    Region *environment_ = nullptr;
    NameIndex root_index_;
    bool roots_have_odd_names_ = false;
    std::vector<char *> signal_names_;  // of the declared signals, by number
    std::vector<Mode> modes_;           // of the declared signals
    std::vector<uint8_t> values_;       // eight bytes longer than the slots, for reads by the word
    Slot slot_count_ = 0;
    const Region *named_ = nullptr;  // the region whose full name is kept
    std::string full_name_;
};

}  // namespace wf
