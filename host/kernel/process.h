// SPDX-License-Identifier: Apache-2.0
// The record behind a process's handle, and the links by which a slot knows its watchers.
#pragma once

#include <cstdint>

namespace wf {

using ProcessFunction = void (*)(void *parameter);

// In the order of the interface's numbers.
enum class Priority : uint8_t { normal, immediate, postponed };
enum class Trigger : uint8_t { active, event };

// A link names a watcher: (process index << 1) when the process's own `next` carries the list on,
// (node index << 1 | 1) when a WatchNode does. Indices start at 1, so that 0 is no link.
//
// A process: 32 bytes. The two that watch one bit are made one after the other and share a cache
// line.
struct Process {
    ProcessFunction function;
    void *parameter;
    uint32_t next;   // link; in use when the process watches a slot
    uint32_t name;   // the kernel's number for its name
    uint32_t delta;  // the last delta cycle in which it was woken; kept only when it is shared
    Priority priority;
    bool shared;  // it watches several slots, so that several may wake it in one delta cycle
};
static_assert(sizeof(void *) != 8 || sizeof(Process) == 32);

// A place in a slot's list for a process whose own link is taken.
struct WatchNode {
    uint32_t process;
    uint32_t next;
};

}  // namespace wf
