// SPDX-License-Identifier: Apache-2.0
// Messages are told by how they begin; behind that come names and figures.
#include "host/shell/message_watch.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

namespace wf {
namespace {

constexpr std::array<std::string_view, 3> about_types = {
    "Error (KLVA-PWR): Unable to register ",
    "Error (KLVA-PWR): Invalid scalar type",
    "Error (KLVA-PWR): Could not determine bitwidth",
};

constexpr std::array<std::string_view, 4> refusals = {
    "Set_toggle_region must have at least one argument",
    "Warning (KLVA-PWR): Could not find signal or region for argument ",
    "Warning (KLVA-PWR): Could not find Region ",
    "Syntax error in the forward RTL SAIF file",
};

template <size_t N>
bool begins_with_one_of(std::string_view text, const std::array<std::string_view, N> &beginnings) {
    return std::any_of(beginnings.begin(), beginnings.end(),
                       [text](std::string_view one) { return text.starts_with(one); });
}

std::string_view without_blank_ends(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

// Whether the first word is Error, in any letters, as a level of its own or behind asterisks.
bool has_error_level(std::string_view text) {
    constexpr std::string_view level = "error";
    text.remove_prefix(std::min(text.find_first_not_of("* "), text.size()));
    return text.size() >= level.size() &&
           strncasecmp(text.data(), level.data(), level.size()) == 0 &&
           (text.size() == level.size() ||
            std::isalnum(static_cast<unsigned char>(text[level.size()])) == 0);
}

bool is_error(std::string_view text) {
    return begins_with_one_of(text, refusals) ||
           (has_error_level(text) && !begins_with_one_of(text, about_types));
}

// A message less its level and tag, "Error (TAG): ".
std::string_view cause_of(std::string_view text) {
    const bool has_level = has_error_level(text) || text.starts_with("Warning");
    const size_t colon = has_level ? text.find(": ") : std::string_view::npos;
    return colon == std::string_view::npos ? text : text.substr(colon + 2);
}

}  // namespace

void MessageWatch::note(std::string_view message) {
    if (is_error(message)) {
        count_error(cause_of(message));
    } else if (message.starts_with("Information (KLVA-PWR): Turned on counting window")) {
        window_open_ = true;
    } else if (message.starts_with("Information (KLVA-PWR): Turned off counting window") ||
               message.starts_with("Information (KLVA-PWR): Resetting counting windows")) {
        window_open_ = false;
    } else if (message.starts_with("Information (KLVA-PWR): Report done, wrote file")) {
        ++reports_;
    }
}

void MessageWatch::print(std::string_view text) {
    const bool is_traced_call = text.starts_with("fli: ");
    const std::string_view message = without_blank_ends(text);
    if (!is_traced_call) {
        note(message);
    }
    if (is_traced_call || !hides_ || !hides_(message)) {
        shown_.print(text);
    }
}

void MessageWatch::complain(std::string_view text) {
    count_error(cause_of(text));
    shown_.complain(text);
}

void MessageWatch::tell_error(const std::string &cause) {
    count_error(cause);
    shown_.print("Error: " + cause);
}

void MessageWatch::count_error(std::string_view cause) {
    if (errors_++ == 0) {
        first_error_ = cause;
    }
}

std::string MessageWatch::take_errors() {
    errors_ = 0;
    return std::exchange(first_error_, std::string());
}

void MessageWatch::tell_open_window() {
    if (window_open_) {
        shown_.print("Warning: the counting window is still open at the end; it is in no report");
    }
}

int MessageWatch::conclude(int status, bool aloud) {
    if (errors_ > 0 && aloud) {
        shown_.print("Error: " + std::to_string(errors_) +
                     (errors_ == 1 ? " error was reported" : " errors were reported"));
    }
    return errors_ > 0 && status == 0 ? 1 : status;
}

}  // namespace wf
