// SPDX-License-Identifier: Apache-2.0
// A running simulator as the place a design and its events come from. It is no Source: time is the
// simulator's, and its events come when they happen.
//
// A watched object has one value-change callback, which only marks it, and keeps the value of a
// narrow one where it comes with the change. The read-only synchronisation at the end of the time
// step reads each other marked object once, sets the kernel's slots and finishes the step. An
// object that nobody watches is read when somebody asks.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/design/design.h"
#include "host/kernel/kernel.h"
#include "host/source/vpi/declare.h"
#include "host/source/vpi/object.h"

namespace wf::vpi {

// One at a time in a process, from before the simulation starts to its end; calls are made from
// inside the simulator's callbacks only.
class Simulator final : public ValueSupply {
  public:
    Simulator();
    ~Simulator();
    Simulator(const Simulator &) = delete;
    Simulator &operator=(const Simulator &) = delete;

    // Reads the declarations into an empty `design`, its resolution included. Possible from the
    // start of the simulation on. Memories of more than `memory_limit` bits are left out. An empty
    // text, or what is wrong.
    std::string load(Design &design, uint64_t memory_limit);
    // What is not in the design and might be missed, one line each.
    const std::vector<std::string> &notes() const { return notes_; }
    // Moves this kernel from now on; it has taken in the design's storage and outlives this.
    void attach(Kernel &kernel);

    // Moves the kernel to the simulator's time, with the values of the objects marked so far. The
    // step that is now is finished with them when `ends` says so.
    void settle(bool ends = true);

    const Traits &traits() const { return traits_; }

    // --- for the kernel ---
    void wanted(Slot first, uint32_t count) override;
    void watched(Slot slot) override;

    // --- for the simulator's callbacks ---
    void mark(Object &object);
    // Marks an object with a value in the format of its form.
    void receive(Object &object, const s_vpi_value &value);
    void mark_word(const Memory &memory, int32_t index);

  private:
    size_t object_at(Slot slot) const;
    void note_left_out(const std::string &what, const Declarations::LeftOut &left_out);
    void watch(Object &object);
    void watch_memory(Memory &memory);
    void read(Object &object);

    Traits traits_;
    Objects objects_;
    std::vector<std::string> notes_;
    std::vector<Object *> marked_;
    std::vector<uint8_t> bits_;  // room for the widest object
    Kernel *kernel_ = nullptr;
};

}  // namespace wf::vpi
