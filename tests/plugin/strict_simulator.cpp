// SPDX-License-Identifier: Apache-2.0
// The interface's functions as the linker wraps them: checks, switches, then the real ones.
#include "tests/plugin/strict_simulator.h"

#include <acc_user.h>
#include <mti.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/support/scratch.h"

namespace wf::test {
namespace {

StrictSimulator *current = nullptr;

const Answers &answers() {
    static const Answers usual;
    return current == nullptr ? usual : current->answers;
}

[[noreturn]] void end_program(const char *function, const char *what) {
    std::fprintf(stderr, "strict simulator: %s: %s\n", function, what);
    std::abort();
}

Design &design() {
    return Session::current()->design;
}

// Each gives back what it was given, if that is what it should be.
mtiSignalIdT checked(const char *function, mtiSignalIdT signal) {
    return design().is_signal(signal) ? signal : (end_program(function, "no signal"), nullptr);
}
mtiTypeIdT checked(const char *function, mtiTypeIdT type) {
    return design().is_type(type) ? type : (end_program(function, "no type"), nullptr);
}
mtiRegionIdT checked(const char *function, mtiRegionIdT region) {
    return design().is_region(region) ? region : (end_program(function, "no region"), nullptr);
}
template <typename Pointer>
Pointer not_null(const char *function, Pointer pointer) {
    return pointer != nullptr ? pointer : (end_program(function, "null"), nullptr);
}

Signal *record_of(mtiSignalIdT signal) {
    return reinterpret_cast<Signal *>(signal);
}

bool is_among(const std::vector<std::string> &paths, mtiSignalIdT signal) {
    return std::any_of(paths.begin(), paths.end(), [signal](const std::string &path) {
        return design().find_object(path) == record_of(signal);
    });
}

mtiSignalIdT answer_to(std::string_view name, mtiSignalIdT usual) {
    Signal *exact = design().find_object(name);
    const Signal *found = record_of(usual);
    switch (answers().element) {
        case ElementAnswer::as_hosts:
            break;
        case ElementAnswer::whole:
            found = found == nullptr ? nullptr : Design::declared(found);
            break;
        case ElementAnswer::itself:
            found = exact == nullptr ? found : exact;
            break;
        case ElementAnswer::unlisted:
            found = exact != nullptr && exact->is_declared() ? exact : nullptr;
            break;
    }
    return reinterpret_cast<mtiSignalIdT>(const_cast<Signal *>(found));
}

// The compiled form of a locale's numbers: marks of six fields and the fields, in the machine's
// own order of bytes.
constexpr unsigned char comma_numbers[] = {
    0x14, 0x11, 0x03, 0x20, 6,   0, 0,  0, 32,  0, 0,  0, 34,  0,   0,   0,   36,  0,
    0,    0,    40,   0,    0,   0, 44, 0, 0,   0, 48, 0, 0,   0,   ',', 0,   '.', 0,
    3,    3,    0,    0,    ',', 0, 0,  0, '.', 0, 0,  0, 'A', 'S', 'C', 'I', 'I', 0};

}  // namespace

StrictSimulator::StrictSimulator(int resolution_exponent) : MemorySimulator(resolution_exponent) {
    current = this;
    const char *words = std::getenv("WATTFORGE_SIMULATOR");
    const std::string_view word = words == nullptr ? "" : words;
    if (word == "whole") {
        answers.element = ElementAnswer::whole;
    } else if (word == "itself") {
        answers.element = ElementAnswer::itself;
    } else if (word == "comma" && !set_comma_locale()) {
        end_program("setlocale", "there is no locale with a comma");
    }
}

StrictSimulator::~StrictSimulator() {
    if (session().ledger.outstanding() != 0) {
        end_program("mti_VsimFree", "not called for all that was handed out");
    }
    quit();
    reset_locale();
    current = nullptr;
}

bool set_comma_locale() {
    const std::filesystem::path file = scratch_file("comma/LC_NUMERIC");
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file).write(reinterpret_cast<const char *>(comma_numbers), sizeof comma_numbers);
    setenv("LOCPATH", file.parent_path().parent_path().c_str(), 1);
    return std::setlocale(LC_NUMERIC, "comma") != nullptr;
}

void reset_locale() {
    std::setlocale(LC_NUMERIC, "C");
}

}  // namespace wf::test

using namespace wf::test;

// NOLINTBEGIN(bugprone-reserved-identifier): the linker makes these names.
// Defines __wrap_NAME, whose body calls __real_NAME.
#define WRAPPED(result, name, ...)     \
    result __real_##name(__VA_ARGS__); \
    result __wrap_##name(__VA_ARGS__); \
    result __wrap_##name(__VA_ARGS__)
// A function of one handle that only has to be one.
#define CHECKED(result, name, handle_type)            \
    WRAPPED(result, name, handle_type object) {       \
        return __real_##name(checked(#name, object)); \
    }

