// SPDX-License-Identifier: Apache-2.0
// Opening beside the name, moving, and writing in place.
#include "plugin/saif/report_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>

// --- signals ---

static const int write_signals[] = {SIGXFSZ, SIGPIPE};

static void hold_write_signals(ReportFile *file) {
    sigset_t held;
    sigemptyset(&held);
    for (const int signal : write_signals) {
        sigaddset(&held, signal);
    }
    sigpending(&file->pending_before);
    pthread_sigmask(SIG_BLOCK, &held, &file->mask_before);
}

// Those that the writing has raised are taken away first; they have been answered by its errors.
static void release_write_signals(const ReportFile *file) {
    const int cause = errno;
    for (const int signal : write_signals) {
        if (sigismember(&file->pending_before, signal) == 0) {
            sigset_t raised;
            sigemptyset(&raised);
            sigaddset(&raised, signal);
            const timespec no_wait = {};
            sigtimedwait(&raised, nullptr, &no_wait);
        }
    }
    pthread_sigmask(SIG_SETMASK, &file->mask_before, nullptr);
    errno = cause;
}

// --- beside the name ---

// What a folder, or a name's own kind, answers when a file can be written but not exchanged.
static bool is_refusal(int cause) {
    switch (cause) {
        case EACCES:
        case EPERM:
        case EROFS:
        case EBUSY:
        case EXDEV:
        case ENAMETOOLONG:
        case EEXIST:
            return true;
        default:
            return false;
    }
}

// A new text: NAME.unfinished, with a number from 2 on; a long name is cut.
static char *unfinished_name(const char *name, int number) {
    char mark[32] = ".unfinished";
    if (number > 1) {
        snprintf(mark, sizeof mark, ".unfinished%d", number);
    }
    const char *slash = strrchr(name, '/');
    const size_t folder = slash == nullptr ? 0 : static_cast<size_t>(slash + 1 - name);
    const size_t leaf = std::min(strlen(name) - folder, NAME_MAX - strlen(mark));
    const size_t size = folder + leaf + strlen(mark) + 1;
    auto *text = static_cast<char *>(malloc(size));
    if (text != nullptr) {
        snprintf(text, size, "%.*s%s", static_cast<int>(folder + leaf), name, mark);
    }
    return text;
}

