// SPDX-License-Identifier: Apache-2.0
// The file of a report on its way to its name: whatever ends the process or the disk's patience,
// what stands under the name is the old report or the new one, whole.
//
// A report is written to NAME.unfinished beside its name and moved there when it is whole, if the
// name is free or that of a regular file. A process that is killed leaves its unfinished file; the
// next report of that name removes it. Each writer holds a lock on its own, so that a living
// writer's is never taken for one left behind: two at once write .unfinished and .unfinished2.
//
// Anything else (a link, a pipe, a device) is written in place, and so is a file in a folder that
// takes no new files.
#ifndef WATTFORGE_PLUGIN_SAIF_REPORT_FILE_H
#define WATTFORGE_PLUGIN_SAIF_REPORT_FILE_H

#include <csignal>
#include <cstdio>

enum ReportPlace { REPORT_BESIDE_NAME, REPORT_IN_PLACE };

enum ReportEnd {
    REPORT_DONE,        // the whole report stands under its name
    REPORT_FAILED,      // none does; what stood there before does, if it was written beside it
    REPORT_INCOMPLETE,  // what stands there is not complete and could not be removed
    REPORT_NOT_MOVED    // whole, but it cannot be moved to its name: write it again, in place
};

struct ReportFile {
    FILE *stream = nullptr;      // to be written to
    const char *name = nullptr;  // the caller's
    char *unfinished = nullptr;  // what is written to; null: in place
    int lock = -1;               // a second descriptor of the unfinished file
    unsigned long device = 0;    // of the file that is open
    unsigned long inode = 0;
    bool is_regular = false;
    // While the file is open, the signals of a full quota and a closed pipe are held back in this
    // thread: both are errors of the writing, not the end of the simulator.
    sigset_t mask_before = {};
    sigset_t pending_before = {};
};

// Opens the file to write to, REPORT_IN_PLACE if it must be. 1, or 0 when it cannot be opened; then
// there is nothing to close. `name` has to outlive the file.
int report_file_open(ReportFile *file, const char *name, ReportPlace place);

// Closes it; with `whole` it gets its name, else it is removed. When that fails errno has the
// cause.
ReportEnd report_file_close(ReportFile *file, int whole);

#endif
