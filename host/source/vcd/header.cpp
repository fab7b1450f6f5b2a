// SPDX-License-Identifier: Apache-2.0
// One function for each section of the declarations, each checking its end mark.
#include "host/source/vcd/header.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <utility>

#include "host/source/variable_name.h"

namespace wf::vcd {
namespace {

struct ScopeName {
    std::string_view text;
    RegionKind kind;
};

// The kinds of the standards and those that converters from other waveforms write.
constexpr ScopeName scope_names[] = {
    {"module", RegionKind::module},
    {"task", RegionKind::task},
    {"function", RegionKind::function},
    {"begin", RegionKind::named_block},
    {"fork", RegionKind::named_block},
    {"generate", RegionKind::generate},
    {"struct", RegionKind::record},
    {"union", RegionKind::record},
    {"class", RegionKind::record},
    {"interface", RegionKind::interface},
    {"package", RegionKind::package},
    {"program", RegionKind::program},
    {"vhdl_architecture", RegionKind::instance},
    {"vhdl_procedure", RegionKind::task},
    {"vhdl_function", RegionKind::function},
    {"vhdl_record", RegionKind::record},
    {"vhdl_process", RegionKind::process},
    {"vhdl_block", RegionKind::block},
    {"vhdl_for_generate", RegionKind::generate},
    {"vhdl_if_generate", RegionKind::generate},
    {"vhdl_generate", RegionKind::generate},
    {"vhdl_package", RegionKind::package},
};

struct VariableName {
    std::string_view text;
    VariableUse use;
};

constexpr VariableName variable_names[] = {
    {"wire", VariableUse::bits},      {"reg", VariableUse::bits},
    {"logic", VariableUse::bits},     {"integer", VariableUse::bits},
    {"port", VariableUse::port},      {"parameter", VariableUse::ignored},
    {"event", VariableUse::ignored},  {"real", VariableUse::real},
    {"time", VariableUse::bits},      {"realtime", VariableUse::real},
    {"shortreal", VariableUse::real}, {"real_parameter", VariableUse::ignored},
    {"string", VariableUse::ignored}, {"tri", VariableUse::bits},
    {"tri0", VariableUse::bits},      {"tri1", VariableUse::bits},
    {"triand", VariableUse::bits},    {"trior", VariableUse::bits},
    {"trireg", VariableUse::bits},    {"wand", VariableUse::bits},
    {"wor", VariableUse::bits},       {"uwire", VariableUse::bits},
    {"supply0", VariableUse::bits},   {"supply1", VariableUse::bits},
    {"bit", VariableUse::bits},       {"byte", VariableUse::bits},
    {"shortint", VariableUse::bits},  {"int", VariableUse::bits},
    {"longint", VariableUse::bits},   {"enum", VariableUse::bits},
};

bool read_number(std::string_view text, uint64_t &value) {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return !text.empty() && result.ec == std::errc() && result.ptr == text.data() + text.size();
}

// Seconds as a power of ten, from texts such as 1ns, 100us, 10s.
bool read_timescale(std::string_view text, int &exponent) {
    constexpr std::string_view units[] = {"s", "ms", "us", "ns", "ps", "fs"};
    const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    const std::string_view number = text.substr(0, digits);
    const auto *unit = std::find(std::begin(units), std::end(units), text.substr(digits));
    if (unit == std::end(units) || (number != "1" && number != "10" && number != "100")) {
        return false;
    }
    exponent = static_cast<int>(number.size()) - 1 - 3 * static_cast<int>(unit - units);
    return true;
}

bool is_bits(const Variable &variable) {
    return variable.use == VariableUse::bits || variable.use == VariableUse::port;
}

class HeaderReader {
  public:
    HeaderReader(Tokens &tokens, HeaderSink &sink, Remarks &remarks, std::string *error)
        : tokens_(tokens), sink_(sink), remarks_(remarks), error_(error) {}

    bool read();

  private:
    bool read_section(std::string_view keyword);
    bool read_scope();
    bool read_upscope();
    bool read_timescale_section();
    bool read_variable();
    bool read_kind(Variable &variable);
    bool read_width(Variable &variable);
    bool read_word(std::string_view expected);
    bool read_rest(std::string_view section);
    bool read_name(Variable &variable);
    void pass_over(Variable &variable, Oddity oddity);
    bool read_end(std::string_view section);
    bool skip_section(std::string_view section);
    bool fault(std::string_view expected) {
        *error_ = tokens_.fault(expected);
        return false;
    }

    bool fault(std::string_view expected, std::string_view got) {
        *error_ = tokens_.fault(expected, quoted(got));
        return false;
    }

