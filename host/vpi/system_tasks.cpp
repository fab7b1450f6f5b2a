// SPDX-License-Identifier: Apache-2.0
// Arguments are told apart by their kinds: numbers are written out, everything else is a text.
#include "host/vpi/system_tasks.h"

#include <charconv>
#include <memory>

#include "host/source/vpi/access.h"

namespace wf {
namespace {

struct SystemTask {
    std::string name;
    void (*run)(const std::string &line);
};

enum class ArgumentKind : uint8_t { text, integer, real };

ArgumentKind kind_of_constant(vpiHandle argument) {
    switch (vpi_get(vpiConstType, argument)) {
        case vpiStringConst:
            return ArgumentKind::text;
        case vpiRealConst:
            return ArgumentKind::real;
        default:
            return ArgumentKind::integer;
    }
}

ArgumentKind kind_of(vpiHandle argument) {
    switch (vpi_get(vpiType, argument)) {
        case vpiConstant:
        case vpiParameter:
            return kind_of_constant(argument);
        case vpiRealVar:
            return ArgumentKind::real;
        case vpiIntegerVar:
        case vpiTimeVar:
        case vpiLongIntVar:
        case vpiShortIntVar:
        case vpiIntVar:
        case vpiByteVar:
            return ArgumentKind::integer;
        default:
            return ArgumentKind::text;
    }
}

std::string real_text(double number) {
    char digits[32];
    return {digits, std::to_chars(digits, digits + sizeof digits, number).ptr};
}

std::string argument_text(vpiHandle argument) {
    s_vpi_value value{.format = vpiStringVal, .value = {.integer = 0}};
    const ArgumentKind kind = kind_of(argument);
    if (kind != ArgumentKind::text) {
        value.format = kind == ArgumentKind::real ? vpiRealVal : vpiDecStrVal;
    }
    vpi_get_value(argument, &value);
    if (kind == ArgumentKind::real) {
        return real_text(value.value.real);
    }
    return value.value.str == nullptr ? "" : value.value.str;
}

PLI_INT32 call(char *data) {
    const auto &task = *reinterpret_cast<const SystemTask *>(data);
    std::string line = task.name;
    vpi::for_each(vpiArgument, vpi_handle(vpiSysTfCall, nullptr),
                  [&line](vpiHandle argument) { line += " " + argument_text(argument); });
    task.run(line);
    return 0;
}

}  // namespace

void add_system_task(const std::string &name, void (*run)(const std::string &line)) {
    // The simulator keeps pointers to both for as long as it runs.
    static std::vector<std::unique_ptr<SystemTask>> tasks;
    static std::vector<std::unique_ptr<std::string>> names;
    tasks.push_back(std::make_unique<SystemTask>(SystemTask{name, run}));
    names.push_back(std::make_unique<std::string>("$" + name));
    s_vpi_systf_data request{};
    request.type = vpiSysTask;
    request.tfname = names.back()->c_str();
    request.calltf = call;
    request.user_data = reinterpret_cast<char *>(tasks.back().get());
    vpi_register_systf(&request);
}

}  // namespace wf
