// SPDX-License-Identifier: Apache-2.0
// Reports as texts that tests can compare at a glance.
#pragma once

#include <fstream>
#include <regex>
#include <sstream>
#include <string>

// The content of a file.
inline std::string text_of(const std::string &path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

// The text with each record, which has three lines, in one: (NAME T0 T1 TX TC IG).
inline std::string records_in_lines(const std::string &report) {
    static const std::regex record(R"(\n +\(T0 (\S+)\.0+\) \(T1 (\S+)\.0+\) \(TX (\S+)\.0+\))"
                                   R"(\n +\(TC (\S+)\.0+\) \(IG (\S+)\.0+\)\n +\))");
    return std::regex_replace(report, record, " $1 $2 $3 $4 $5)");
}
