// SPDX-License-Identifier: Apache-2.0
// Callbacks find the simulator through one pointer; what comes after its end finds none.
#include "host/source/vpi/source.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "host/source/vpi/access.h"
#include "host/source/vpi/values.h"

namespace wf::vpi {
namespace {

Simulator *current = nullptr;

PLI_INT32 value_changed(s_cb_data *data) {
    if (current != nullptr) {
        current->mark(*reinterpret_cast<Object *>(data->user_data));
    }
    return 0;
}

PLI_INT32 value_arrived(s_cb_data *data) {
    if (current != nullptr) {
        current->receive(*reinterpret_cast<Object *>(data->user_data), *data->value);
    }
    return 0;
}

PLI_INT32 word_changed(s_cb_data *data) {
    if (current != nullptr) {
        current->mark_word(*reinterpret_cast<const Memory *>(data->user_data), data->index);
    }
    return 0;
}

PLI_INT32 step_ends(s_cb_data *) {
    if (current != nullptr) {
        current->settle();
    }
    return 0;
}

constexpr const char *ghdl_shortcomings =
    "Note: GHDL shows its modules no directions of ports and no packages, and no signals of "
    "record, enumeration, real, time or nested array types; they are not recorded";

PLI_INT32 format_of(Form form) {
    switch (form) {
        case Form::scalar:
            return vpiScalarVal;
        case Form::text:
            return vpiBinStrVal;
        case Form::real:
            return vpiRealVal;
    }
    return vpiSuppressVal;
}

const char *text_in(const s_vpi_value &value) {
    return value.value.str == nullptr ? "" : value.value.str;
}

// Has the simulator call `function(data)` at every change of the object, with the value in that
// format. False when it refuses.
bool send_changes(vpiHandle handle, Callback function, void *data,
                  PLI_INT32 format = vpiSuppressVal) {
    s_vpi_time time{.type = vpiSuppressTime, .high = 0, .low = 0, .real = 0};
    s_vpi_value value{.format = format, .value = {.integer = 0}};
    s_cb_data request{};
    request.reason = cbValueChange;
    request.cb_rtn = function;
    request.obj = handle;
    request.time = &time;
    request.value = &value;
    request.user_data = static_cast<char *>(data);
    return vpi_register_cb(&request) != nullptr;
}

Traits traits_of_simulator() {
    const std::string name = product();
    const bool is_ghdl = name == "GHDL";
    const bool is_icarus = name.starts_with("Icarus");
    return {.shortcomings = is_ghdl ? ghdl_shortcomings : nullptr,
            .offers_scalars = !is_ghdl,
            .offers_directions = !is_ghdl,
            .tells_vectors = is_ghdl,
            .offers_memories = !is_ghdl,
            .offers_system_tasks = !is_ghdl,
            .sends_values = is_icarus,
            .offers_net_ids = is_icarus,
            .ends_at_interrupts = !is_ghdl,
            .finishes_anywhere = !is_ghdl};
}

}  // namespace

Simulator::Simulator() : traits_(traits_of_simulator()) {
    current = this;
}

Simulator::~Simulator() {
    current = nullptr;
}

std::string Simulator::load(Design &design, uint64_t memory_limit) {
    design.resolution_exponent = vpi_get(vpiTimePrecision, nullptr);
    Declarations declarations(design, objects_, traits_, memory_limit);
    if (!declarations.read()) {
        return "expected a design of at most 4294967294 bits, got a larger one";
    }
    if (traits_.shortcomings != nullptr) {
        notes_.emplace_back(traits_.shortcomings);
    }
    note_left_out("memories of more than " + std::to_string(memory_limit) + " bits",
                  declarations.large_memories());
    note_left_out("arrays of two-state variables", declarations.two_state_arrays());
    uint32_t widest = 0;
    for (const Object &object : objects_.list) {
        widest = std::max(widest, object.width);
    }
    bits_.resize(widest);
    marked_.reserve(objects_.list.size());
    return {};
}

void Simulator::note_left_out(const std::string &what, const Declarations::LeftOut &left_out) {
    if (left_out.count != 0) {
        notes_.push_back(
            "Note: " + what + " are not recorded: " + left_out.first +
            (left_out.count == 1 ? "" : " and " + std::to_string(left_out.count - 1) + " more"));
    }
}

void Simulator::attach(Kernel &kernel) {
    kernel_ = &kernel;
    kernel.supply_from(this);
}

// GHDL stands at the end of all time when it has run out of events: what is known then is the time
// of the last step that was settled.
void Simulator::settle(bool ends) {
    const Ticks now = time_now();
    if (now != std::numeric_limits<Ticks>::max()) {
        kernel_->begin_step(now);
    }
    for (Object *object : marked_) {
        object->marked = false;
        if (object->arrives) {
            kernel_->set_bytes(object->slot, object->arrived, object->width);
        } else {
            read(*object);
        }
    }
    marked_.clear();
    if (ends) {
        kernel_->finish_step();
    }
}

void Simulator::mark(Object &object) {
    if (object.marked) {
        return;
    }
    object.marked = true;
    marked_.push_back(&object);
    if (marked_.size() == 1) {
        call_back_when_settled(step_ends);
    }
}

void Simulator::receive(Object &object, const s_vpi_value &value) {
    if (object.form == Form::scalar) {
        object.arrived[0] = decode_scalar(value.value.scalar);
    } else {
        decode_text(text_in(value), object.width, object.arrived);
    }
    mark(object);
}

void Simulator::mark_word(const Memory &memory, int32_t index) {
    const auto [lowest, highest] = std::minmax(memory.left, memory.right);
    if (index >= lowest && index <= highest) {
        const auto word = static_cast<uint32_t>(std::abs(index - memory.left));
        mark(objects_.list[memory.first_word + word]);
    }
}

size_t Simulator::object_at(Slot slot) const {
    const std::vector<Object> &list = objects_.list;
    const auto after =
        std::upper_bound(list.begin(), list.end(), slot,
                         [](Slot wanted, const Object &object) { return wanted < object.slot; });
    return static_cast<size_t>(after - list.begin()) - 1;
}

void Simulator::wanted(Slot first, uint32_t count) {
    std::vector<Object> &list = objects_.list;
    for (size_t i = object_at(first); i < list.size() && list[i].slot < first + count; ++i) {
        if (!list[i].watched) {
            read(list[i]);
        }
    }
}

void Simulator::watched(Slot slot) {
    Object &object = objects_.list[object_at(slot)];
    if (object.watched) {
        return;
    }
    if (object.memory == no_memory) {
        watch(object);
    } else {
        watch_memory(objects_.memories[object.memory]);
    }
}

void Simulator::watch(Object &object) {
    read(object);
    object.arrives = traits_.sends_values && object.form != Form::real && object.width <= narrow;
    object.watched =
        object.arrives ? send_changes(object.handle, value_arrived, &object, format_of(object.form))
                       : send_changes(object.handle, value_changed, &object);
}

void Simulator::watch_memory(Memory &memory) {
    const bool watched = send_changes(memory.handle, word_changed, &memory);
    const uint32_t words = static_cast<uint32_t>(std::abs(memory.left - memory.right)) + 1;
    for (uint32_t i = 0; i < words; ++i) {
        Object &word = objects_.list[memory.first_word + i];
        read(word);
        word.watched = watched;
    }
}

void Simulator::read(Object &object) {
    s_vpi_value value{.format = format_of(object.form), .value = {.integer = 0}};
    vpi_get_value(object.handle, &value);
    switch (object.form) {
        case Form::scalar:
            kernel_->set_byte(object.slot, decode_scalar(value.value.scalar));
            return;
        case Form::text:
            decode_text(text_in(value), object.width, bits_.data());
            kernel_->set_bytes(object.slot, bits_.data(), object.width);
            return;
        case Form::real:
            kernel_->set_real(object.slot, value.value.real);
            return;
    }
}

}  // namespace wf::vpi
