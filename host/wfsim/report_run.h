// SPDX-License-Identifier: Apache-2.0
// The one-command form: record one stretch of time, write one report. It says to the plug-in what a
// script would say, through the same commands, and computes nothing beside it.
#ifndef WATTFORGE_HOST_WFSIM_REPORT_RUN_H
#define WATTFORGE_HOST_WFSIM_REPORT_RUN_H

#include <string>

#include "host/shell/run_notes.h"
#include "host/shell/simulation.h"
#include "host/wfsim/exit_status.h"
#include "host/wfsim/options.h"

namespace wf {

class ReportRun {
  public:
    // Both outlive this.
    ReportRun(const Simulation &simulation, const ReportOptions &options);

    // Does it all; every failure has been told in the transcript. After an interrupt or damage in
    // the waveform the report covers what was recorded until then.
    int execute();

  private:
    // Each answers false after telling why.
    bool settle_arguments();
    bool settle_names();
    bool settle_times();
    bool settle_unit();
    bool settle_output();
    bool settle_regions();
    bool select_signals();
    bool set_region();
    bool open_window();
    bool close_window();
    bool write_report();

    bool command(const std::string &name, const std::string &arguments);
    bool tell(const std::string &error);
    bool tell_passed_over(const std::string &path, const std::string &rival);
    bool is_region(const std::string &path) const;
    // Interruption and damage stay in the status.
    void run_until(Ticks limit);

    Simulation simulation_;
    ReportOptions options_;
    RunNotes notes_;
    Ticks start_ = 0;
    Ticks stop_ = run_to_end;
    int status_ = exit_ok;
};

}  // namespace wf

#endif
