// SPDX-License-Identifier: Apache-2.0
// The wording of the warnings.
#include "host/source/remarks.h"

#include "host/source/quoted.h"

namespace wf {
namespace {

constexpr std::array<std::string_view, oddity_count> texts = {
    "a variable outside of all scopes is passed over",
    "a vector of no bits is passed over",
    "a variable whose range does not fit its width is passed over",
    "a variable of an unknown kind is taken for bits",
    "another signal of a name that its scope has already is passed over",
    "one code stands for variables of several widths; each takes the last bits of its values",
};

}  // namespace

void Remarks::add(Oddity oddity, uint64_t line, std::string_view name) {
    Remark &remark = remarks_[static_cast<std::size_t>(oddity)];
    if (remark.count++ == 0) {
        remark.line = line;
        remark.name = quoted(name);
    }
}

void Remarks::tell(const std::string &file,
                   const std::function<void(const std::string &)> &listener) {
    for (std::size_t kind = 0; kind < oddity_count; ++kind) {
        const Remark &remark = remarks_[kind];
        if (remark.count == 0) {
            continue;
        }
        std::string text = file + (remark.line == 0 ? "" : ":" + std::to_string(remark.line));
        text.append(": ").append(texts[kind]).append(": ").append(remark.name);
        if (remark.count > 1) {
            text += " and " + std::to_string(remark.count - 1) + " more";
        }
        listener(text);
    }
}

}  // namespace wf
