// SPDX-License-Identifier: Apache-2.0
// A second simulator for the plug-in's tests: the one in memory, answering as the interface allows
// and our own hosts never do. A program that has the linker wrap the interface's functions
// (CMakeLists.txt) has every call pass through it.
//
// Always: a null or stale handle, or memory given back that is not out, ends the program with a
// line that names the function; so does memory that is still out when the simulator ends.
//
// By switch: what `answers` says. A run of the whole suite over another simulator is the program
// with WATTFORGE_SIMULATOR=whole, itself or comma in its environment.
#pragma once

#include <string>
#include <vector>

#include "tests/support/memory_design.h"

namespace wf::test {

// What mti_FindSignal answers to the name of an element or a field.
enum class ElementAnswer {
    as_hosts,  // as our hosts do
    whole,     // the declared signal, whatever follows its name
    itself,    // the element, be it an array or a record; the whole where there is no such element
    unlisted   // nothing
};

struct Answers {
    ElementAnswer element = ElementAnswer::as_hosts;
    bool has_indirect_names = true;
    bool calls_back_at_quit = true;  // false: restarts without having called the quit callbacks
    // The paths of signals that have, as far as the simulator tells, no type or no elements.
    std::vector<std::string> without_type;
    std::vector<std::string> without_elements;
};

// Made, ended and made again with the plug-in started in each, it is a simulator's restart that
// keeps its libraries: handles of the one before are stale.
class StrictSimulator : public MemorySimulator {
  public:
    explicit StrictSimulator(int resolution_exponent = -9);
    ~StrictSimulator();
    StrictSimulator(const StrictSimulator &) = delete;
    StrictSimulator &operator=(const StrictSimulator &) = delete;

    Answers answers;
};

// Gives the process a locale with a decimal comma (1.000,5) and takes it away again. False, with
// nothing changed, where the C library reads no such locale.
bool set_comma_locale();
void reset_locale();

}  // namespace wf::test
