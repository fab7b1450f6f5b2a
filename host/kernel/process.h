// SPDX-License-Identifier: Apache-2.0
// The records behind a process's handle, and the links by which a slot knows its watchers.
#pragma once

#include <cstdint>

namespace wf {

using ProcessFunction = void (*)(void *parameter);

// In the order of the interface's numbers.
enum class Priority : uint8_t { normal, immediate, postponed };
enum class Trigger : uint8_t { active, event };

// What a process has to itself when it runs; its address is the process's handle.
struct Process {
    void *parameter;
};

// What many processes have in common: two kinds serve all of a recorder's.
struct ProcessKind {
    ProcessFunction function;
    uint32_t name;  // the kernel's number for it
    Priority priority;
    bool operator==(const ProcessKind &) const = default;
};

// A link names a watcher: (process index << 1) when the process's own `next` carries the list on,
// (node index << 1 | 1) when a WatchNode does. Indices start at 1, so that 0 is no link.
//
// The rest of a process, in an array of its own: 12 bytes.
struct ProcessInfo {
    uint32_t next;           // link; in use when the process watches a slot
    uint32_t mark;           // its slot; when shared, the last delta cycle in which it was woken
    uint32_t kind : 31;      // the kernel's number for its kind
    uint32_t is_shared : 1;  // watches several slots: several may wake it in one delta cycle
};
static_assert(sizeof(ProcessInfo) == 12);

// A place in a slot's list for a process whose own link is taken.
struct WatchNode {
    uint32_t process;
    uint32_t next;
};

}  // namespace wf
