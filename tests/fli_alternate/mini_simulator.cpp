// SPDX-License-Identifier: Apache-2.0
// A simulator in its smallest form, built against the second set of interface headers:
// loads a plug-in built against the same, drives one small design through it and compares the
// report with what the counting rules give. Usage: mini_simulator PLUGIN OUTPUT
#include <acc_user.h>
#include <mti.h>

#include <dlfcn.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Type {
    mtiTypeKindT kind;
    int left, right, direction, length;
    Type *element;
    std::vector<const char *> literals;
};

struct Process {
    mtiVoidFuncPtrT function;
    void *parameter;
    mtiProcessPriorityT priority;
};

struct Region;

struct Signal {
    std::string name;
    Type *type;
    mtiDirectionT mode;
    int value;
    Region *region;
    std::vector<Signal *> elements;
    std::vector<Process *> sensitive;
};

struct Region {
    std::string path;
    int kind;
    std::vector<Signal *> signals;
    Region *lower, *next;
};

Type logic{MTI_TYPE_ENUM,
           0,
           8,
           1,
           9,
           nullptr,
           {"'U'", "'X'", "'0'", "'1'", "'Z'", "'W'", "'L'", "'H'", "'-'"}};
Type pair{MTI_TYPE_ARRAY, 1, 0, -1, 2, &logic, {}};
Type count_type{MTI_TYPE_SCALAR, 0, 3, 1, 4, nullptr, {}};
Type record_type{MTI_TYPE_RECORD, 0, 0, 0, 1, nullptr, {}};
Type real_type{MTI_TYPE_REAL, 0, 0, 1, 0, nullptr, {}};

Region child{"/top/u1", 0, {}, nullptr, nullptr};
Region package{"/pack", 1040, {}, nullptr, nullptr};
Region top{"/top", 0, {}, &child, &package};

Signal clk{"clk", &logic, MTI_DIR_IN, 2, &top, {}, {}};
Signal bus1{"bus(1)", &logic, MTI_DIR_OUT, 1, &top, {}, {}};
Signal bus0{"bus(0)", &logic, MTI_DIR_OUT, 3, &top, {}, {}};
Signal bus{"bus", &pair, MTI_DIR_OUT, 0, &top, {&bus1, &bus0}, {}};
Signal level{"level", &count_type, MTI_INTERNAL, 1, &top, {}, {}};
Signal voltage{"voltage", &real_type, MTI_INTERNAL, 0, &top, {}, {}};
Signal flag{"rec.flag", &logic, MTI_INTERNAL, 2, &child, {}, {}};
Signal rec{"rec", &record_type, MTI_INTERNAL, 0, &child, {&flag}, {}};
Signal pad{"pad", &logic, MTI_DIR_INOUT, 4, &child, {}, {}};

std::map<std::string, mtiVoidFuncPtrT> commands;
std::vector<std::pair<mtiVoidFuncPtrT, void *>> quit_callbacks;
std::vector<std::string> messages;
int64_t now = 0;
const std::vector<Signal *> *walked = nullptr;
size_t walked_at = 0;
int faults = 0;

void fault(const char *text) {
    std::fprintf(stderr, "fault: %s\n", text);
    ++faults;
}

Region *region_of(void *handle) {
    return static_cast<Region *>(handle);
}
Signal *signal_of(void *handle) {
    return static_cast<Signal *>(handle);
}
Type *type_of(void *handle) {
    return static_cast<Type *>(handle);
}

char *copy(const std::string &text) {
    return strdup(text.c_str());
}

}  // namespace

