// SPDX-License-Identifier: Apache-2.0
// The command line of wfsim, taken apart. Checks words, opens nothing.
#ifndef WATTFORGE_HOST_WFSIM_OPTIONS_H
#define WATTFORGE_HOST_WFSIM_OPTIONS_H

#include <string>
#include <vector>

#include "host/wfsim/writer.h"

namespace wf {

// The options of the one-command form, as typed.
struct ReportOptions {
    std::string saif;  // empty: not the one-command form
    std::string instance;
    std::string start;
    std::string stop;
    std::string unit;
    std::vector<std::string> regions;
    std::string rtl;
    std::string testbench;
    std::vector<std::string> policies;
};

enum class TraceTo { nowhere, transcript, file };

struct Options {
    std::string waveform;
    WriterOptions command;             // instead of a waveform
    std::vector<std::string> foreign;  // "function library" each; empty: the default plug-in
    std::vector<std::string> scripts;  // files or commands, in order
    bool batch = false;
    bool quiet = false;
    bool strict = false;
    bool help = false;
    bool version = false;
    std::string transcript;
    TraceTo trace = TraceTo::nowhere;
    std::string trace_file;
    ReportOptions report;
};

// The text of -help.
extern const char *const usage_text;

// Empty, or what is wrong with the command line.
std::string parse_options(int count, char **words, Options *options);

}  // namespace wf

#endif
