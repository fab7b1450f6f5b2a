// SPDX-License-Identifier: Apache-2.0
#include "tests/support/scratch.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace wf::test {
namespace {

class Folder {
  public:
    Folder() : name_(std::filesystem::temp_directory_path() / "wattforge-test-XXXXXX") {
        if (mkdtemp(name_.data()) == nullptr) {
            throw std::runtime_error("cannot make the folder " + name_);
        }
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(name_, ignored);
    }
    Folder(const Folder &) = delete;
    Folder &operator=(const Folder &) = delete;
    const std::string &name() const { return name_; }

  private:
    std::string name_;
};

}  // namespace

std::string scratch_file(const std::string &name) {
    static const Folder folder;
    return folder.name() + "/" + name;
}

}  // namespace wf::test