// Whether the descriptor is locked now and still what has that name.
static bool lock_named(int descriptor, const char *path, bool lock_needed) {
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0 && (errno == EWOULDBLOCK || lock_needed)) {
        return false;
    }
    struct stat opened = {};
    struct stat named = {};
    return fstat(descriptor, &opened) == 0 && lstat(path, &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

// Removes a file that a writer left behind when it was killed: a regular one of ours that nobody
// holds a lock on.
static bool remove_left_behind(const char *path) {
    struct stat found = {};
    if (lstat(path, &found) != 0 || !S_ISREG(found.st_mode) || found.st_uid != geteuid()) {
        return false;
    }
    const int descriptor = open(path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    const bool removed = lock_named(descriptor, path, true) && unlink(path) == 0;
    close(descriptor);
    return removed;
}

// A locked descriptor of a new file of that name, or -1.
static int make_unfinished(const char *path) {
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    int descriptor = open(path, flags, 0666);
    if (descriptor < 0 && errno == EEXIST) {
        descriptor = remove_left_behind(path) ? open(path, flags, 0666) : -1;
        errno = EEXIST;
    }
    // Where there are no locks a new file is still nobody else's.
    if (descriptor >= 0 && !lock_named(descriptor, path, false)) {
        close(descriptor);
        descriptor = -1;
        errno = EEXIST;
    }
    return descriptor;
}

// What several writers left behind when they were killed.
static void remove_further_ones(const char *name, int number) {
    for (bool removed = true; removed; ++number) {
        char *path = unfinished_name(name, number);
        removed = path != nullptr && remove_left_behind(path);
        free(path);
    }
}

// Sets `unfinished` and `lock`.
static bool make_beside(ReportFile *file) {
    constexpr int most_writers = 100;
    for (int number = 1; number <= most_writers; ++number) {
        char *path = unfinished_name(file->name, number);
        const int descriptor = path == nullptr ? -1 : make_unfinished(path);
        if (descriptor >= 0) {
            file->unfinished = path;
            file->lock = descriptor;
            remove_further_ones(file->name, number + 1);
            return true;
        }
        const int cause = path == nullptr ? ENOMEM : errno;
        free(path);
        errno = cause;
        if (cause != EEXIST) {
            return false;
        }
    }
    return false;
}

static void close_unfinished(ReportFile *file) {
    const int cause = errno;
    close(file->lock);
    free(file->unfinished);
    file->unfinished = nullptr;
    file->lock = -1;
    errno = cause;
}

static bool open_beside(ReportFile *file) {
    if (!make_beside(file)) {
        return false;
    }
    // A stream of a descriptor of its own: the lock has to last until the file has its name.
    const int descriptor = fcntl(file->lock, F_DUPFD_CLOEXEC, 0);
    file->stream = descriptor < 0 ? nullptr : fdopen(descriptor, "w");
    if (file->stream != nullptr) {
        return true;
    }
    if (descriptor >= 0) {
        close(descriptor);
    }
    unlink(file->unfinished);
    close_unfinished(file);
    return false;
}

// The new file is for those whom the old one was for.
static void keep_owner_and_mode(const ReportFile *file, const struct stat *old) {
    struct stat made = {};
    if (fstat(file->lock, &made) != 0) {
        return;
    }
    if (made.st_uid != old->st_uid || made.st_gid != old->st_gid) {
        // Only the system's administrator gives files away; a report by another user is theirs.
        const int ignored = fchown(file->lock, old->st_uid, old->st_gid);
        (void)ignored;
    }
    fchmod(file->lock, old->st_mode & 0777);
}

// --- the whole way ---

static bool open_in_place(ReportFile *file) {
    file->stream = fopen(file->name, "w");
    struct stat opened = {};
    if (file->stream == nullptr || fstat(fileno(file->stream), &opened) != 0) {
        return file->stream != nullptr;
    }
    file->device = opened.st_dev;
    file->inode = opened.st_ino;
    file->is_regular = S_ISREG(opened.st_mode);
    return true;
}

static bool open_file(ReportFile *file, ReportPlace place) {
    struct stat old = {};
    const bool is_free = lstat(file->name, &old) != 0;
    if (place == REPORT_IN_PLACE || (!is_free && !S_ISREG(old.st_mode))) {
        return open_in_place(file);
    }
    if (is_free) {
        return open_beside(file) || open_in_place(file);
    }
    // A report that is protected from writing stays.
    const int descriptor = open(file->name, O_WRONLY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    close(descriptor);
    if (!open_beside(file)) {
        // Not on a full disk: that would empty the old report.
        return is_refusal(errno) && open_in_place(file);
    }
    keep_owner_and_mode(file, &old);
    return true;
}

int report_file_open(ReportFile *file, const char *name, ReportPlace place) {
    *file = ReportFile{};
    file->name = name;
    hold_write_signals(file);
    if (open_file(file, place)) {
        return 1;
    }
    release_write_signals(file);
    return 0;
}

// Removes what a failed report left under its name, so that nobody takes it for a whole one. Only a
// regular file that still is the one that was opened: the name may be a device, a pipe or a link.
static ReportEnd remove_partial(const ReportFile *file) {
    const int cause = errno;
    struct stat found = {};
    const bool is_there = file->is_regular && lstat(file->name, &found) == 0;
    const bool is_same = found.st_dev == file->device && found.st_ino == file->inode;
    const bool stays = is_there && (!is_same || unlink(file->name) != 0);
    errno = cause;
    return stays ? REPORT_INCOMPLETE : REPORT_FAILED;
}

static ReportEnd conclude(const ReportFile *file, int whole) {
    if (file->unfinished == nullptr) {
        return whole ? REPORT_DONE : remove_partial(file);
    }
    if (whole && rename(file->unfinished, file->name) == 0) {
        return REPORT_DONE;
    }
    const int cause = errno;
    unlink(file->unfinished);
    errno = cause;
    return whole && is_refusal(cause) ? REPORT_NOT_MOVED : REPORT_FAILED;
}

ReportEnd report_file_close(ReportFile *file, int whole) {
    const int cause = errno;
    const int closed = fclose(file->stream) == 0;
    if (!whole) {
        errno = cause;
    }
    const ReportEnd end = conclude(file, whole && closed);
    if (file->unfinished != nullptr) {
        close_unfinished(file);
    }
    release_write_signals(file);
    return end;
}
