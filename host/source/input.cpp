// SPDX-License-Identifier: Apache-2.0
// The inputs: file and pipe by plain system calls, gzip by zlib, and memory.
#include "host/source/input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>
#include <vector>

namespace wf {
namespace {

class FileInput : public Input {
  public:
    // Owns `descriptor` unless it is standard input.
    FileInput(std::string name, int descriptor) : Input(std::move(name)), descriptor_(descriptor) {
        struct stat facts = {};
        if (fstat(descriptor, &facts) == 0 && S_ISREG(facts.st_mode)) {
            total_ = static_cast<uint64_t>(facts.st_size);
        }
        posix_fadvise(descriptor, 0, 0, POSIX_FADV_SEQUENTIAL);
    }
    ~FileInput() override {
        if (descriptor_ != STDIN_FILENO) {
            close(descriptor_);
        }
    }
    uint64_t bytes_read() const override { return read_; }
    uint64_t bytes_total() const override { return total_; }

  protected:
    std::size_t fill(char *buffer, std::size_t size) override {
        ssize_t count = 0;
        do {
            count = ::read(descriptor_, buffer, size);
        } while (count < 0 && errno == EINTR);
        if (count < 0) {
            fail(std::strerror(errno));
            return 0;
        }
        read_ += static_cast<uint64_t>(count);
        return static_cast<std::size_t>(count);
    }

  private:
    int descriptor_;
    uint64_t read_ = 0;
    uint64_t total_ = 0;
};

class GzipInput : public Input {
  public:
    explicit GzipInput(std::unique_ptr<Input> compressed)
        : Input(compressed->name()), compressed_(std::move(compressed)), block_(1U << 18) {
        const int window_bits_and_gzip_only = 15 + 16;
        if (inflateInit2(&stream_, window_bits_and_gzip_only) != Z_OK) {
            fail("no memory to decompress it");
        }
    }
    ~GzipInput() override { inflateEnd(&stream_); }
    uint64_t bytes_read() const override { return compressed_->bytes_read(); }
    uint64_t bytes_total() const override { return compressed_->bytes_total(); }

  protected:
    std::size_t fill(char *buffer, std::size_t size) override;

  private:
    // True if there are compressed bytes to work on.
    bool next_block();
    // Deals with an inflate result; false ends the filling.
    bool carry_on(int result);

    std::unique_ptr<Input> compressed_;
    std::vector<char> block_;
    z_stream stream_ = {};
    bool inside_member_ = false;  // some bytes of a stream have been taken, not yet its end
    bool after_member_ = false;   // at least one stream was complete
    bool finished_ = false;
};

bool GzipInput::next_block() {
    if (stream_.avail_in > 0) {
        return true;
    }
    const std::size_t count = compressed_->read(block_.data(), block_.size());
    stream_.next_in = reinterpret_cast<Bytef *>(block_.data());
    stream_.avail_in = static_cast<uInt>(count);
    return count > 0;
}

bool GzipInput::carry_on(int result) {
    if (result == Z_STREAM_END) {
        inside_member_ = false;
        after_member_ = true;
        inflateReset(&stream_);
    } else if (result == Z_DATA_ERROR && after_member_ && stream_.total_out == 0) {
        fail("other bytes after the end of the gzip stream");
    } else if (result != Z_OK && result != Z_BUF_ERROR) {
        fail(std::string("a damaged gzip stream (") +
             (stream_.msg != nullptr ? stream_.msg : "not a gzip header") + ")");
    }
    return !failed();
}

std::size_t GzipInput::fill(char *buffer, std::size_t size) {
    stream_.next_out = reinterpret_cast<Bytef *>(buffer);
    stream_.avail_out = static_cast<uInt>(std::min<std::size_t>(size, 1U << 30));
    const uInt wanted = stream_.avail_out;
    while (stream_.avail_out == wanted && !finished_ && !failed()) {
        if (!next_block()) {
            finished_ = true;
            if (compressed_->failed()) {
                fail(compressed_->failure());
            } else if (inside_member_) {
                fail("a truncated gzip stream");
            }
            break;
        }
        inside_member_ = true;
        carry_on(inflate(&stream_, Z_NO_FLUSH));
    }
    return wanted - stream_.avail_out;
}

class MemoryInput : public Input {
  public:
    MemoryInput(std::string name, std::string text, std::size_t piece)
        : Input(std::move(name)), text_(std::move(text)), piece_(piece) {}
    uint64_t bytes_read() const override { return read_; }
    uint64_t bytes_total() const override { return text_.size(); }

  protected:
    std::size_t fill(char *buffer, std::size_t size) override {
        const std::size_t count = std::min({size, piece_, text_.size() - read_});
        std::memcpy(buffer, text_.data() + read_, count);
        read_ += count;
        return count;
    }

  private:
    std::string text_;
    std::size_t piece_;
    std::size_t read_ = 0;
};

}  // namespace

std::size_t Input::read(char *buffer, std::size_t size) {
    if (peeked_.empty()) {
        return failed() ? 0 : fill(buffer, size);
    }
    const std::size_t count = std::min(size, peeked_.size());
    std::memcpy(buffer, peeked_.data(), count);
    peeked_.erase(0, count);
    return count;
}

std::string_view Input::peek(std::size_t size) {
    while (peeked_.size() < size && !failed()) {
        const std::size_t had = peeked_.size();
        peeked_.resize(size);
        const std::size_t count = fill(peeked_.data() + had, size - had);
        peeked_.resize(had + count);
        if (count == 0) {
            break;
        }
    }
    return std::string_view(peeked_).substr(0, size);
}

std::unique_ptr<Input> open_file_input(const std::string &path, std::string *error) {
    if (path == "-") {
        return std::make_unique<FileInput>("<stdin>", STDIN_FILENO);
    }
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        *error = path + ": expected a readable file, got: " + std::strerror(errno);
        return nullptr;
    }
    return std::make_unique<FileInput>(path, descriptor);
}

std::unique_ptr<Input> make_gzip_input(std::unique_ptr<Input> compressed) {
    return std::make_unique<GzipInput>(std::move(compressed));
}

std::unique_ptr<Input> make_memory_input(std::string name, std::string text, std::size_t piece) {
    return std::make_unique<MemoryInput>(std::move(name), std::move(text), piece);
}

}  // namespace wf