extern "C" {

void mti_AddCommand(char *name, mtiVoidFuncPtrT function) {
    commands[name] = function;
}
void mti_AddQuitCB(mtiVoidFuncPtrT function, void *parameter) {
    quit_callbacks.emplace_back(function, parameter);
}
void mti_PrintMessage(char *text) {
    messages.emplace_back(text);
}
void mti_VsimFree(void *memory) {
    free(memory);
}

mtiRegionIdT mti_GetTopRegion() {
    return &top;
}
mtiRegionIdT mti_FindRegion(char *name) {
    for (Region *region : {&top, &child, &package}) {
        if (region->path == name) {
            return region;
        }
    }
    return nullptr;
}
mtiRegionIdT mti_FirstLowerRegion(mtiRegionIdT region) {
    return region_of(region)->lower;
}
mtiRegionIdT mti_NextRegion(mtiRegionIdT region) {
    return region_of(region)->next;
}
char *mti_GetRegionFullName(mtiRegionIdT region) {
    return copy(region_of(region)->path);
}
char *mti_GetRegionName(mtiRegionIdT region) {
    return const_cast<char *>(strrchr(region_of(region)->path.c_str(), '/') + 1);
}
int mti_GetRegionKind(mtiRegionIdT region) {
    return region_of(region)->kind;
}
int acc_fetch_fulltype(handle) {
    return 0;
}

mtiSignalIdT mti_FindSignal(char *name) {
    for (Signal *signal : {&clk, &bus1, &bus0, &bus, &level, &voltage, &flag, &rec, &pad}) {
        if (signal->region->path + "/" + signal->name == name) {
            return signal;
        }
    }
    return nullptr;
}
mtiSignalIdT mti_NextSignal() {
    return walked_at < walked->size() ? (*walked)[walked_at++] : nullptr;
}
mtiSignalIdT mti_FirstSignal(mtiRegionIdT region) {
    walked = &region_of(region)->signals;
    walked_at = 0;
    return mti_NextSignal();
}
mtiRegionIdT mti_GetSignalRegion(mtiSignalIdT signal) {
    return signal_of(signal)->region;
}
char *mti_GetSignalName(mtiSignalIdT signal) {
    static std::string name;
    name = signal_of(signal)->name;
    name.resize(name.find_first_of("(.") == std::string::npos ? name.size()
                                                              : name.find_first_of("(."));
    return name.data();
}
char *mti_GetSignalNameIndirect(mtiSignalIdT signal, char *, int) {
    return copy(signal_of(signal)->name);
}
mtiTypeIdT mti_GetSignalType(mtiSignalIdT signal) {
    return signal_of(signal)->type;
}
mtiSignalIdT *mti_GetSignalSubelements(mtiSignalIdT signal, mtiSignalIdT *) {
    const auto &elements = signal_of(signal)->elements;
    auto *answer = static_cast<mtiSignalIdT *>(calloc(elements.size(), sizeof(mtiSignalIdT)));
    for (size_t i = 0; i < elements.size(); ++i) {
        answer[i] = elements[i];
    }
    return answer;
}
mtiDirectionT mti_GetSignalMode(mtiSignalIdT signal) {
    return signal_of(signal)->mode;
}
mtiInt32T mti_GetSignalValue(mtiSignalIdT signal) {
    return signal_of(signal)->value;
}

mtiTypeKindT mti_GetTypeKind(mtiTypeIdT type) {
    return type_of(type)->kind;
}
mtiTypeIdT mti_GetArrayElementType(mtiTypeIdT type) {
    return type_of(type)->element;
}
char **mti_GetEnumValues(mtiTypeIdT type) {
    return const_cast<char **>(type_of(type)->literals.data());
}
mtiInt32T mti_TickLength(mtiTypeIdT type) {
    return type_of(type)->length;
}
mtiInt32T mti_TickLeft(mtiTypeIdT type) {
    return type_of(type)->left;
}
mtiInt32T mti_TickRight(mtiTypeIdT type) {
    return type_of(type)->right;
}
mtiInt32T mti_TickDir(mtiTypeIdT type) {
    return type_of(type)->direction;
}

mtiProcessIdT mti_CreateProcessWithPriority(char *, mtiVoidFuncPtrT function, void *parameter,
                                            mtiProcessPriorityT priority) {
    if (priority != MTI_PROC_NORMAL && priority != MTI_PROC_POSTPONED) {
        fault("a process with a priority that does not exist here");
    }
    return new Process{function, parameter, priority};
}
mtiProcessIdT mti_CreateProcess(char *name, mtiVoidFuncPtrT function, void *parameter) {
    return mti_CreateProcessWithPriority(name, function, parameter, MTI_PROC_NORMAL);
}
void mti_Sensitize(mtiProcessIdT process, mtiSignalIdT signal, mtiProcessTriggerT trigger) {
    if (trigger != MTI_EVENT) {
        fault("a process is not sensitised to events");
    }
    signal_of(signal)->sensitive.push_back(static_cast<Process *>(process));
}

mtiTime64T *mti_NowIndirect(mtiTime64T *buffer) {
    if (!buffer) {
        buffer = static_cast<mtiTime64T *>(malloc(sizeof(mtiTime64T)));
    }
    MTI_TIME64_ASGN(*buffer, now >> 32, now & 0xffffffff);
    return buffer;
}
int mti_GetResolutionLimit() {
    return -12;
}

}  // extern "C"

