// SPDX-License-Identifier: Apache-2.0
// The inputs: file and pipe by plain system calls, gzip by zlib, bzip2 by its library, and memory.
#include "host/source/input.h"

#include <bzlib.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

namespace wf {
namespace {

class FileInput : public Input {
  public:
    // Owns `descriptor` unless it is standard input.
    FileInput(std::string name, int descriptor, StopFlag stop)
        : Input(std::move(name)), descriptor_(descriptor), stop_(stop) {
        if (fstat(descriptor, &opened_) == 0 && S_ISREG(opened_.st_mode)) {
            total_ = static_cast<uint64_t>(opened_.st_size);
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
    std::string rewind_obstacle() const override;
    bool stopped() const override { return stopped_; }

  protected:
    void go_to(uint64_t offset) override {
        if (lseek(descriptor_, static_cast<off_t>(offset), SEEK_SET) < 0) {
            fail(std::strerror(errno));
        }
        read_ = offset;
        over_at_.reset();
        stopped_ = false;
    }
    std::size_t fill(char *buffer, std::size_t size) override {
        ssize_t count = 0;
        if (stop_ != nullptr && !has_bytes()) {
            return 0;
        }
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
    using Clock = std::chrono::steady_clock;

    bool has_bytes();
    bool is_over();

    int descriptor_;
    struct stat opened_ = {};  // what the file was then
    StopFlag stop_;
    std::optional<Clock::time_point> over_at_;  // once the stop flag has been seen
    bool stopped_ = false;
    uint64_t read_ = 0;
    uint64_t total_ = 0;
};

// A file that is written to meanwhile may hold another design by now.
std::string FileInput::rewind_obstacle() const {
    struct stat facts = {};
    if (descriptor_ == STDIN_FILENO) {
        return "standard input cannot be read a second time";
    }
    if (!S_ISREG(opened_.st_mode)) {
        return name() + " is no regular file and cannot be read a second time";
    }
    const bool is_same = fstat(descriptor_, &facts) == 0 && facts.st_size == opened_.st_size &&
                         facts.st_mtim.tv_sec == opened_.st_mtim.tv_sec &&
                         facts.st_mtim.tv_nsec == opened_.st_mtim.tv_nsec;
    return is_same ? "" : name() + " has changed since it was opened";
}

bool FileInput::is_over() {
    if (*stop_ == 0) {
        return false;
    }
    if (!over_at_) {
        over_at_ = Clock::now() + std::chrono::seconds(1);
    }
    stopped_ = Clock::now() >= *over_at_;
    return stopped_;
}

// Waits for a pipe's bytes (or its end); false: the reading is stopped. Signals come only while it
// waits, so that none gets lost between looking at the flag and waiting.
bool FileInput::has_bytes() {
    if (total_ != 0) {
        return !is_over();
    }
    sigset_t held;
    sigset_t before;
    sigfillset(&held);
    pthread_sigmask(SIG_BLOCK, &held, &before);
    pollfd wanted = {.fd = descriptor_, .events = POLLIN, .revents = 0};
    constexpr timespec a_moment = {.tv_sec = 0, .tv_nsec = 50'000'000};
    int ready = 0;
    while (ready == 0 && !is_over()) {
        ready = ppoll(&wanted, 1, over_at_ ? &a_moment : nullptr, &before);
        ready = ready < 0 && errno == EINTR ? 0 : ready;
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return !stopped_;
}

// What decompressors have in common: they take blocks and know one stream from the next.
class CompressedInput : public Input {
  public:
    CompressedInput(std::unique_ptr<Input> compressed, std::string format)
        : Input(compressed->name()),
          compressed_(std::move(compressed)),
          format_(std::move(format)),
          block_(1U << 18) {}
    uint64_t bytes_read() const override { return compressed_->bytes_read(); }
    uint64_t bytes_total() const override { return compressed_->bytes_total(); }
    std::string rewind_obstacle() const override { return compressed_->rewind_obstacle(); }
    bool stopped() const override { return compressed_->stopped(); }

  protected:
    // What became of one call of the decompressor.
    enum class Result : uint8_t { more, stream_end, damage };

    std::size_t fill(char *buffer, std::size_t size) override;
    void go_to(uint64_t offset) override;

    // Hands over compressed bytes.
    virtual void give(char *bytes, unsigned size) = 0;
    // Compressed bytes that are left.
    virtual unsigned left() const = 0;
    // Decompresses as far as it goes to `buffer`, and counts the bytes that it wrote there.
    virtual Result decompress(char *buffer, unsigned size, unsigned *written) = 0;
    // Prepares for another stream; bytes that are left stay.
    virtual void restart() = 0;
    // What the library says of damage.
    virtual std::string cause() const = 0;

  private:
    // True if there are compressed bytes to work on.
    bool next_block();
    void finish(Result result, unsigned written);

    std::unique_ptr<Input> compressed_;
    std::string format_;
    std::vector<char> block_;
    bool inside_stream_ = false;  // some bytes of a stream have been taken, not yet its end
    bool after_stream_ = false;   // at least one stream was complete
    uint64_t written_ = 0;        // of this stream
    bool finished_ = false;
};

bool CompressedInput::next_block() {
    if (left() > 0) {
        return true;
    }
    const std::size_t count = compressed_->read(block_.data(), block_.size());
    give(block_.data(), static_cast<unsigned>(count));
    return count > 0;
}

void CompressedInput::finish(Result result, unsigned written) {
    written_ += written;
    if (result == Result::stream_end) {
        inside_stream_ = false;
        after_stream_ = true;
        written_ = 0;
        restart();
    } else if (result == Result::damage) {
        fail(after_stream_ && written_ == 0
                 ? "other bytes after the end of the " + format_ + " stream"
                 : "a damaged " + format_ + " stream (" + cause() + ")");
    }
}

std::size_t CompressedInput::fill(char *buffer, std::size_t size) {
    const auto wanted = static_cast<unsigned>(std::min<std::size_t>(size, 1U << 30));
    unsigned written = 0;
    while (written == 0 && !finished_ && !failed()) {
        if (!next_block()) {
            finished_ = true;
            if (compressed_->failed()) {
                fail(compressed_->failure());
            } else if (inside_stream_) {
                fail("a truncated " + format_ + " stream");
            }
            break;
        }
        inside_stream_ = true;
        const Result result = decompress(buffer, wanted, &written);
        finish(result, written);
    }
    return written;
}

// A place in a stream is reached by decompressing what lies before it.
void CompressedInput::go_to(uint64_t offset) {
    if (!compressed_->rewind_to(0)) {
        fail(compressed_->failure());
        return;
    }
    give(block_.data(), 0);
    restart();
    inside_stream_ = after_stream_ = finished_ = false;
    written_ = 0;
    std::vector<char> passed(block_.size());
    while (offset > 0) {
        const std::size_t count = fill(passed.data(), std::min<uint64_t>(offset, passed.size()));
        if (count == 0) {
            return;
        }
        offset -= count;
    }
}

class GzipInput : public CompressedInput {
  public:
    explicit GzipInput(std::unique_ptr<Input> compressed)
        : CompressedInput(std::move(compressed), "gzip") {
        const int window_bits_and_gzip_only = 15 + 16;
        if (inflateInit2(&stream_, window_bits_and_gzip_only) != Z_OK) {
            fail("no memory to decompress it");
        }
    }
    ~GzipInput() override { inflateEnd(&stream_); }

  protected:
    void give(char *bytes, unsigned size) override {
        stream_.next_in = reinterpret_cast<Bytef *>(bytes);
        stream_.avail_in = size;
    }
    unsigned left() const override { return stream_.avail_in; }
    Result decompress(char *buffer, unsigned size, unsigned *written) override {
        stream_.next_out = reinterpret_cast<Bytef *>(buffer);
        stream_.avail_out = size;
        const int result = inflate(&stream_, Z_NO_FLUSH);
        *written = size - stream_.avail_out;
        return result == Z_STREAM_END                    ? Result::stream_end
               : result == Z_OK || result == Z_BUF_ERROR ? Result::more
                                                         : Result::damage;
    }
    void restart() override { inflateReset(&stream_); }
    std::string cause() const override {
        return stream_.msg != nullptr ? stream_.msg : "not a gzip header";
    }

  private:
    z_stream stream_ = {};
};

class Bzip2Input : public CompressedInput {
  public:
    explicit Bzip2Input(std::unique_ptr<Input> compressed)
        : CompressedInput(std::move(compressed), "bzip2") {
        start();
    }
    ~Bzip2Input() override { BZ2_bzDecompressEnd(&stream_); }

  protected:
    void give(char *bytes, unsigned size) override {
        stream_.next_in = bytes;
        stream_.avail_in = size;
    }
    unsigned left() const override { return stream_.avail_in; }
    Result decompress(char *buffer, unsigned size, unsigned *written) override {
        stream_.next_out = buffer;
        stream_.avail_out = size;
        result_ = BZ2_bzDecompress(&stream_);
        *written = size - stream_.avail_out;
        return result_ == BZ_STREAM_END ? Result::stream_end
               : result_ == BZ_OK       ? Result::more
                                        : Result::damage;
    }
    void restart() override {
        BZ2_bzDecompressEnd(&stream_);
        start();
    }
    std::string cause() const override {
        return result_ == BZ_DATA_ERROR_MAGIC ? "not a bzip2 header"
               : result_ == BZ_MEM_ERROR      ? "no memory to decompress it"
                                              : "its checksum or its codes are wrong";
    }

  private:
    void start() {
        if (BZ2_bzDecompressInit(&stream_, 0, 0) != BZ_OK) {
            fail("no memory to decompress it");
        }
    }

    bz_stream stream_ = {};
    int result_ = BZ_OK;
};

class MemoryInput : public Input {
  public:
    MemoryInput(std::string name, std::string text, std::size_t piece)
        : Input(std::move(name)), text_(std::move(text)), piece_(piece) {}
    uint64_t bytes_read() const override { return read_; }
    uint64_t bytes_total() const override { return text_.size(); }
    std::string rewind_obstacle() const override { return {}; }

  protected:
    void go_to(uint64_t offset) override { read_ = offset; }
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

bool Input::rewind_to(uint64_t offset) {
    peeked_.clear();
    failure_.clear();
    go_to(offset);
    return !failed();
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

std::unique_ptr<Input> open_file_input(const std::string &path, std::string *error, StopFlag stop) {
    if (path == "-") {
        return std::make_unique<FileInput>("<stdin>", STDIN_FILENO, stop);
    }
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        *error = path + ": expected a readable file, got: " + std::strerror(errno);
        return nullptr;
    }
    return std::make_unique<FileInput>(path, descriptor, stop);
}

std::unique_ptr<Input> make_gzip_input(std::unique_ptr<Input> compressed) {
    return std::make_unique<GzipInput>(std::move(compressed));
}

std::unique_ptr<Input> make_bzip2_input(std::unique_ptr<Input> compressed) {
    return std::make_unique<Bzip2Input>(std::move(compressed));
}

std::unique_ptr<Input> make_memory_input(std::string name, std::string text, std::size_t piece) {
    return std::make_unique<MemoryInput>(std::move(name), std::move(text), piece);
}

}  // namespace wf
