// SPDX-License-Identifier: Apache-2.0
// The commands that look at the design: find and examine.
#include "host/design/value_text.h"
#include "host/fli/session.h"
#include "host/shell/commands.h"
#include "host/shell/radix.h"
#include "host/shell/search.h"
#include "host/shell/shell.h"

namespace wf {
namespace {

Session &session_of(ClientData data) {
    return static_cast<Shell *>(data)->simulation().session;
}

// --- find ---

constexpr const char *find_usage =
    "usage: find regions|signals [-r] [-in] [-out] [-inout] [-internal] [-ports] PATTERN";

// False: no such option.
bool take_find_option(std::string_view option, Search &search) {
    const auto add = [&search](Mode mode) { search.modes.push_back(mode); };
    if (option == "-r" || option == "-recursive") {
        search.recursive = true;
    } else if (option == "-in") {
        add(Mode::in);
    } else if (option == "-out") {
        add(Mode::out);
    } else if (option == "-inout") {
        add(Mode::inout);
    } else if (option == "-internal") {
        add(Mode::internal);
    } else if (option == "-ports") {
        add(Mode::in);
        add(Mode::out);
        add(Mode::inout);
    } else {
        return false;
    }
    return true;
}

int find(ClientData data, Tcl_Interp *interp, int count, Tcl_Obj *const words[]) {
    const std::string_view kind = count > 1 ? text_of(words[1]) : "";
    const bool regions = kind == "regions" || kind == "instances";
    const bool signals = kind == "signals" || kind == "nets";
    Search search;
    for (int i = 2; i < count; ++i) {
        const std::string_view word = text_of(words[i]);
        if (!take_find_option(word, search)) {
            if (word.starts_with('-') || !search.pattern.empty()) {
                return fail(interp, find_usage);
            }
            search.pattern = word;
        }
    }
    if ((!regions && !signals) || search.pattern.empty()) {
        return fail(interp, find_usage);
    }
    Design &design = session_of(data).design;
    Tcl_Obj *list = Tcl_NewListObj(0, nullptr);
    for (const std::string &path :
         regions ? find_regions(design, search) : find_signals(design, search)) {
        Tcl_ListObjAppendElement(nullptr, list, new_text(path));
    }
    Tcl_SetObjResult(interp, list);
    return TCL_OK;
}

// --- examine ---

// A record or an array of other things than characters comes as a Tcl list, its outer braces off.
std::string examined_value(Session &session, const Signal &signal, Radix radix) {
    session.kernel.fetch(signal);
    std::string value = value_text(*signal.type, session.kernel.bytes(signal.slot));
    if (!signal.type->is_composite()) {
        return value;
    }
    return value.starts_with('{') ? value.substr(1, value.size() - 2) : in_radix(value, radix);
}

// The options before the paths; the position of the first path, or -1.
int take_examine_options(int count, Tcl_Obj *const words[], Radix *radix) {
    int i = 1;
    for (; i < count && text_of(words[i]).starts_with('-'); ++i) {
        std::string_view name = text_of(words[i]).substr(1);
        if (name == "radix" && i + 1 < count) {
            name = text_of(words[++i]);
        }
        if (!parse_radix(name, radix)) {
            return -1;
        }
    }
    return i < count ? i : -1;
}

int examine(ClientData data, Tcl_Interp *interp, int count, Tcl_Obj *const words[]) {
    Session &session = session_of(data);
    Radix radix = Radix::binary;
    const int first = take_examine_options(count, words, &radix);
    if (first < 0) {
        return fail(interp, "usage: examine [-radix binary|hex|unsigned|decimal] PATH...");
    }
    Tcl_Obj *values = Tcl_NewListObj(0, nullptr);
    Tcl_IncrRefCount(values);
    for (int i = first; i < count; ++i) {
        const Signal *signal = session.design.find_object(text_of(words[i]));
        if (signal == nullptr) {
            Tcl_DecrRefCount(values);
            return fail(interp, "examine: no signal \"" + std::string(text_of(words[i])) + "\"");
        }
        Tcl_ListObjAppendElement(nullptr, values,
                                 new_text(examined_value(session, *signal, radix)));
    }
    if (first + 1 == count) {
        Tcl_Obj *value = nullptr;
        Tcl_ListObjIndex(nullptr, values, 0, &value);
        Tcl_SetObjResult(interp, value);
    } else {
        Tcl_SetObjResult(interp, values);
    }
    Tcl_DecrRefCount(values);
    return TCL_OK;
}

}  // namespace

void add_design_commands(Tcl_Interp *interp, Shell &shell) {
    Tcl_CreateObjCommand(interp, "find", find, &shell, nullptr);
    Tcl_CreateObjCommand(interp, "examine", examine, &shell, nullptr);
}

}  // namespace wf
