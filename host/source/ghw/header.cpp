// SPDX-License-Identifier: Apache-2.0
// One function for each section, each checking its end mark.
#include "host/source/ghw/header.h"

#include <string>

#include "host/source/ghw/strings.h"

namespace wf::ghw {
namespace {

// The entries of the hierarchy.
enum class Entry : uint8_t {
    end = 0,
    block = 3,
    generate_if = 4,
    generate_for = 5,
    instance = 6,
    package = 7,
    process = 13,
    end_of_scope = 15,
    signal = 16,
    port_in = 17,
    port_out = 18,
    port_inout = 19,
    port_buffer = 20,
    port_linkage = 21
};

class HeaderReader {
  public:
    HeaderReader(Tokens &tokens, TypeTable &table, HeaderSink &sink)
        : tokens_(tokens), sink_(sink), types_(table, strings_) {}

    bool read();

  private:
    bool read_preamble();
    bool read_order();
    bool read_section(const std::string &tag);
    bool read_hierarchy();
    bool read_entry(Entry entry);
    bool read_scope(Entry entry, RegionKind kind);
    bool read_signal(Mode mode);
    bool read_leaves(uint32_t count);
    bool close_scope();

    // Levels of hierarchy.
    static constexpr uint32_t deepest = 1000;

    Tokens &tokens_;
    HeaderSink &sink_;
    Strings strings_;
    Types types_;
    uint32_t leaf_count_ = 0;
    uint32_t depth_ = 0;  // open scopes
    SignalEntry signal_;  // kept for its capacity
};

bool HeaderReader::read() {
    if (!read_preamble()) {
        return false;
    }
    for (std::string tag; tag != std::string_view("EOH\0", 4);) {
        tokens_.enter("header");
        if (!tokens_.tag(tag, "a section STR, TYP, WKT, HIE or EOH") || !read_section(tag)) {
            return false;
        }
    }
    sink_.resolution(types_.resolution());
    return sink_.finish(leaf_count_);
}

// The length of what follows, the version, the order of bytes, and the lengths of words and
// offsets.
bool HeaderReader::read_preamble() {
    uint8_t minor = 0;
    if (!tokens_.mark("GHDLwave\n", "GHDLwave and a line end") ||
        !tokens_.mark({"\x10\0", 2}, "a header of 16 bytes of version 0") ||
        !tokens_.byte(minor, "the minor version")) {
        return false;
    }
    if (minor > 1) {
        return tokens_.fault("version 0.0 or 0.1", "0." + std::to_string(minor));
    }
    return read_order() && tokens_.mark({"\4\1\0", 3}, "words of 4 bytes and offsets of 1");
}

bool HeaderReader::read_order() {
    uint8_t order = 0;
    if (!tokens_.byte(order, "the order of bytes")) {
        return false;
    }
    if (order != 1 && order != 2) {
        return tokens_.fault("the order of bytes, 1 or 2", std::to_string(order));
    }
    tokens_.set_order(order == 1 ? std::endian::little : std::endian::big);
    return true;
}

bool HeaderReader::read_section(const std::string &tag) {
    const std::string_view name = std::string_view(tag).substr(0, 3);
    tokens_.enter(name);
    if (name == "STR" && tag[3] == 0 && strings_.count() == 0) {
        return strings_.read(tokens_);
    }
    if (name == "TYP" && tag[3] == 0) {
        return types_.read(tokens_);
    }
    if (name == "WKT" && tag[3] == 0) {
        return types_.read_well_known(tokens_);
    }
    if (name == "HIE" && tag[3] == 0) {
        return read_hierarchy();
    }
    if (name == "EOH" && tag[3] == 0) {
        return true;
    }
    tokens_.enter("header");
    return tokens_.fault("a section STR (once), TYP, WKT, HIE or EOH", in_hex(tag));
}

bool HeaderReader::read_hierarchy() {
    uint32_t scopes = 0;
    uint32_t signals = 0;
    if (!tokens_.mark({"\0\0\0\0", 4}, "four zero bytes") ||
        !tokens_.word(scopes, "the number of scopes") ||
        !tokens_.word(signals, "the number of signals") ||
        !tokens_.word(leaf_count_, "the number of scalars")) {
        return false;
    }
    for (;;) {
        uint8_t entry = 0;
        if (!tokens_.byte(entry, "an entry of the hierarchy")) {
            return false;
        }
        if (static_cast<Entry>(entry) == Entry::end && depth_ == 0) {
            return true;
        }
        if (!read_entry(static_cast<Entry>(entry))) {
            return false;
        }
    }
}

bool HeaderReader::read_entry(Entry entry) {
    switch (entry) {
        case Entry::block:
            return read_scope(entry, RegionKind::block);
        case Entry::generate_if:
        case Entry::generate_for:
            return read_scope(entry, RegionKind::generate);
        case Entry::instance:
            return read_scope(entry, RegionKind::instance);
        case Entry::package:
            return read_scope(entry, RegionKind::package);
        case Entry::process:
            return read_scope(entry, RegionKind::process) && close_scope();
        case Entry::end_of_scope:
            return close_scope();
        case Entry::signal:
            return read_signal(Mode::internal);
        case Entry::port_in:
            return read_signal(Mode::in);
        case Entry::port_out:
        case Entry::port_buffer:
            return read_signal(Mode::out);
        case Entry::port_inout:
        case Entry::port_linkage:
            return read_signal(Mode::inout);
        case Entry::end:
            return tokens_.fault("the end of a scope", "the end of the hierarchy");
    }
    return tokens_.fault("an entry of the hierarchy", std::to_string(static_cast<int>(entry)));
}

bool HeaderReader::read_scope(Entry entry, RegionKind kind) {
    std::string_view name;
    std::string copy;
    if (!strings_.read_reference(tokens_, name, "the name of a scope")) {
        return false;
    }
    if (entry == Entry::generate_for) {
        const FileType *type = types_.read_reference(tokens_, "the number of a type");
        std::string index;
        if (type == nullptr || !types_.read_value(tokens_, *type, index)) {
            return false;
        }
        copy.append(name).append("(").append(index).append(")");
        name = copy;
    }
    if (++depth_ > deepest) {
        return tokens_.fault("at most " + std::to_string(deepest) + " levels of hierarchy", "more");
    }
    sink_.open_scope(kind, name);
    return true;
}

bool HeaderReader::close_scope() {
    if (depth_ == 0) {
        return tokens_.fault("a scope", "the end of one");
    }
    --depth_;
    sink_.close_scope();
    return true;
}

bool HeaderReader::read_signal(Mode mode) {
    if (depth_ == 0) {
        return tokens_.fault("a scope", "a signal outside of all scopes");
    }
    if (!strings_.read_reference(tokens_, signal_.name, "the name of a signal")) {
        return false;
    }
    const FileType *type = types_.read_reference(tokens_, "the number of a type");
    if (type == nullptr) {
        return false;
    }
    if (type->type == nullptr) {
        return tokens_.fault("a type with bounds", "one without");
    }
    signal_.type = type->type;
    signal_.mode = mode;
    return read_leaves(types_.leaves(type->type)) && sink_.signal(signal_);
}

bool HeaderReader::read_leaves(uint32_t count) {
    signal_.leaves.clear();
    for (uint32_t i = 0; i < count; ++i) {
        uint32_t number = 0;
        if (!tokens_.number(number, leaf_count_, "the number of a scalar")) {
            return false;
        }
        if (number == 0) {
            return tokens_.fault("the number of a scalar of at least 1", "0");
        }
        signal_.leaves.push_back(number);
    }
    return true;
}

}  // namespace

bool read_header(Tokens &tokens, TypeTable &table, HeaderSink &sink) {
    return HeaderReader(tokens, table, sink).read();
}

}  // namespace wf::ghw
