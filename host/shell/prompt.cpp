// SPDX-License-Identifier: Apache-2.0
// The line editor has one state for the whole process and calls back without any context of ours,
// hence the file's variables.
#include "host/shell/prompt.h"

#include <editline/readline.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <optional>

#include "host/shell/completion.h"
#include "host/shell/interrupt.h"
#include "host/shell/transcript.h"

namespace wf {
namespace {

constexpr const char *first_prompt = "wfsim> ";
constexpr const char *next_prompt = "> ";
constexpr int history_lines = 1000;

// While a prompt is open.
struct {
    const Shell *shell = nullptr;
    Completion offered;
    size_t next = 0;
} completing;

const HeldInterrupts *interrupts = nullptr;  // while a line is being read

// --- completion ---

char *next_word(const char *, int state) {
    completing.next = state == 0 ? 0 : completing.next;
    const std::vector<std::string> &words = completing.offered.words;
    return completing.next == words.size() ? nullptr : strdup(words[completing.next++].c_str());
}

// Shows what there is to choose from below the line, and the line again.
void show_list() {
    int rows = 0;
    int columns = 0;
    rl_get_screen_size(&rows, &columns);
    const size_t width = columns > 0 ? static_cast<size_t>(columns) : 80;
    std::printf("\n%s", in_columns(completing.offered, width).c_str());
    std::fflush(stdout);
    rl_forced_update_display();
}

// The line editor puts in what all words have in common. A list is shown as soon as that is
// nothing.
char **complete_word(const char *word, int start, int) {
    rl_attempted_completion_over = 1;
    const std::string_view before{rl_line_buffer, static_cast<size_t>(start)};
    completing.offered = complete(*completing.shell, before, word);
    const Completion &offered = completing.offered;
    if (offered.words.size() > 1 && offered.common() == word) {
        show_list();
        return nullptr;
    }
    // Inside braces a blank would be part of the path.
    const bool in_braces = before.ends_with('{');
    rl_completion_append_character = offered.ends_word && !in_braces ? ' ' : 0;
    return rl_completion_matches(word, next_word);
}

// --- the line editor ---

// The next character typed; -1 at the end of the input and for the interrupt key.
int read_key(std::FILE *) {
    std::mbstate_t state = {};
    char byte = 0;
    wchar_t key = 0;
    while (interrupts->wait_for_input(STDIN_FILENO) && read(STDIN_FILENO, &byte, 1) == 1) {
        const size_t length = std::mbrtowc(&key, &byte, 1, &state);
        if (length == static_cast<size_t>(-1)) {
            state = {};
        } else if (length != static_cast<size_t>(-2)) {
            return static_cast<int>(key);
        }
    }
    return -1;
}

class LineEditor {
  public:
    explicit LineEditor(const Shell &shell) {
        completing.shell = &shell;
        rl_readline_name = "wfsim";
        rl_getc_function = read_key;
        rl_initialize();
        rl_catch_signals = 0;
        rl_basic_word_break_characters = " \t\n\";{}";
        rl_attempted_completion_function = complete_word;
        using_history();
        stifle_history(history_lines);
        if (const char *home = std::getenv("HOME")) {
            history_file_ = std::string(home) + "/.wfsim_history";
            read_history(history_file_.c_str());
        }
    }
    LineEditor(const LineEditor &) = delete;
    LineEditor &operator=(const LineEditor &) = delete;

    // The history is a convenience: a home that cannot be written to is not worth a message.
    ~LineEditor() {
        if (!history_file_.empty()) {
            write_history(history_file_.c_str());
        }
        clear_history();
        completing = {};
    }

    // Nothing at the end of the input, and after the interrupt key.
    std::optional<std::string> read_line(const char *prompt) {
        const HeldInterrupts held;
        interrupts = &held;
        char *typed = readline(prompt);
        interrupts = nullptr;
        if (typed == nullptr) {
            return std::nullopt;
        }
        std::string line(typed);
        std::free(typed);
        if (line.find_first_not_of(" \t") != std::string::npos) {
            add_history(line.c_str());
        }
        return line;
    }

  private:
    std::string history_file_;
};

ScriptEnd run_typed(Shell &shell, const std::string &commands) {
    shell.simulation().transcript.write_to_file(first_prompt + commands);
    const ScriptEnd end = shell.run_text(commands, {});
    const std::string result = shell.result();
    if (end == ScriptEnd::done && !result.empty()) {
        shell.simulation().transcript.print(result);
    }
    return end;
}

// Lines of standard input, which may be long in coming.
class StreamLines {
  public:
    // The next line with its line end; empty at the end of the input, and after an interrupt.
    std::string next() {
        size_t end = text_.find('\n');
        while (end == std::string::npos && read_more()) {
            end = text_.find('\n');
        }
        std::string line = text_.substr(0, end == std::string::npos ? end : end + 1);
        text_.erase(0, line.size());
        return interrupted_ ? "" : line;
    }
    bool interrupted() const { return interrupted_; }

  private:
    bool read_more() {
        const HeldInterrupts held;
        interrupted_ = !held.wait_for_input(STDIN_FILENO);
        char block[4096];
        const ssize_t count = interrupted_ ? 0 : read(STDIN_FILENO, block, sizeof block);
        text_.append(block, count < 0 ? 0 : static_cast<size_t>(count));
        return count > 0;
    }

    std::string text_;
    bool interrupted_ = false;
};

}  // namespace

ScriptEnd run_prompt(Shell &shell) {
    LineEditor editor(shell);
    std::string commands;
    for (;;) {
        shell.simulation().transcript.begin_line();
        const auto line = editor.read_line(commands.empty() ? first_prompt : next_prompt);
        if (!line) {
            shell.simulation().transcript.write("\n");
            const int signal = take_interrupt();
            if (signal == 0 || termination() != 0) {
                shell.note_interruption(signal);
                return ScriptEnd::done;
            }
            commands.clear();
            continue;
        }
        commands += *line + "\n";
        if (!Shell::is_complete(commands)) {
            continue;
        }
        const ScriptEnd end = run_typed(shell, std::exchange(commands, std::string()));
        if (end == ScriptEnd::quit || termination() != 0) {
            return end == ScriptEnd::quit ? end : ScriptEnd::done;
        }
        shell.forget_interruption();
    }
}

ScriptEnd run_stream(Shell &shell) {
    StreamLines lines;
    std::string commands;
    int first_line = 1;
    std::string line = lines.next();
    for (int line_number = 1; !line.empty(); ++line_number, line = lines.next()) {
        commands += line;
        if (!Shell::is_complete(commands)) {
            continue;
        }
        const ScriptEnd end = shell.run_text(commands, "<stdin>", first_line);
        if (end != ScriptEnd::done) {
            return end;
        }
        commands.clear();
        first_line = line_number + 1;
    }
    if (lines.interrupted()) {
        shell.note_interruption(take_interrupt());
        shell.simulation().transcript.print("Error: interrupted");
        return ScriptEnd::interrupted;
    }
    // What is left lacks a brace or a quote: let Tcl say so.
    return commands.empty() ? ScriptEnd::done : shell.run_text(commands, "<stdin>", first_line);
}

}  // namespace wf
