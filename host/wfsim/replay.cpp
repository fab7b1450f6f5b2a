// SPDX-License-Identifier: Apache-2.0
// The source stops by itself at the interrupt flag; all that is left here is the translation.
#include "host/wfsim/replay.h"

#include "host/shell/interrupt.h"

namespace wf {
namespace {

RunEnd run_end(Progress progress) {
    switch (progress) {
        case Progress::reached:
            return RunEnd::reached;
        case Progress::end_of_data:
            return RunEnd::end_of_data;
        case Progress::damaged:
            return RunEnd::damaged;
        case Progress::interrupted:
            return RunEnd::interrupted;
    }
    return RunEnd::damaged;
}

}  // namespace

RunEnd Replay::start(Ticks limit) {
    // After a request to end time moves no further.
    if (termination() != 0 && *interrupt_flag() == 0) {
        result_ = RunEnd::interrupted;
        return result_;
    }
    result_ = run_end(source_.advance_to(kernel_, limit, interrupt_flag()));
    if (result_ == RunEnd::damaged) {
        damage_ = source_.error();
    }
    return result_;
}

std::string Replay::restart() {
    const bool rewound = source_.rewind(design_);
    kernel_.restart();
    result_ = RunEnd::reached;
    return rewound ? "" : source_.error();
}

}  // namespace wf
