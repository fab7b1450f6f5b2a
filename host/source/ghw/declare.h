// SPDX-License-Identifier: Apache-2.0
// From the hierarchy of a GHW file to a design: every signal gets its storage, and every scalar of
// the file its places there.
//
// - Signals whose scalars are one and the same, side by side, share storage: a port and what it is
//   connected to, or to a slice of it. Where they are the same but lie apart, each signal has its
//   own and a value goes to all of them.
// - A signal of a null array holds no value and is declared all the same.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "host/design/design.h"
#include "host/source/ghw/header.h"
#include "host/source/ghw/ids.h"

namespace wf::ghw {

class Declarations : public HeaderSink {
  public:
    // Fills `design` and `ids`; complains to `tokens`. All outlive this object.
    Declarations(Design &design, IdTable &ids, Tokens &tokens)
        : design_(design), ids_(ids), tokens_(tokens) {}

    void resolution(int exponent) override { design_.resolution_exponent = exponent; }
    void open_scope(RegionKind kind, std::string_view name) override;
    void close_scope() override { open_.pop_back(); }
    bool signal(const SignalEntry &signal) override;
    bool finish(uint32_t leaves) override;

  private:
    void collect_places(const Type *type, Slot offset);
    bool check_leaves(const SignalEntry &signal);
    Slot shared_storage(const SignalEntry &signal) const;

    Design &design_;
    IdTable &ids_;
    Tokens &tokens_;
    std::vector<Region *> open_;    // the innermost last
    std::vector<Leaf> places_;      // of one signal's scalars, counted from its first slot
    const Type *placed_ = nullptr;  // the type whose places these are
};

}  // namespace wf::ghw
