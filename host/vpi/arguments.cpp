// SPDX-License-Identifier: Apache-2.0
// Plusargs are one word each: +wf_name or +wf_name=value.
#include "host/vpi/arguments.h"

#include <charconv>
#include <string_view>

namespace wf {
namespace {

std::string take_argument(std::string_view name, std::string_view value, bool has_value,
                          Arguments *arguments) {
    if (name == "+wf_trace" && !has_value) {
        arguments->trace = true;
        return {};
    }
    if (name == "+wf_strict" && !has_value) {
        arguments->strict = true;
        return {};
    }
    if (name == "+wf_memory") {
        const char *end = value.data() + value.size();
        const auto read = std::from_chars(value.data(), end, arguments->memory_limit);
        return !value.empty() && read.ec == std::errc() && read.ptr == end
                   ? ""
                   : "expected a number of bits";
    }
    if (name != "+wf_do" && name != "+wf_foreign") {
        return "unknown argument; there are +wf_do=FILE, +wf_foreign=FUNCTION:LIBRARY, "
               "+wf_memory=BITS, +wf_strict, +wf_trace";
    }
    if (value.empty()) {
        return "expected a value after " + std::string(name) + "=";
    }
    if (name == "+wf_foreign") {
        arguments->foreign.emplace_back(value);
        return {};
    }
    if (!arguments->script.empty()) {
        return "+wf_do is given twice";
    }
    arguments->script = value;
    return {};
}

}  // namespace

std::string parse_arguments(const std::vector<std::string> &words, const char *script,
                            Arguments *arguments) {
    for (const std::string_view word : words) {
        if (!word.starts_with("+wf_")) {
            continue;
        }
        const size_t sign = word.find('=');
        const bool has_value = sign != std::string_view::npos;
        const std::string error = take_argument(
            word.substr(0, sign), has_value ? word.substr(sign + 1) : "", has_value, arguments);
        if (!error.empty()) {
            return std::string(word) + ": " + error;
        }
    }
    if (arguments->script.empty() && script != nullptr) {
        arguments->script = script;
    }
    return {};
}

}  // namespace wf
