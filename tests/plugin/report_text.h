// SPDX-License-Identifier: Apache-2.0
// Reports as texts that tests can compare at a glance.
#pragma once

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

// The content of a file.
inline std::string text_of(const std::string &path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

// The text with each record of whole figures, which has three lines, in one: (NAME T0 T1 TX TC IG).
inline std::string records_in_lines(const std::string &report) {
    std::string text;
    size_t at = 0;
    for (size_t found = report.find("(T0 "); found != std::string::npos;
         found = report.find("(T0 ", found + 1)) {
        char figures[5][32];
        int length = 0;
        std::sscanf(report.c_str() + found,
                    "(T0 %31[0-9].%*[0]) (T1 %31[0-9].%*[0]) (TX %31[0-9].%*[0]) "
                    "(TC %31[0-9].%*[0]) (IG %31[0-9].%*[0]) )%n",
                    figures[0], figures[1], figures[2], figures[3], figures[4], &length);
        if (length == 0) {
            continue;
        }
        text += report.substr(at, report.rfind('\n', found) - at);
        for (const char *figure : figures) {
            text += std::string(" ") + figure;
        }
        text += ")";
        at = found + static_cast<size_t>(length);
    }
    return text + report.substr(at);
}
