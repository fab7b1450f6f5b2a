// SPDX-License-Identifier: Apache-2.0
// What the user asks of the module: the simulator's plusargs and the environment, taken apart.
// Opens nothing, needs no simulator.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace wf {

struct Arguments {
    std::string script;                // +wf_do=FILE, else WF_DO; empty: none
    std::vector<std::string> foreign;  // +wf_foreign=FUNCTION:LIBRARY each
    bool trace = false;                // +wf_trace
    bool strict = false;               // +wf_strict
    uint64_t memory_limit = 65536;     // +wf_memory=BITS
};

// Reads the words of the simulator's command line, of which only those that begin with +wf_ count;
// `script` is the value of WF_DO or null. Empty, or what is wrong.
std::string parse_arguments(const std::vector<std::string> &words, const char *script,
                            Arguments *arguments);

}  // namespace wf
