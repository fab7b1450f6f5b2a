// SPDX-License-Identifier: Apache-2.0
// Finds regions and signals by patterns and completes their paths. Reads the design, nothing else.
#ifndef WATTFORGE_HOST_SHELL_SEARCH_H
#define WATTFORGE_HOST_SHELL_SEARCH_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/design/design.h"

namespace wf {

struct Search {
    // Levels separated by '/', each matched as Tcl's `string match` does (*, ?, [ab], \ before a
    // special character) or letter for letter; a '*' stays within its level. Without a leading '/'
    // the pattern begins in the environment, or, when nothing matches there, at the roots.
    std::string pattern;
    // The last level's pattern is tried in every region below, too.
    bool recursive = false;
    // Only signals of these modes; empty: of any.
    std::vector<Mode> modes;
};

// Full paths in the design's order: a region's own matches before those of the regions below it.
std::vector<std::string> find_regions(Design &design, const Search &search);
std::vector<std::string> find_signals(Design &design, const Search &search);

// The paths that a half-typed one can become, one level on: "/top/u" gives "/top/u1" and "/top/up".
// The levels typed already stand in the results as they were typed. A region that is the only one
// and whole already gives itself with a '/' behind it.
std::vector<std::string> complete_path(Design &design, std::string_view typed);

}  // namespace wf

#endif
