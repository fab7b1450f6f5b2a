// SPDX-License-Identifier: Apache-2.0
// Files are compared when somebody asks: they come and go while a script runs.
#include "host/shell/used_files.h"

#include <algorithm>
#include <filesystem>

namespace wf {
namespace {

namespace fs = std::filesystem;

bool is_same_file(const fs::path &one, const fs::path &other) {
    std::error_code error;
    const fs::file_status status = fs::status(one, error);
    if (fs::exists(status)) {
        return fs::is_regular_file(status) && fs::equivalent(one, other, error);
    }
    return !fs::exists(other, error) &&
           fs::weakly_canonical(fs::absolute(one), error) == fs::weakly_canonical(other, error);
}

}  // namespace

UsedFiles::UsedFiles()
    : files_{{"/dev/stdin", "standard input"},
             {"/dev/stdout", "standard output"},
             {"/dev/stderr", "standard error"}} {
}

void UsedFiles::reads(const std::string &path, const std::string &what) {
    std::error_code error;
    files_.push_back({fs::absolute(path, error), what});
}

void UsedFiles::writes(const std::string &path, const std::string &what) {
    std::erase_if(files_, [&](const UsedFile &file) { return file.what == what; });
    reads(path, what);
}

std::string UsedFiles::obstacle(const std::string &path, const std::string &what) const {
    const auto used = std::find_if(files_.begin(), files_.end(), [&](const UsedFile &file) {
        return file.what != what && is_same_file(path, file.path);
    });
    return used == files_.end() ? "" : path + ": the same file as " + used->what;
}

}  // namespace wf
