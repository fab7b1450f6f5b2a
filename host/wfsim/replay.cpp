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
    result_ = run_end(source_.advance_to(kernel_, limit, interrupt_flag()));
    damaged_ = damaged_ || result_ == RunEnd::damaged;
    return result_;
}

}  // namespace wf
