// SPDX-License-Identifier: Apache-2.0
// The records behind a process's handle, and the links by which a slot knows its watchers.
#pragma once

#include <cstdint>

namespace wf {

using ProcessFunction = void (*)(void *parameter);

// In the order of the interface's numbers.
enum class Priority : uint8_t { normal, immediate, postponed };
enum class Trigger : uint8_t { active, event };

// What waking a process reads: 16 bytes. The two that watch one bit are made one after the other
// and share half a cache line.
struct Process {
    ProcessFunction function;
    void *parameter;
};
static_assert(sizeof(void *) != 8 || sizeof(Process) == 16);

// A link names a watcher: (process index << 1) when the process's own `next` carries the list on,
// (node index << 1 | 1) when a WatchNode does. Indices start at 1, so that 0 is no link.
//
// The rest of a process, in an array of its own: 12 bytes.
struct ProcessInfo {
    uint32_t next;           // link; in use when the process watches a slot
    uint32_t mark;           // its slot; when shared, the last delta cycle in which it was woken
    uint32_t name : 29;      // the kernel's number for its name
    uint32_t priority : 2;   // Priority
    uint32_t is_shared : 1;  // watches several slots: several may wake it in one delta cycle
};
static_assert(sizeof(ProcessInfo) == 12);

// A place in a slot's list for a process whose own link is taken.
struct WatchNode {
    uint32_t process;
    uint32_t next;
};

}  // namespace wf
