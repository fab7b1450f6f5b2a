// SPDX-License-Identifier: Apache-2.0
// Asking the simulator about its objects, one question a function. Needs a simulator to run in.
#pragma once

#include <string>

#include "host/kernel/kernel.h"
#include "host/source/vpi/interface.h"

namespace wf::vpi {

// The object's text, copied: every simulator keeps all texts in one buffer. Empty when it has none.
std::string text_of(PLI_INT32 property, vpiHandle object);

// An object's value as an integer, a constant's or a bound's, say.
int32_t integer_of(vpiHandle object);

// The bounds of an object's range; false when the simulator tells none.
bool range_of(vpiHandle object, int32_t *left, int32_t *right);

// The simulator's name for itself.
std::string product();

// The simulator's time in ticks.
Ticks time_now();
s_vpi_time time_record(Ticks time);

// Calls `visit` for every object of that relation; the handles are the visitor's.
template <typename Visit>
void for_each(PLI_INT32 relation, vpiHandle object, Visit visit) {
    vpiHandle iterator = vpi_iterate(relation, object);
    if (iterator == nullptr) {
        return;
    }
    while (vpiHandle found = vpi_scan(iterator)) {
        visit(found);
    }
}

// Asks for `function(data)` at a stage of a time step, `delay` ticks from now. Null when the
// simulator refuses.
using Callback = PLI_INT32 (*)(s_cb_data *);
vpiHandle call_back(PLI_INT32 reason, Callback function, Ticks delay = 0, void *data = nullptr);

// Asks for `function(data)` at the end of the current time step, when all its values have settled.
vpiHandle call_back_when_settled(Callback function, void *data = nullptr);

}  // namespace wf::vpi
