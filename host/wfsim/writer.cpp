// SPDX-License-Identifier: Apache-2.0
// The FIFO is opened for reading before the program is started, so neither open waits for the
// other, and a program that does not wait for a reader finds one.
#include "host/wfsim/writer.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <initializer_list>

// In glibc 2.36 this header does not say that it is C.
extern "C" {
#include <sys/pidfd.h>
}

#include "host/shell/interrupt.h"
#include "host/wfsim/exit_status.h"

namespace wf {
namespace {

namespace fs = std::filesystem;

// --- what signal handlers need: plain memory, no allocation ---

char fifo_path[PATH_MAX];    // absolute; empty: none
char folder_path[PATH_MAX];  // the FIFO's own; empty: it has none
ino_t fifo_number = 0;
volatile std::sig_atomic_t process_of_writer = -1;

// False when the program has put a file of its own in its place.
bool is_our_fifo() {
    struct stat facts = {};
    return lstat(fifo_path, &facts) == 0 && S_ISFIFO(facts.st_mode) && facts.st_ino == fifo_number;
}

// A file that stands under a name that the user chose stays.
void remove_fifo() {
    if (fifo_path[0] != '\0') {
        if (folder_path[0] != '\0' || is_our_fifo()) {
            unlink(fifo_path);
        }
        fifo_path[0] = '\0';
    }
    if (folder_path[0] != '\0') {
        rmdir(folder_path);
        folder_path[0] = '\0';
    }
}

void pass_on(int signal) {
    if (process_of_writer >= 0) {
        pidfd_send_signal(process_of_writer, signal, nullptr, 0);
    }
}

// --- small things ---

// How long nothing has to come before it is asked why.
constexpr int pause_milliseconds = 500;

std::string system_error(int code) {
    return std::strerror(code);
}

// The path is known to be short enough: the system has taken it.
void copy_path(const std::string &path, char (&place)[PATH_MAX]) {
    place[path.copy(place, PATH_MAX - 1)] = '\0';
}

void close_descriptor(int *descriptor) {
    if (*descriptor >= 0) {
        close(*descriptor);
        *descriptor = -1;
    }
}

std::string with_path(std::string word, const std::string &path) {
    const std::size_t length = std::strlen(fifo_mark);
    for (std::size_t at = word.find(fifo_mark); at != std::string::npos;
         at = word.find(fifo_mark, at + path.size())) {
        word.replace(at, length, path);
    }
    return word;
}

// The signals that are taken over are held back until they are, and the FIFO is made and the
// program started meanwhile: none may come in between.
class HeldSignals {
  public:
    HeldSignals() {
        sigset_t held;
        sigemptyset(&held);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
            sigaddset(&held, signal);
        }
        sigprocmask(SIG_BLOCK, &held, &before_);
    }
    HeldSignals(const HeldSignals &) = delete;
    HeldSignals &operator=(const HeldSignals &) = delete;
    ~HeldSignals() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
    const sigset_t &before() const { return before_; }

  private:
    sigset_t before_;
};

// The end that is read. After an interrupt it does not wait for a program that neither writes nor
// ends.
class FifoInput : public Input {
  public:
    FifoInput(std::string name, int descriptor) : Input(std::move(name)), descriptor_(descriptor) {}
    uint64_t bytes_read() const override { return read_; }
    uint64_t bytes_total() const override { return 0; }

  protected:
    std::size_t fill(char *buffer, std::size_t size) override {
        pollfd wanted = {.fd = descriptor_, .events = POLLIN, .revents = 0};
        for (int count = 0; count <= 0;) {
            count = poll(&wanted, 1, pause_milliseconds);
            if (count == 0 && *interrupt_flag() != 0) {
                return 0;
            }
        }
        const ssize_t count = ::read(descriptor_, buffer, size);
        if (count < 0) {
            fail(system_error(errno));
            return 0;
        }
        read_ += static_cast<uint64_t>(count);
        return static_cast<std::size_t>(count);
    }

  private:
    int descriptor_;  // the writer's
    uint64_t read_ = 0;
};

}  // namespace

Writer::~Writer() {
    if (pid_ != 0) {
        terminate();
        drain();
        reap();
    }
    process_of_writer = -1;
    close_descriptor(&reading_);
    close_descriptor(&writing_);
    close_descriptor(&process_);
    std::error_code ignored;
    if (folder_path[0] != '\0') {
        fs::remove_all(folder_path, ignored);  // what an ended program may have left there, too
    }
    remove_fifo();
}

// --- its start ---

std::string Writer::start(const WriterOptions &options) {
    if (options.words.empty()) {
        return {};
    }
    name_ = fs::path(options.words.front()).filename();
    const HeldSignals held;
    std::string error = make_fifo(options.fifo);
    if (error.empty()) {
        error = open_fifo();
    }
    return error.empty() ? spawn(options.words, held.before()) : error;
}

std::string Writer::make_fifo(const std::string &name) {
    path_ = name;
    if (name.empty()) {
        std::error_code error;
        fs::path folder = fs::temp_directory_path(error);
        std::string pattern = (error ? fs::path("/tmp") : folder) / "wfsim.XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) {
            return pattern + ": cannot make a folder for the FIFO: " + system_error(errno);
        }
        copy_path(pattern, folder_path);
        path_ = pattern + "/waveform";
    }
    std::error_code error;
    const std::string whole = fs::absolute(path_, error);
    if (mkfifo(whole.c_str(), S_IRUSR | S_IWUSR) != 0) {
        return path_ + ": cannot make a FIFO: " + system_error(errno);
    }
    copy_path(whole, fifo_path);
    return {};
}

