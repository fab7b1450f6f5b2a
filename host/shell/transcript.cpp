// SPDX-License-Identifier: Apache-2.0
// Every line is flushed: a transcript is read while it grows, and must be whole after a crash.
#include "host/shell/transcript.h"

#include <cerrno>
#include <cstring>
#include <utility>

namespace wf {

Transcript::Transcript(std::FILE *screen) : screen_(screen) {
}

Transcript::~Transcript() {
    std::string ignored;
    close_file(&ignored);
}

void Transcript::print(std::string_view text) {
    std::string whole = line_open_ ? "\n" : "";
    whole.append(text);
    whole += '\n';
    write(whole);
}

void Transcript::write(std::string_view text) {
    if (text.empty()) {
        return;
    }
    clear_way();
    line_open_ = text.back() != '\n';
    if (screen_ != nullptr && (std::fwrite(text.data(), 1, text.size(), screen_) != text.size() ||
                               std::fflush(screen_) != 0)) {
        screen_failed_ = true;
    }
    write_to_file(text);
}

void Transcript::begin_line() {
    clear_way();
    if (line_open_) {
        write("\n");
    }
}

void Transcript::write_to_file(std::string_view text) {
    if (file_ != nullptr && recording_) {
        // A failure stays in the stream's error mark, which closing looks at.
        std::fwrite(text.data(), 1, text.size(), file_);
        std::fflush(file_);
    }
}

bool Transcript::set_file(const std::string &path, std::string *error) {
    if (!close_file(error)) {
        return false;
    }
    if (path.empty()) {
        return true;
    }
    file_ = std::fopen(path.c_str(), "w");
    if (file_ == nullptr) {
        *error = path + ": cannot open the transcript: " + std::strerror(errno);
        return false;
    }
    path_ = path;
    return true;
}

bool Transcript::close_file(std::string *error) {
    if (file_ == nullptr) {
        return true;
    }
    const bool written = std::ferror(file_) == 0;
    const bool closed = std::fclose(file_) == 0;
    file_ = nullptr;
    const std::string path = std::exchange(path_, std::string());
    if (!written || !closed) {
        *error = path + ": the transcript could not be written completely";
        return false;
    }
    return true;
}

}  // namespace wf
