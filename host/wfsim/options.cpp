// SPDX-License-Identifier: Apache-2.0
// Options stand in one table with the place that their word goes to; they may come before or after
// the waveform.
#include "host/wfsim/options.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace wf {

const char *const usage_text =
    R"(usage: wfsim [options] WAVEFORM
       wfsim [options] -- COMMAND...

Loads the design and its events from a waveform (VCD or GHW, plain or compressed with gzip or
bzip2, "-" for standard input), loads the plug-in, and runs a Tcl script or offers a prompt.
With COMMAND it makes a FIFO, starts COMMAND with the FIFO's path wherever COMMAND's words have {},
and records what COMMAND writes there while it runs.

  -do FILE|COMMANDS     run a script: the name of a file, else Tcl commands; may be repeated
  -c, -batch            never prompt; without -do read commands from standard input
  -foreign "FUNCTION LIBRARY"
                        load this plug-in instead of "swfli_init libswfli.so"; may be repeated
  -l FILE               write the transcript to a file, too
  -trace                show every call of the plug-in in the transcript
  -trace=FILE           the same, to a file
  -fifo NAME            make the FIFO under this name, the one that COMMAND writes to by itself
  -quiet                no progress line
  -strict               the first error of a plug-in ends the script at its command
  -help, -version

One command, without a script: record a stretch of time and write the report.

  -saif FILE            the report to write
  -instance PATH        the instance to report (default: the one top module)
  -region PATH          what to watch, may be repeated (default: the instance)
  -start TIME           when the window opens (default: 0); 100ns, 1.5us, or a number of ticks
  -stop TIME            when it closes (default: at the end)
  -unit SECONDS         time unit of the report (default: 1.0e-9; if the waveform's
                        resolution is coarser, that)
  -policy 'WORDS'       arguments of set_net_monitoring_policy, may be repeated
  -rtl FILE             forward SAIF file for read_rtl_saif
  -testbench PATH       the path that goes with -rtl

Exit status: 0 done; 1 error, also one that the plug-in reported; 2 wrong command line; 3 the
waveform is damaged (what lies before the damage was used); 130, 143, 129 interrupted by SIGINT,
SIGTERM, SIGHUP. A script's `quit -code N` gives N, unless N is 0 and there were errors. COMMAND's
own status if it failed, 128 and the signal's number if a signal ended it.
)";

namespace {

struct Option {
    const char *name;
    std::string *text = nullptr;               // takes a word, once
    std::vector<std::string> *list = nullptr;  // takes a word, as often as given
    bool *flag = nullptr;                      // takes none
    bool of_report = false;
};

// Takes the words after an option or the waveform one by one.
class Words {
  public:
    Words(int count, char **words) : count_(count), words_(words) {}
    // All that are left.
    std::vector<std::string> rest() const { return {words_ + at_, words_ + count_}; }
    const char *next() { return at_ < count_ ? words_[at_++] : nullptr; }