namespace {

void command(const std::string &line) {
    std::string text = line;
    commands.at(text.substr(0, text.find(' ')))(text.data());
}

struct Change {
    Signal *signal;
    int value;
};

void step(int64_t time, const std::vector<Change> &changes) {
    now = time;
    std::vector<Process *> postponed;
    for (const Change &change : changes) {
        change.signal->value = change.value;
        for (Process *process : change.signal->sensitive) {
            if (process->priority == MTI_PROC_POSTPONED) {
                postponed.push_back(process);
            } else {
                process->function(process->parameter);
            }
        }
    }
    for (Process *process : postponed) {
        process->function(process->parameter);
    }
}

// The window lies across the boundary of the time's two words.
void simulate(const std::string &output) {
    constexpr int64_t start = (int64_t{1} << 32) - 4000;
    command("set_net_monitoring_policy on /top");
    command("set_toggle_region /top /pack");
    now = start;
    command("toggle_start");
    step(start + 1000, {{&clk, 3}, {&level, 2}});
    step(start + 2000, {{&clk, 1}, {&bus1, 2}, {&pad, 3}});
    step(start + 5000, {{&clk, 3}, {&bus0, 2}, {&flag, 3}});
    step(start + 6000, {{&clk, 2}, {&bus0, 3}, {&bus0, 2}, {&pad, 7}});
    now = start + 8000;
    command("toggle_stop");
    command("toggle_report " + output + " 1.0e-9 /top");
}

constexpr const char *expected_body = R"((TIMESCALE 1 ns)
(DURATION 8.00)
(INSTANCE top
   (PORT
      (clk
         (T0 3.000000) (T1 2.000000) (TX 3.000000)
         (TC 2.000000) (IG 1.000000)
      )
      (bus\(1\)
         (T0 6.000000) (T1 0.000000) (TX 2.000000)
         (TC 0.000000) (IG 0.000000)
      )
      (bus\(0\)
         (T0 3.000000) (T1 5.000000) (TX 0.000000)
         (TC 1.000000) (IG 0.000000)
      )
   )
   (NET
      (level\(0\)
         (T0 7.000000) (T1 1.000000) (TX 0.000000)
         (TC 1.000000) (IG 0.000000)
      )
      (level\(1\)
         (T0 1.000000) (T1 7.000000) (TX 0.000000)
         (TC 1.000000) (IG 0.000000)
      )
   )
   (INSTANCE u1
      (PORT
         (pad
            (T0 0.000000) (T1 4.000000) (TX 4.000000)
            (TC 0.000000) (IG 0.000000)
         )
      )
      (NET
         (rec\.flag
            (T0 5.000000) (T1 3.000000) (TX 0.000000)
            (TC 1.000000) (IG 0.000000)
         )
      )
   )
)
)
)";

void check_report(const std::string &output) {
    std::ifstream file(output);
    std::stringstream text;
    text << file.rdbuf();
    const std::string got = text.str();
    const size_t body = got.find("(TIMESCALE");
    if (body == std::string::npos || got.substr(body) != expected_body) {
        fault("the report is not what the counting rules give");
        std::fprintf(stderr, "%s", got.c_str());
    }
}

}  // namespace

int main(int count, char **arguments) {
    if (count != 3) {
        std::fprintf(stderr, "usage: mini_simulator PLUGIN OUTPUT\n");
        return 2;
    }
    void *library = dlopen(arguments[1], RTLD_NOW);
    if (!library) {
        std::fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    top.signals = {&clk, &bus, &level, &voltage};
    child.signals = {&rec, &pad};
    using Init = void (*)(mtiRegionIdT, char *, mtiInterfaceListT *, mtiInterfaceListT *);
    reinterpret_cast<Init>(dlsym(library, "swfli_init"))(nullptr, nullptr, nullptr, nullptr);
    simulate(arguments[2]);
    check_report(arguments[2]);
    for (const auto &[function, parameter] : quit_callbacks) {
        function(parameter);
    }
    const std::string invalid =
        "Warning (KLVA-PWR): Not registered signal = /top/voltage; INVALID_TYPE";
    size_t invalid_lines = 0;
    for (const std::string &line : messages) {
        invalid_lines += line == invalid ? 1 : 0;
    }
    if (invalid_lines != 1 || commands.size() != 9) {
        fault("the messages or the commands are not the expected ones");
    }
    if (faults != 0) {
        for (const std::string &line : messages) {
            std::fprintf(stderr, "%s\n", line.c_str());
        }
        return 1;
    }
    std::puts("the report is right under the second set of headers");
    return 0;
}
