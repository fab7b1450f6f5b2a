// SPDX-License-Identifier: Apache-2.0
// From the declarations of a VCD file to a design: what belongs together becomes one signal, every
// signal gets its storage, and every identifier code its targets there.
//
// - A variable of one bit is a std_logic, one of several bits, or with a range, an array of it; a
//   range that is missing is [width-1:0]. Bits start as 'U': no value yet.
// - Bits declared one by one (bus[3], bus[2], ...) become one array, from the first to the last
// when
//   they rise in the order of their declaration, else downwards. A bit missing in between stays
//   'U'.
// - Words of a memory (mem[0] [7:0], mem[1] [7:0], ...) of one range, without a gap, two at least,
//   become one array of arrays. Otherwise each word is an array of its own, called mem[0].
// - Where a scope declares the plain name too, bits and words stay apart, called bus[3], mem[0].
// - A scope opened again is the same region; what it declares again, with the same code, is once.
// - One code may stand for variables of different widths: each has storage of its own, and a value
//   is cut or extended for each.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/design/design.h"
#include "host/source/vcd/header.h"
#include "host/source/vcd/ids.h"

namespace wf::vcd {

class Declarations : public HeaderSink {
  public:
    // Fills `design` and `ids`, which outlive this object.
    Declarations(Design &design, IdTable &ids) : design_(design), ids_(ids) {}

    void resolution(int exponent) override { design_.resolution_exponent = exponent; }
    void open_scope(RegionKind kind, std::string_view name) override;
    void close_scope() override { open_.pop_back(); }
    void variable(const Variable &variable) override;

    // Makes the signals, once all is declared. False: the design is too large for its storage.
    bool finish();

  private:
    static constexpr uint32_t none = UINT32_MAX;

    // A variable until its scope is complete.
    struct Held {
        uint64_t name;  // where it starts in names_
        uint32_t name_length;
        uint32_t base_length;  // less: the name ends in a memory word's index
        uint32_t number;       // of its identifier code
        uint32_t width;
        int32_t left;
        int32_t right;
        int32_t word;
        uint32_t next;  // the following one of its scope
        VariableUse use;
        bool has_range;
        bool has_index;

        bool is_word() const { return base_length < name_length; }
        bool is_part() const { return has_index || is_word(); }
        int32_t part() const { return has_index ? left : word; }
    };
    struct Scope {
        Region *region;
        uint32_t first = none;  // variables, in the order of their declaration
        uint32_t last = none;
        bool reopened = false;
    };
    // The bits or the words of one name.
    struct Group {
        std::vector<uint32_t> members;
        bool is_joined = false;
        bool is_done = false;
    };
    using Groups = std::unordered_map<std::string_view, Group>;

    std::string_view name_of(const Held &held) const {
        return std::string_view(names_).substr(held.name, held.name_length);
    }
    std::string_view base_of(const Held &held) const {
        return std::string_view(names_).substr(held.name, held.base_length);
    }

    bool declare_scope(const Scope &scope);
    Groups collect_groups(const Scope &scope);
    bool can_join(Group &group);
    bool are_alike(const std::vector<uint32_t> &members) const;
    bool are_dense(const std::vector<uint32_t> &members) const;
    bool declare_group(const Scope &scope, Group &group);
    bool declare_alone(const Scope &scope, const Held &held);
    bool declare_real(const Scope &scope, const Held &held);
    const Type *vector_type(const Held &held);

    const Target *find_target(uint32_t number, uint32_t shape) const;
    void add_target(uint32_t number, Target target);
    Slot storage_for(uint32_t number, uint32_t shape, const Type *type);
    Slot shared_storage(const std::vector<uint32_t> &members, const Type *type) const;
    bool add_signal(const Scope &scope, std::string_view name, const Type *type, VariableUse use,
                    Slot slot);
    void freeze_ids();

    Design &design_;
    IdTable &ids_;
    std::vector<Scope> scopes_;
    std::vector<uint32_t> open_;  // scopes, the innermost last
    std::unordered_map<const Region *, uint32_t> scope_of_;
    std::string names_;
    std::vector<Held> held_;
    std::vector<Target> targets_;  // by number: the first
    std::unordered_map<uint32_t, std::vector<Target>> more_;
    const Type *real_ = nullptr;
};

}  // namespace wf::vcd