  private:
    int count_;
    char **words_;
    int at_ = 1;
};

const Option *find_option(const std::vector<Option> &table, const char *word) {
    // Two dashes are one too many for a simulator, but a habit elsewhere.
    const char *name = word[0] == '-' && word[1] == '-' ? word + 1 : word;
    for (const Option &option : table) {
        if (std::strcmp(option.name, name) == 0) {
            return &option;
        }
    }
    return nullptr;
}

std::string take_option(const Option &option, Words &words) {
    if (option.flag != nullptr) {
        *option.flag = true;
        return {};
    }
    const char *value = words.next();
    if (value == nullptr || *value == '\0') {
        return std::string(option.name) + " needs a word after it";
    }
    if (option.list != nullptr) {
        option.list->emplace_back(value);
        return {};
    }
    if (!option.text->empty()) {
        return std::string(option.name) + " is given twice";
    }
    *option.text = value;
    return {};
}

bool take_trace(const char *word, Options &options) {
    static constexpr std::string_view with_file = "-trace=";
    const std::string_view text(word);
    if (text == "-trace") {
        options.trace = TraceTo::transcript;
        return true;
    }
    if (text.starts_with(with_file) && text.size() > with_file.size()) {
        options.trace = TraceTo::file;
        options.trace_file = text.substr(with_file.size());
        return true;
    }
    return false;
}

bool has_fifo_mark(const std::vector<std::string> &words) {
    return std::any_of(words.begin(), words.end(), [](const std::string &word) {
        return word.find(fifo_mark) != std::string::npos;
    });
}

// Where the waveform comes from.
std::string check_origin(const Options &options) {
    const WriterOptions &command = options.command;
    if (command.words.empty()) {
        return !command.fifo.empty()      ? "-fifo goes with -- COMMAND only"
               : options.waveform.empty() ? "no waveform given"
                                          : "";
    }
    if (!options.waveform.empty()) {
        return "a waveform and a command exclude each other: " + options.waveform;
    }
    if (command.fifo.empty() && !has_fifo_mark(command.words)) {
        return "the command has no {} for the waveform's path, and no -fifo names it";
    }
    return {};
}

// What no single option can know.
std::string check_together(const Options &options, const char *report_option) {
    const ReportOptions &report = options.report;
    if (options.help || options.version) {
        return {};
    }
    if (std::string error = check_origin(options); !error.empty()) {
        return error;
    }
    if (report.saif.empty() && report_option != nullptr) {
        return std::string(report_option) + " goes with -saif only";
    }
    if (!report.saif.empty() && !options.scripts.empty()) {
        return "-saif and -do exclude each other";
    }
    if (!report.testbench.empty() && report.rtl.empty()) {
        return "-testbench goes with -rtl only";
    }
    return {};
}

std::vector<Option> option_table(Options &options) {
    ReportOptions &report = options.report;
    return {
        {.name = "-do", .list = &options.scripts},
        {.name = "-c", .flag = &options.batch},
        {.name = "-batch", .flag = &options.batch},
        {.name = "-foreign", .list = &options.foreign},
        {.name = "-l", .text = &options.transcript},
        {.name = "-fifo", .text = &options.command.fifo},
        {.name = "-quiet", .flag = &options.quiet},
        {.name = "-strict", .flag = &options.strict},
        {.name = "-help", .flag = &options.help},
        {.name = "-h", .flag = &options.help},
        {.name = "-version", .flag = &options.version},
        {.name = "-saif", .text = &report.saif},
        {.name = "-instance", .text = &report.instance, .of_report = true},
        {.name = "-region", .list = &report.regions, .of_report = true},
        {.name = "-start", .text = &report.start, .of_report = true},
        {.name = "-stop", .text = &report.stop, .of_report = true},
        {.name = "-unit", .text = &report.unit, .of_report = true},
        {.name = "-policy", .list = &report.policies, .of_report = true},
        {.name = "-rtl", .text = &report.rtl, .of_report = true},
        {.name = "-testbench", .text = &report.testbench, .of_report = true},
    };
}

}  // namespace

std::string parse_options(int count, char **words, Options *options) {
    const std::vector<Option> table = option_table(*options);
    const char *report_option = nullptr;
    Words rest(count, words);
    while (const char *word = rest.next()) {
        std::string error;
        if (std::strcmp(word, "--") == 0) {
            options->command.words = rest.rest();
            return options->command.words.empty() ? "no command after --"
                                                  : check_together(*options, report_option);
        }
        if (word[0] != '-' || word[1] == '\0') {
            error = options->waveform.empty() ? "" : "a second waveform: " + std::string(word);
            options->waveform = word;
        } else if (const Option *option = find_option(table, word)) {
            report_option = option->of_report ? option->name : report_option;
            error = take_option(*option, rest);
        } else if (!take_trace(word, *options)) {
            error = "unknown option " + std::string(word);
        }
        if (!error.empty()) {
            return error;
        }
    }
    return check_together(*options, report_option);
}

}  // namespace wf
