// SPDX-License-Identifier: Apache-2.0
// Names carry brackets of their own, escaped with a backslash; header texts may in quotes.
#include "host/wfsim/saif_check.h"

#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

namespace wf {
namespace {

constexpr std::string_view opening = "(SAIFILE\n";

struct CloseFile {
    void operator()(std::FILE *file) const { std::fclose(file); }
};

// The characters that mean something anywhere; between them a report is long runs of names, figures
// and blanks, and a large one is read back only as fast as those are passed over.
constexpr std::array<bool, 256> make_marks() {
    std::array<bool, 256> marks{};
    for (const char mark : {'(', ')', '"', '\\'}) {
        marks[static_cast<unsigned char>(mark)] = true;
    }
    return marks;
}
constexpr std::array<bool, 256> is_mark = make_marks();

class BracketCount {
  public:
    void take(std::string_view text) {
        for (size_t at = 0; at < text.size(); ++at) {
            if (!escaped_ && !closed_) {
                at = next_mark(text, at);
                if (at == text.size()) {
                    return;
                }
            }
            take(text[at]);
        }
    }
    bool complete() const { return closed_ && !closed_early_ && !quoted_; }
    std::int64_t open() const { return open_; }

  private:
    static size_t next_mark(std::string_view text, size_t at) {
        while (at < text.size() && !is_mark[static_cast<unsigned char>(text[at])]) {
            ++at;
        }
        return at;
    }
    void take(char c) {
        closed_early_ = closed_early_ || (closed_ && c != '\n');
        if (escaped_) {
            escaped_ = false;
        } else if (c == '\\') {
            escaped_ = true;
        } else if (c == '"') {
            quoted_ = !quoted_;
        } else if (!quoted_ && c == '(') {
            ++open_;
        } else if (!quoted_ && c == ')') {
            closed_ = --open_ == 0;
        }
    }

    std::int64_t open_ = 0;
    bool closed_ = false;
    bool closed_early_ = false;
    bool escaped_ = false;
    bool quoted_ = false;
};

}  // namespace

std::string check_saif_file(const std::string &path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        return {};
    }
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "r"));
    if (!file) {
        return path + ": expected a report, got: " + std::strerror(errno);
    }
    static std::array<char, 1 << 16> block;
    BracketCount brackets;
    bool first = true;
    while (const size_t size = std::fread(block.data(), 1, block.size(), file.get())) {
        const std::string_view text(block.data(), size);
        if (first && !text.starts_with(opening)) {
            return path + ": expected a report that begins with (SAIFILE, got something else";
        }
        first = false;
        brackets.take(text);
    }
    if (std::ferror(file.get()) != 0) {
        return path + ": cannot read it back: " + std::strerror(errno);
    }
    return brackets.complete() ? ""
                               : path + ": expected a complete report, got one with " +
                                     std::to_string(brackets.open()) + " brackets left open";
}

}  // namespace wf
