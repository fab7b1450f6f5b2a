// SPDX-License-Identifier: Apache-2.0
// wfsim: a simulator whose events come from a recorded waveform. Here its parts are put together
// in the order in which they need each other, and taken apart in the reverse one.
#include <malloc.h>
#include <tcl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <memory>

#include "host/design/design.h"
#include "host/fli/plugins.h"
#include "host/fli/session.h"
#include "host/kernel/kernel.h"
#include "host/shell/interrupt.h"
#include "host/shell/message_watch.h"
#include "host/shell/progress_meter.h"
#include "host/shell/prompt.h"
#include "host/shell/shell.h"
#include "host/shell/transcript.h"
#include "host/shell/used_files.h"
#include "host/source/input.h"
#include "host/source/source.h"
#include "host/wfsim/exit_status.h"
#include "host/wfsim/options.h"
#include "host/wfsim/replay.h"
#include "host/wfsim/report_run.h"
#include "host/wfsim/writer.h"

namespace wf {
namespace {

namespace fs = std::filesystem;

struct CloseFile {
    void operator()(std::FILE *file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

int complain(const std::string &text, int status) {
    std::fprintf(stderr, "wfsim: %s\n", text.c_str());
    return status;
}

// --- scripts ---

// A -do word is a file if there is one of that name, or if it can hardly be anything else.
bool is_script_file(const std::string &word) {
    return access(word.c_str(), F_OK) == 0 || (word.find_first_of(" \t\n;") == std::string::npos &&
                                               word.find_first_of("./") != std::string::npos);
}

ScriptEnd run_given_scripts(Shell &shell, const std::vector<std::string> &scripts) {
    for (const std::string &script : scripts) {
        const ScriptEnd end =
            is_script_file(script) ? shell.run_file(script, {}) : shell.run_text(script, "-do");
        if (end != ScriptEnd::done) {
            return end;
        }
    }
    return ScriptEnd::done;
}

ScriptEnd run_shell(Shell &shell, const Options &options) {
    if (!options.scripts.empty()) {
        return run_given_scripts(shell, options.scripts);
    }
    const bool prompt = !options.batch && isatty(STDIN_FILENO) != 0;
    return prompt ? run_prompt(shell) : run_stream(shell);
}

int run_commands(const Simulation &simulation, const Options &options) {
    int status = exit_ok;
    {
        Shell shell(simulation);
        status = shell.exit_status(run_shell(shell, options));
    }
    Tcl_Finalize();
    return status;
}

// --- the program's parts ---

std::string load_plugins(Session &session, const std::vector<Plugin> &plugins) {
    for (const Plugin &plugin : plugins) {
        std::string error = session.load_plugin(plugin.function, plugin.library);
        if (!error.empty()) {
            return error;
        }
    }
    return {};
}

std::string start_trace(Session &session, const Options &options, File &file) {
    if (options.trace == TraceTo::transcript) {
        session.trace_to_console();
    } else if (options.trace == TraceTo::file) {
        file.reset(std::fopen(options.trace_file.c_str(), "w"));
        if (!file) {
            return options.trace_file + ": cannot open the trace: " + std::strerror(errno);
        }
        session.trace_to_file(file.get());
    }
    return {};
}

std::string finish_trace(Session &session, const std::string &path, File &file) {
    session.trace_off();
    if (!file) {
        return {};
    }
    const bool written = std::ferror(file.get()) == 0;
    const bool closed = std::fclose(file.release()) == 0;
    return written && closed ? "" : path + ": the trace could not be written completely";
}

// With everything loaded: does what the command line asks for, then lets the plug-ins go.
int simulate(const Simulation &simulation, const Options &options) {
    const bool one_command = !options.report.saif.empty();
    int status = one_command ? ReportRun(simulation, options.report).execute()
                             : run_commands(simulation, options);
    simulation.watch.tell_open_window();
    simulation.session.quit();
    status = simulation.watch.conclude(status, /*aloud=*/!one_command);
    if (status == exit_ok && !simulation.control.damage().empty()) {
        status = exit_damaged;
    }
    return status;
}

int replay(Source &source, Design &design, Transcript &transcript, UsedFiles &files,
           const Options &options, const std::vector<Plugin> &plugins) {
    Kernel kernel(design);
    Replay control(source, design, kernel);
    MessageWatch watch(transcript);
    File trace;
    int status = exit_ok;
    std::string error;
    {
        Session session(design, kernel, watch);
        error = start_trace(session, options, trace);
        if (error.empty()) {
            error = load_plugins(session, plugins);
        }
        if (error.empty()) {
            status =
                simulate({session, control, transcript, watch, files, options.strict}, options);
        }
        const std::string trace_error = finish_trace(session, options.trace_file, trace);
        error = error.empty() ? trace_error : error;
    }
    return error.empty() ? status : complain(error, exit_error);
}

std::unique_ptr<Source> open_waveform(const Options &options, Writer &writer, std::string *error) {
    if (options.command.words.empty()) {
        return open_source(options.waveform, error, last_interrupt_flag());
    }
    std::unique_ptr<Input> input = writer.waveform(error);
    return input == nullptr ? nullptr : open_source(std::move(input), error);
}

// Opens and loads the waveform, then replays it.
int run_waveform(Transcript &transcript, UsedFiles &files, ProgressMeter &meter,
                 const Options &options, const std::vector<Plugin> &plugins, Writer &writer) {
    std::string error;
    const std::unique_ptr<Source> source = open_waveform(options, writer, &error);
    if (!source) {
        return complain(error, exit_error);
    }
    Design design;
    if (meter.active()) {
        source->on_progress([&](const SourcePosition &position) {
            meter.update({.bytes_read = position.bytes_read,
                          .bytes_total = position.bytes_total,
                          .time = position.last_time,
                          .resolution_exponent = design.resolution_exponent});
        });
    }
    source->on_warning([&](const std::string &text) { transcript.print("Warning: " + text); });
    const bool loaded = source->load(design);
    meter.clear();
    if (!loaded) {
        return complain(source->error(), exit_damaged);
    }
    every_interrupt_is_the_last(!options.report.saif.empty());
    catch_interrupts(OnInterrupt::record);
    return replay(*source, design, transcript, files, options, plugins);
}

// WATTFORGE_LIBDIR comes from the build: the folder of libraries of the installation.
PluginOption foreign_option() {
    std::error_code ignored;
    const fs::path folder = fs::read_symlink("/proc/self/exe", ignored).parent_path();
    return {.name = "-foreign",
            .separator = ' ',
            .folders = {folder / ".." / "lib", folder, WATTFORGE_LIBDIR}};
}

// Nothing may be written over what is read or written under another name. Empty, or what would be.
std::string claim_files(const Options &options, UsedFiles &files) {
    if (options.waveform != "-" && options.command.words.empty()) {
        files.reads(options.waveform, "the waveform");
    }
    for (const std::string &script : options.scripts) {
        if (is_script_file(script)) {
            files.reads(script, "the script");
        }
    }
    if (!options.report.rtl.empty()) {
        files.reads(options.report.rtl, "the forward file");
    }
    const struct {
        const char *option;
        const std::string &path;
        const char *what;
    } outputs[] = {{"-l ", options.transcript, transcript_name},
                   {"-trace=", options.trace_file, "the trace"},
                   {"-saif ", options.report.saif, report_name}};
    for (const auto &[option, path, what] : outputs) {
        const std::string obstacle = path.empty() ? "" : files.obstacle(path, what);
        if (!obstacle.empty()) {
            return option + obstacle;
        }
        if (!path.empty() && what != report_name) {
            files.writes(path, what);
        }
    }
    return {};
}

int run(const Options &options) {
    std::vector<Plugin> plugins;
    std::string error = choose_plugins(options.foreign, foreign_option(), &plugins);
    if (!error.empty()) {
        return complain(error, options.foreign.empty() ? exit_error : exit_usage);
    }
    const bool commands_needed = options.scripts.empty() && options.report.saif.empty();
    if (commands_needed && !options.command.words.empty()) {
        return complain("the waveform is a command's, so commands need -do or -saif", exit_usage);
    }
    if (commands_needed && options.waveform == "-") {
        return complain("the waveform is standard input, so commands need -do or -saif",
                        exit_usage);
    }
    UsedFiles files;
    error = claim_files(options, files);
    if (!error.empty()) {
        return complain(error, exit_usage);
    }
    Transcript transcript(stdout);
    if (!transcript.set_file(options.transcript, &error)) {
        return complain(error, exit_error);
    }
    ProgressMeter meter(stderr, !options.quiet);
    transcript.before_output([&meter] { meter.clear(); });
    // While the waveform is loaded there is nothing to save, unless a command has been started.
    catch_interrupts(options.command.words.empty() ? OnInterrupt::leave : OnInterrupt::record);
    Writer writer;
    error = writer.start(options.command);
    if (!error.empty()) {
        return complain(error, exit_error);
    }
    ignore_closed_pipes();  // here, and not in the command
    int status = run_waveform(transcript, files, meter, options, plugins, writer);
    if (!transcript.set_file("", &error)) {
        status = complain(error, status == exit_ok ? exit_error : status);
    }
    if (transcript.screen_failed()) {
        status = complain("standard output could not be written completely",
                          status == exit_ok ? exit_error : status);
    }
    return writer.finish(status);
}

// A design's tables grow by doubling, and each command over all bits makes lists as long. Without
// this the C library would soon keep what they leave instead of giving it back.
void give_large_blocks_back() {
    constexpr int large = 1 << 20;
    mallopt(M_MMAP_THRESHOLD, large);
}

int run_program(int count, char **words) {
    give_large_blocks_back();
    Options options;
    const std::string error = parse_options(count, words, &options);
    if (!error.empty()) {
        return complain(error + "; wfsim -help tells more", exit_usage);
    }
    if (options.help) {
        std::fputs(usage_text, stdout);
        return exit_ok;
    }
    if (options.version) {
        std::puts("wfsim (Wattforge FLI) " WATTFORGE_VERSION);
        return exit_ok;
    }
    return run(options);
}

}  // namespace
}  // namespace wf

int main(int count, char **words) {
    try {
        return wf::run_program(count, words);
    } catch (const std::exception &exception) {
        return wf::complain(std::string("gave up: ") + exception.what(), wf::exit_error);
    }
}
