// SPDX-License-Identifier: Apache-2.0
// The commands that look at the design: find, examine, and their defaults, environment and radix.
#include "host/design/value_text.h"
#include "host/fli/session.h"
#include "host/shell/commands.h"
#include "host/shell/radix.h"
#include "host/shell/search.h"
#include "host/shell/shell.h"
#include "host/shell/words.h"

namespace wf {
namespace {

Shell &shell_of(ClientData data) {
    return *static_cast<Shell *>(data);
}

Session &session_of(ClientData data) {
    return shell_of(data).simulation().session;
}

// --- find ---

// Takes one of words::find_options.
void take_find_option(std::string_view option, Search &search) {
    const auto add = [&search](Mode mode) { search.modes.push_back(mode); };
    if (option == "-recursive") {
        search.recursive = true;
    }
    if (option == "-internal") {
        add(Mode::internal);
    }
    if (option == "-in" || option == "-ports") {
        add(Mode::in);
    }
    if (option == "-out" || option == "-ports") {
        add(Mode::out);
    }
    if (option == "-inout" || option == "-ports") {
        add(Mode::inout);
    }
}

int find_usage(Tcl_Interp *interp, Tcl_Obj *const arguments[]) {
    Tcl_WrongNumArgs(interp, 1, arguments, "regions|signals ?option ...? pattern");
    return TCL_ERROR;
}

int find(ClientData data, Tcl_Interp *interp, int count, Tcl_Obj *const arguments[]) {
    if (count < 3) {
        return find_usage(interp, arguments);
    }
    const int kind = words::position(interp, arguments[1], words::find_kinds, "kind");
    if (kind < 0) {
        return TCL_ERROR;
    }
    Search search;
    for (int i = 2; i < count; ++i) {
        const std::string_view word = text_of(arguments[i]);
        if (word.starts_with('-')) {
            const int option = words::position(interp, arguments[i], words::find_options, "option");
            if (option < 0) {
                return TCL_ERROR;
            }
            take_find_option(words::find_options[option], search);
        } else if (search.pattern.empty()) {
            search.pattern = word;
        } else {
            return find_usage(interp, arguments);
        }
    }
    const std::string_view kind_name = words::find_kinds[kind];
    const bool regions = kind_name == "regions" || kind_name == "instances";
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

// The radix of that name, with or without a dash. False: Tcl's message is the result.
bool take_radix(Tcl_Interp *interp, std::string_view name, Radix *radix) {
    name.remove_prefix(name.starts_with('-') ? 1 : 0);
    Tcl_Obj *word = new_text(name);
    Tcl_IncrRefCount(word);
    const int position = words::position(interp, word, radix_names, "radix");
    Tcl_DecrRefCount(word);
    if (position >= 0) {
        *radix = radix_at(position);
    }
    return position >= 0;
}

int examine(ClientData data, Tcl_Interp *interp, int count, Tcl_Obj *const arguments[]) {
    Session &session = session_of(data);
    Radix radix = shell_of(data).default_radix();
    int first = 1;
    for (; first < count && text_of(arguments[first]).starts_with('-'); ++first) {
        first += text_of(arguments[first]) == "-radix" && first + 1 < count ? 1 : 0;
        if (!take_radix(interp, text_of(arguments[first]), &radix)) {
            return TCL_ERROR;
        }
    }
    if (first == count) {
        Tcl_WrongNumArgs(interp, 1, arguments, "?-radix radix? path ?path ...?");
        return TCL_ERROR;
    }
    Tcl_Obj *values = Tcl_NewListObj(0, nullptr);
    Tcl_IncrRefCount(values);
    for (int i = first; i < count; ++i) {
        const Signal *signal = session.design.find_object(text_of(arguments[i]));
        if (signal == nullptr) {
            Tcl_DecrRefCount(values);
            return fail(interp,
                        "examine: no signal \"" + std::string(text_of(arguments[i])) + "\"");
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

// --- the defaults ---

int environment(ClientData data, Tcl_Interp *interp, int count, Tcl_Obj *const arguments[]) {
    Design &design = session_of(data).design;
    if (count > 2) {
        Tcl_WrongNumArgs(interp, 1, arguments, "?path?");
        return TCL_ERROR;
    }
    if (count == 2) {
        Region *region = design.find_region(text_of(arguments[1]));
        if (region == nullptr) {
            return fail(interp,
                        "environment: no region \"" + std::string(text_of(arguments[1])) + "\"");
        }
        design.set_environment(region);
    }
    const Region *now = design.environment();
    Tcl_SetObjResult(interp, new_text(now == nullptr ? "/" : design.full_name(now)));
    return TCL_OK;
}

int radix(ClientData data, Tcl_Interp *interp, int count, Tcl_Obj *const arguments[]) {
    if (count > 2) {
        Tcl_WrongNumArgs(interp, 1, arguments, "?radix?");
        return TCL_ERROR;
    }
    Radix radix = shell_of(data).default_radix();
    if (count == 2 && !take_radix(interp, text_of(arguments[1]), &radix)) {
        return TCL_ERROR;
    }
    shell_of(data).set_default_radix(radix);
    Tcl_SetObjResult(interp, new_text(name_of(radix)));
    return TCL_OK;
}

}  // namespace

void add_design_commands(Tcl_Interp *interp, Shell &shell) {
    Tcl_CreateObjCommand(interp, "find", find, &shell, nullptr);
    Tcl_CreateObjCommand(interp, "examine", examine, &shell, nullptr);
    Tcl_CreateObjCommand(interp, "environment", environment, &shell, nullptr);
    Tcl_CreateObjCommand(interp, "env", environment, &shell, nullptr);
    Tcl_CreateObjCommand(interp, "radix", radix, &shell, nullptr);
}

}  // namespace wf