std::string Writer::open_fifo() {
    reading_ = open(fifo_path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    writing_ = open(fifo_path, O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    if (reading_ < 0 || writing_ < 0) {
        return path_ + ": cannot open the FIFO: " + system_error(errno);
    }
    struct stat facts = {};
    fstat(reading_, &facts);
    fifo_number = facts.st_ino;
    fcntl(reading_, F_SETFL, 0);
    // Fewer changes between the two programs; where the system allows less, so be it.
    constexpr int wanted_bytes = 1 << 20;
    fcntl(reading_, F_SETPIPE_SZ, wanted_bytes);
    return {};
}

std::string Writer::spawn(std::vector<std::string> words, const sigset_t &signals) {
    std::vector<char *> pointers;
    for (std::string &word : words) {
        word = with_path(word, path_);
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    posix_spawnattr_setsigmask(&attributes, &signals);
    const int code =
        posix_spawnp(&pid_, pointers[0], nullptr, &attributes, pointers.data(), environ);
    posix_spawnattr_destroy(&attributes);
    if (code != 0) {
        pid_ = 0;
        return words.front() + ": cannot be started: " + system_error(code);
    }
    process_ = pidfd_open(pid_, 0);
    if (process_ < 0) {
        const std::string cause = system_error(errno);
        terminate();
        reap();
        return words.front() + ": cannot be watched: " + cause;
    }
    process_of_writer = process_;
    relay_interrupts({.pass_on = pass_on, .leave = remove_fifo});
    return {};
}

// --- its waveform ---

bool Writer::has_ended() const {
    pollfd process = {.fd = process_, .events = POLLIN, .revents = 0};
    return poll(&process, 1, 0) > 0;
}

bool Writer::wait_for_bytes() {
    for (;;) {
        // The process first: what it wrote before its end is in the FIFO by then.
        const bool ended = has_ended();
        if (ended) {
            close_descriptor(&writing_);
        }
        pollfd wanted[] = {{.fd = reading_, .events = POLLIN, .revents = 0},
                           {.fd = ended ? -1 : process_, .events = POLLIN, .revents = 0}};
        const int count = poll(wanted, 2, pause_milliseconds);
        if (count == 0 && (!is_our_fifo() || (ended && *interrupt_flag() != 0))) {
            return false;
        }
        if (count > 0 && (wanted[0].revents & POLLIN) != 0) {
            return true;
        }
        if (count > 0 && wanted[0].revents != 0) {
            return false;
        }
    }
}

std::unique_ptr<Input> Writer::waveform(std::string *error) {
    const bool has_bytes = wait_for_bytes();
    close_descriptor(&writing_);
    if (!has_bytes && !is_our_fifo()) {
        *error = path_ + ": " + name_ +
                 " has put a file in the FIFO's place; writers of FST do so, and FST needs a file: "
                 "simulate first, then record from the file";
        return nullptr;
    }
    if (!has_bytes) {
        reap();
        ending_told_ = true;
        *error = ending() + " without writing a waveform to " + path_;
        return nullptr;
    }
    return std::make_unique<FifoInput>("waveform of " + name_, reading_);
}

// --- its end ---

void Writer::terminate() {
    kill(pid_, SIGTERM);
}

void Writer::drain() {
    std::vector<char> block(1U << 16);
    // Ours held open, the end of one waveform does not look like news for ever.
    writing_ = open(fifo_path, O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    pollfd wanted[] = {{.fd = reading_, .events = POLLIN, .revents = 0},
                       {.fd = process_, .events = POLLIN, .revents = 0}};
    while ((wanted[1].revents & POLLIN) == 0) {
        if (poll(wanted, 2, -1) <= 0) {
            continue;
        }
        if ((wanted[0].revents & POLLIN) != 0) {
            const ssize_t ignored = read(reading_, block.data(), block.size());
            (void)ignored;
        } else if (wanted[0].revents != 0) {
            wanted[0].fd = -1;
        }
    }
}

void Writer::reap() {
    while (pid_ != 0 && waitpid(pid_, &wait_status_, 0) < 0 && errno == EINTR) {
    }
    pid_ = 0;
}

int Writer::status() const {
    constexpr int from_signal = 128;
    return WIFSIGNALED(wait_status_) ? from_signal + WTERMSIG(wait_status_)
                                     : WEXITSTATUS(wait_status_);
}

std::string Writer::ending() const {
    if (WIFSIGNALED(wait_status_)) {
        const int signal = WTERMSIG(wait_status_);
        return name_ + " was ended by signal " + std::to_string(signal) + " (" + strsignal(signal) +
               ")";
    }
    const int status = WEXITSTATUS(wait_status_);
    return name_ + " ended" + (status == 0 ? "" : " with exit status " + std::to_string(status));
}

int Writer::finish(int status) {
    if (name_.empty()) {
        return status;
    }
    const bool failed = status == exit_error || status == exit_usage || status == exit_damaged;
    const bool ended_by_us = failed && pid_ != 0 && !has_ended();
    if (ended_by_us) {
        std::fprintf(stderr, "wfsim: ending %s, as nothing is recorded any more\n", name_.c_str());
        terminate();
    }
    if (pid_ != 0) {
        drain();
        reap();
    }
    if (ended_by_us || this->status() == 0) {
        return status;
    }
    if (!ending_told_) {
        std::fprintf(stderr, "wfsim: %s\n", ending().c_str());
    }
    return this->status();
}

}  // namespace wf