    Tokens &tokens_;
    HeaderSink &sink_;
    Remarks &remarks_;
    std::string *error_;
    uint32_t depth_ = 0;         // open scopes
    bool kind_is_known_ = true;  // of the variable that is being read
    // Kept from one variable to the next for their capacity.
    std::string code_;
    std::string name_;
};

bool HeaderReader::read() {
    for (;;) {
        // A copy, since the token goes when the section reads on.
        const std::string keyword(tokens_.next());
        if (keyword.empty() || keyword[0] != '$' || keyword.starts_with("$dump")) {
            return fault("$enddefinitions");
        }
        if (!read_section(keyword)) {
            return false;
        }
        if (keyword == "$enddefinitions") {
            return true;
        }
    }
}

bool HeaderReader::read_section(std::string_view keyword) {
    if (keyword == "$var") {
        return read_variable();
    }
    if (keyword == "$scope") {
        return read_scope();
    }
    if (keyword == "$upscope") {
        return read_upscope();
    }
    if (keyword == "$timescale") {
        return read_timescale_section();
    }
    if (keyword == "$enddefinitions") {
        return read_end(keyword);
    }
    if (keyword == "$end") {
        return fault("a section");
    }
    // $date, $version, $comment and what vendors add.
    return skip_section(keyword);
}

bool HeaderReader::read_end(std::string_view section) {
    if (tokens_.next() == "$end") {
        return true;
    }
    return fault("$end of " + std::string(section));
}

bool HeaderReader::skip_section(std::string_view section) {
    return tokens_.skip_past("$end") || fault("$end of " + std::string(section));
}

bool HeaderReader::read_scope() {
    const std::string_view text = tokens_.next();
    if (text.empty() || text[0] == '$') {
        return fault("the kind of a scope");
    }
    const auto *known = std::find_if(std::begin(scope_names), std::end(scope_names),
                                     [&](const ScopeName &name) { return name.text == text; });
    const RegionKind kind = known == std::end(scope_names) ? RegionKind::module : known->kind;
    if (!read_word("the name of a scope")) {
        return false;
    }
    // Only an extended name has several words.
    if (!(name_[0] == '\\' ? read_rest("$scope") : read_end("$scope"))) {
        return false;
    }
    std::string_view name = name_;
    const std::size_t own = extended_length(name);
    if (const std::size_t blank = name.find(' ', own); blank != std::string_view::npos) {
        return fault("$end of $scope", name.substr(blank + 1));
    }
    name.remove_prefix(own == 0 && is_escaped(name) ? 1 : 0);
    sink_.open_scope(kind, name);
    ++depth_;
    return true;
}

bool HeaderReader::read_upscope() {
    if (depth_ == 0) {
        return fault("an open $scope");
    }
    --depth_;
    sink_.close_scope();
    return read_end("$upscope");
}

bool HeaderReader::read_timescale_section() {
    std::string text;
    std::string_view token = tokens_.next();
    while (!token.empty() && token[0] != '$') {
        text += token;
        token = tokens_.next();
    }
    if (token != "$end") {
        return fault("$end of $timescale");
    }
    int exponent = 0;
    if (!read_timescale(text, exponent)) {
        return fault("a timescale of 1, 10 or 100 s, ms, us, ns, ps or fs", text);
    }
    sink_.resolution(exponent);
    return true;
}

bool HeaderReader::read_kind(Variable &variable) {
    const std::string_view text = tokens_.next();
    const auto *known = std::find_if(std::begin(variable_names), std::end(variable_names),
                                     [&](const VariableName &name) { return name.text == text; });
    if (text.empty() || text[0] == '$') {
        return fault("the kind of a variable");
    }
    kind_is_known_ = known != std::end(variable_names);
    variable.use = kind_is_known_ ? known->use : VariableUse::bits;
    // The dump of a module's ports does not say which way they go.
    variable.mode = variable.use == VariableUse::port ? Mode::inout : Mode::internal;
    return true;
}

// A number, or, where a module's ports are dumped, a range.
bool HeaderReader::read_width(Variable &variable) {
    const std::string_view text = tokens_.next();
    uint64_t width = 0;
    if (!text.empty() && text[0] == '[' && read_range(text, variable.left, variable.right)) {
        variable.has_range = true;
        width = range_width(variable.left, variable.right);
    } else if (!read_number(text, width)) {
        return fault("a width in bits");
    }
    if (is_bits(variable) && width > max_width) {
        return fault("a width of 0 to " + std::to_string(max_width) + " bits");
    }
    variable.width = static_cast<uint32_t>(std::min<uint64_t>(width, UINT32_MAX));
    return true;
}

// The first word of a name, into name_.
bool HeaderReader::read_word(std::string_view expected) {
    const std::string_view token = tokens_.next();
    if (token.empty() || token == "$end") {
        return fault(expected);
    }
    name_.assign(token);
    return true;
}

// The words up to $end, each behind a blank, onto name_. Without an end they are no name.
bool HeaderReader::read_rest(std::string_view section) {
    std::string_view token = tokens_.next();
    while (!token.empty() && token[0] != '$' && name_.size() < Tokens::longest) {
        name_ += ' ';
        name_ += token;
        token = tokens_.next();
    }
    return token == "$end" || fault("$end of " + std::string(section));
}

// The name and whatever follows it.
bool HeaderReader::read_name(Variable &variable) {
    if (!read_word("the name of a variable") || !read_rest("$var")) {
        return false;
    }
    split_name(name_, variable);
    return !variable.name.empty() || fault("the name of a variable", name_);
}

// Bits that belong to nothing that a design can have.
void HeaderReader::pass_over(Variable &variable, Oddity oddity) {
    remarks_.add(oddity, variable.line, name_);
    variable.use = VariableUse::ignored;
}

bool HeaderReader::read_variable() {
    Variable variable;
    variable.line = static_cast<uint32_t>(std::min<uint64_t>(tokens_.line(), UINT32_MAX));
    if (!read_kind(variable) || !read_width(variable)) {
        return false;
    }
    code_.assign(tokens_.next());
    if (code_.empty() || code_ == "$end") {
        return fault("an identifier code");
    }
    variable.code = code_;
    if (!read_name(variable)) {
        return false;
    }
    if (!kind_is_known_) {
        remarks_.add(Oddity::unknown_kind, variable.line, name_);
    }
    if (is_bits(variable) && variable.width == 0) {
        pass_over(variable, Oddity::no_bits);
    } else if (is_bits(variable) && variable.has_range &&
               range_width(variable.left, variable.right) != variable.width) {
        pass_over(variable, Oddity::odd_range);
    }
    sink_.variable(variable);
    return true;
}

}  // namespace

bool read_header(Tokens &tokens, HeaderSink &sink, Remarks &remarks, std::string *error) {
    return HeaderReader(tokens, sink, remarks, error).read();
}

}  // namespace wf::vcd
