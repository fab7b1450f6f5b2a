// SPDX-License-Identifier: Apache-2.0
// From the variables of a Verilog-like waveform to a design: what belongs together becomes one
// signal, every signal gets its storage, and every number that stands for a value its targets
// there.
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
// - A scope opened again is the same region; what a scope declares again, with the same number, is
//   once.
// - Two signals of one name in one scope could not be told apart: the second is passed over with a
//   remark, and so is a bit that is called as a bit of a vector there.
// - One number may stand for variables of different widths: each has storage of its own, and a
//   value is cut or extended for each, with a remark.
// - A variable outside of all scopes is passed over with a remark: it belongs to no instance.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/design/design.h"
#include "host/source/remarks.h"

namespace wf {

// The widest vector that is accepted, in bits.
inline constexpr uint32_t max_width = 1U << 24;

// What becomes of a variable.
enum class VariableUse : uint8_t {
    bits,    // nets, variables and integers of any kind: a value of bits
    port,    // the same, in the dump of a module's ports
    real,    // a number
    ignored  // events, parameters and strings: no state that can toggle
};

// One variable's declaration. The texts are good until it has been handed over.
struct Variable {
    VariableUse use = VariableUse::bits;
    Mode mode = Mode::internal;
    bool has_range = false;  // [left:right] was given
    bool has_index = false;  // [left] was given: one bit of a vector
    int32_t left = 0;
    int32_t right = 0;
    uint32_t width = 0;     // bits, 1 to max_width; of a real or an ignored one what stood there
    int32_t word = 0;       // the index that ends the name of a memory's word
    uint32_t line = 0;      // where it stands, for messages; 0: in no line
    std::string_view name;  // with a word's index; without an escaped name's backslash, with an
                            // extended one's two
    std::string_view base;  // shorter than the name when that may be a memory's word
};

// What a change of one number's value changes.
struct Target {
    Slot slot = 0;       // its leftmost bit; for `several` the first of its places among the extra
    uint32_t shape = 0;  // 1 to max_width: so many bits; else one of the following

    static constexpr uint32_t undeclared = 0;
    static constexpr uint32_t ignored = 0x40000000U;  // declared, but nobody keeps its value
    static constexpr uint32_t real = 0x40000001U;
    static constexpr uint32_t several = 0x80000000U;  // plus how many

    bool is_bits() const { return shape - 1 < max_width; }
    bool is_several() const { return shape >= several; }
    uint32_t count() const { return is_several() ? shape - several : 1; }
    bool operator==(const Target &) const = default;
};

class Variables {
  public:
    // Fills `design`; what is passed over goes to `remarks`. Both outlive this object.
    Variables(Design &design, Remarks &remarks) : design_(design), remarks_(remarks) {}

    void open_scope(RegionKind kind, std::string_view name);
    void close_scope() { open_.pop_back(); }
    // A variable of the innermost scope; `number` stands for its value.
    void add(const Variable &variable, uint32_t number);
    // The innermost scope.
    const Region *scope() const { return scopes_[open_.back()].region; }

    // Says which way the port variables go, by number.
    void set_modes(const std::vector<Mode> &modes);
    // Makes the signals, once all is declared; numbers are below `numbers`. False: the design is
    // too large for its storage.
    bool finish(uint32_t numbers);
    // Then: the targets by number, and the places of those that have several.
    const std::vector<Target> &targets() const { return targets_; }
    std::vector<Target> take_extra() { return std::move(extra_); }

  private:
    static constexpr uint32_t none = UINT32_MAX;

    // A variable until its scope is complete.
    struct Held {
        uint64_t name;  // where it starts in names_
        uint32_t name_length;
        uint32_t base_length;  // less: the name ends in a memory word's index
        uint32_t number;
        uint32_t width;
        int32_t left;
        int32_t right;
        int32_t word;
        uint32_t next;  // the following one of its scope
        uint32_t line;
        VariableUse use;
        Mode mode;
        bool has_range;
        bool has_index;

        bool is_bits() const { return use == VariableUse::bits || use == VariableUse::port; }
        bool is_word() const { return base_length < name_length; }
        bool is_part() const { return has_index || is_word(); }
        int32_t part() const { return has_index ? left : word; }
    };
    struct Scope {
        Region *region;
        uint32_t first = none;  // variables, in the order of their declaration
        uint32_t last = none;
    };
    // The bits or the words of one name. Without members: only bits that are called like some.
    struct Group {
        std::vector<uint32_t> members;
        uint32_t whole = none;  // the variable of bits that has the plain name
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
    bool declare(const Scope &scope, const Held &held, Groups &groups);
    Groups collect_groups(const Scope &scope);
    void find_whole_names(const Scope &scope, Groups &groups) const;
    bool is_called_like_a_bit(const Held &held, const Groups &groups);
    void pass_over(const Held &held);
    bool can_join(Group &group);
    bool are_alike(const std::vector<uint32_t> &members) const;
    bool are_dense(const std::vector<uint32_t> &members) const;
    bool declare_group(const Scope &scope, Group &group);
    bool declare_alone(const Scope &scope, const Held &held);
    bool declare_real(const Scope &scope, const Held &held);
    const Type *vector_type(const Held &held);

    const Target *find_target(uint32_t number, uint32_t shape) const;
    void add_target(const Held &held, Target target);
    Slot storage_for(const Held &held, uint32_t shape, const Type *type);
    Slot shared_storage(const std::vector<uint32_t> &members, const Type *type) const;
    bool declare_once(const Scope &scope, const Held &held, std::string_view name, uint32_t shape,
                      const Type *type);
    bool add_signal(const Scope &scope, std::string_view name, const Type *type, Mode mode,
                    Slot slot);
    void list_extra();

    Design &design_;
    Remarks &remarks_;
    std::vector<Scope> scopes_;
    std::vector<uint32_t> open_;  // scopes, the innermost last
    std::unordered_map<const Region *, uint32_t> scope_of_;
    std::string names_;
    std::vector<Held> held_;
    std::vector<uint32_t> outside_;  // numbers of variables without a scope
    std::vector<Target> targets_;    // by number: the first
    std::unordered_map<uint32_t, std::vector<Target>> more_;
    std::vector<Target> extra_;
    const Type *real_ = nullptr;
};

}  // namespace wf
