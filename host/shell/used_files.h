// SPDX-License-Identifier: Apache-2.0
// The files that a run reads and writes, so that no output is written over an input or over another
// output. Files are the same by device and inode, or, before they exist, by their names.
#ifndef WATTFORGE_HOST_SHELL_USED_FILES_H
#define WATTFORGE_HOST_SHELL_USED_FILES_H

#include <string>
#include <vector>

namespace wf {

// What messages call the files that several places write.
inline constexpr const char *transcript_name = "the transcript";
inline constexpr const char *report_name = "the report";

class UsedFiles {
  public:
    // Knows the process's standard input, output and error.
    UsedFiles();

    // `what` is what messages call the file: "the waveform".
    void reads(const std::string &path, const std::string &what);
    // The same; there is one file of that name, and it takes the place of the one before.
    void writes(const std::string &path, const std::string &what);

    // Empty, or why `path` must not be written to as `what`: `t.vcd: the same file as the
    // waveform`. Only regular files are looked at: devices and pipes may serve several ends.
    std::string obstacle(const std::string &path, const std::string &what) const;

  private:
    struct UsedFile {
        std::string path;
        std::string what;
    };
    std::vector<UsedFile> files_;
};

}  // namespace wf

#endif