extern "C" {

WRAPPED(void, mti_AddCommand, char *name, mtiVoidFuncPtrT function) {
    __real_mti_AddCommand(not_null("mti_AddCommand", name), not_null("mti_AddCommand", function));
}
WRAPPED(void, mti_AddQuitCB, mtiVoidFuncPtrT function, void *parameter) {
    if (answers().calls_back_at_quit) {
        __real_mti_AddQuitCB(not_null("mti_AddQuitCB", function), parameter);
    }
}
WRAPPED(void, mti_PrintMessage, char *text) {
    __real_mti_PrintMessage(not_null("mti_PrintMessage", text));
}
WRAPPED(void, mti_VsimFree, void *memory) {
    if (!wf::Session::current()->ledger.release(not_null("mti_VsimFree", memory))) {
        end_program("mti_VsimFree", "not out");
    }
}

WRAPPED(mtiRegionIdT, mti_FindRegion, char *name) {
    return __real_mti_FindRegion(not_null("mti_FindRegion", name));
}
CHECKED(mtiRegionIdT, mti_FirstLowerRegion, mtiRegionIdT)
CHECKED(mtiRegionIdT, mti_NextRegion, mtiRegionIdT)
CHECKED(char *, mti_GetRegionFullName, mtiRegionIdT)
CHECKED(char *, mti_GetRegionName, mtiRegionIdT)
CHECKED(int, mti_GetRegionKind, mtiRegionIdT)
WRAPPED(PLI_INT32, acc_fetch_fulltype, handle object) {
    checked("acc_fetch_fulltype", reinterpret_cast<mtiRegionIdT>(object));
    return __real_acc_fetch_fulltype(object);
}

WRAPPED(mtiSignalIdT, mti_FindSignal, char *name) {
    return answer_to(name, __real_mti_FindSignal(not_null("mti_FindSignal", name)));
}
CHECKED(mtiSignalIdT, mti_FirstSignal, mtiRegionIdT)
CHECKED(mtiRegionIdT, mti_GetSignalRegion, mtiSignalIdT)
CHECKED(char *, mti_GetSignalName, mtiSignalIdT)
WRAPPED(char *, mti_GetSignalNameIndirect, mtiSignalIdT signal, char *buf, int length) {
    checked("mti_GetSignalNameIndirect", signal);
    return answers().has_indirect_names ? __real_mti_GetSignalNameIndirect(signal, buf, length)
                                        : nullptr;
}
WRAPPED(mtiTypeIdT, mti_GetSignalType, mtiSignalIdT signal) {
    checked("mti_GetSignalType", signal);
    return is_among(answers().without_type, signal) ? nullptr : __real_mti_GetSignalType(signal);
}
WRAPPED(mtiSignalIdT *, mti_GetSignalSubelements, mtiSignalIdT signal, mtiSignalIdT *buf) {
    checked("mti_GetSignalSubelements", signal);
    return is_among(answers().without_elements, signal)
               ? nullptr
               : __real_mti_GetSignalSubelements(signal, buf);
}
CHECKED(mtiDirectionT, mti_GetSignalMode, mtiSignalIdT)
CHECKED(mtiInt32T, mti_GetSignalValue, mtiSignalIdT)

CHECKED(mtiTypeKindT, mti_GetTypeKind, mtiTypeIdT)
CHECKED(mtiTypeIdT, mti_GetArrayElementType, mtiTypeIdT)
CHECKED(char **, mti_GetEnumValues, mtiTypeIdT)
CHECKED(mtiInt32T, mti_TickLength, mtiTypeIdT)
CHECKED(mtiInt32T, mti_TickLeft, mtiTypeIdT)
CHECKED(mtiInt32T, mti_TickRight, mtiTypeIdT)
CHECKED(mtiInt32T, mti_TickDir, mtiTypeIdT)

WRAPPED(mtiProcessIdT, mti_CreateProcess, char *name, mtiVoidFuncPtrT function, void *parameter) {
    return __real_mti_CreateProcess(not_null("mti_CreateProcess", name),
                                    not_null("mti_CreateProcess", function), parameter);
}
WRAPPED(mtiProcessIdT, mti_CreateProcessWithPriority, char *name, mtiVoidFuncPtrT function,
        void *parameter, mtiProcessPriorityT priority) {
    return __real_mti_CreateProcessWithPriority(not_null("mti_CreateProcessWithPriority", name),
                                                not_null("mti_CreateProcessWithPriority", function),
                                                parameter, priority);
}
WRAPPED(void, mti_Sensitize, mtiProcessIdT process, mtiSignalIdT signal,
        mtiProcessTriggerT trigger) {
    __real_mti_Sensitize(not_null("mti_Sensitize", process), checked("mti_Sensitize", signal),
                         trigger);
}
}
// NOLINTEND(bugprone-reserved-identifier)
