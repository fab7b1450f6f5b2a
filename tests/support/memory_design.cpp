// SPDX-License-Identifier: Apache-2.0
// The simulator in memory: paths to objects, texts to values.
#include "tests/support/memory_design.h"

#include <bit>
#include <stdexcept>
#include <utility>

#include "host/design/value_text.h"

namespace wf::test {

namespace {

[[noreturn]] void fail(std::string_view what, std::string_view path) {
    throw std::invalid_argument(std::string(what) + ": " + std::string(path));
}

// Cuts "/top/u1/clk" at its last '/'.
std::pair<std::string_view, std::string_view> split_leaf(std::string_view path) {
    const size_t cut = path.rfind('/');
    if (cut == std::string_view::npos || cut == 0) {
        fail("a signal's path needs a region", path);
    }
    return {path.substr(0, cut), path.substr(cut + 1)};
}

}  // namespace

MemorySimulator::MemorySimulator(int resolution_exponent)
    : kernel_(design_), session_(design_, kernel_, console_), types(design_.types) {
    design_.resolution_exponent = resolution_exponent;
}

Region &MemorySimulator::region(std::string_view path, RegionKind kind) {
    if (!path.starts_with('/') || path.size() < 2) {
        fail("a region's path begins with '/'", path);
    }
    const size_t cut = path.rfind('/');
    Region *above = cut == 0 ? nullptr : &region(path.substr(0, cut));
    const std::string_view name = path.substr(cut + 1);
    Region *existing = design_.find_child(above, name);
    return existing != nullptr ? *existing : *design_.add_region(above, name, kind);
}

Signal &MemorySimulator::signal(std::string_view path, const Type *type, Mode mode) {
    const auto [where, name] = split_leaf(path);
    Region &owner = region(where);
    Signal *signal = design_.add_signal(&owner, name, type, mode, design_.new_storage(type));
    kernel_.sync();
    return *signal;
}

Signal &MemorySimulator::shared_signal(std::string_view path, std::string_view existing,
                                       Mode mode) {
    const auto [where, name] = split_leaf(path);
    const Signal &other = find(existing);
    return *design_.add_signal(&region(where), name, other.type, mode, other.slot);
}

Signal &MemorySimulator::alias(std::string_view path, std::string_view existing) {
    const auto [where, name] = split_leaf(path);
    Signal &signal = find(existing);
    design_.add_alias(&region(where), &signal, name);
    return signal;
}

Signal &MemorySimulator::find(std::string_view path) {
    Signal *signal = design_.find_object(path);
    if (signal == nullptr) {
        fail("no such object", path);
    }
    return *signal;
}

mtiSignalIdT MemorySimulator::handle(std::string_view path) {
    return reinterpret_cast<mtiSignalIdT>(&find(path));
}

mtiRegionIdT MemorySimulator::region_handle(std::string_view path) {
    Region *region = design_.find_region(path);
    if (region == nullptr) {
        fail("no such region", path);
    }
    return reinterpret_cast<mtiRegionIdT>(region);
}

void MemorySimulator::set_scalar(const Signal &signal, std::string_view value) {
    const auto parsed = parse_scalar(*signal.type, value);
    if (!parsed) {
        fail("no such value of " + signal.type->name, value);
    }
    set_number(signal, *parsed);
}

void MemorySimulator::set_number(const Signal &signal, int64_t value) {
    if (signal.type->is_composite()) {
        fail("a composite needs a text as its value", signal.type->name);
    }
    if (signal.type->is_byte()) {
        kernel_.set_byte(signal.slot, static_cast<uint8_t>(value));
    } else {
        kernel_.set_word(signal.slot, value);
    }
}

void MemorySimulator::set(std::string_view path, char literal) {
    set(path, std::string_view(&literal, 1));
}

void MemorySimulator::set(std::string_view path, std::string_view value) {
    Signal &signal = find(path);
    if (!signal.type->is_composite()) {
        set_scalar(signal, value);
        return;
    }
    if (signal.type->kind != TypeKind::array || value.size() != signal.type->element_count()) {
        fail("an array needs one character for each element", path);
    }
    const Signal *elements = design_.elements(&signal);
    for (size_t i = 0; i < value.size(); ++i) {
        set_scalar(elements[i], value.substr(i, 1));
    }
}

void MemorySimulator::set(std::string_view path, int64_t value) {
    set_number(find(path), value);
}

void MemorySimulator::set(std::string_view path, double value) {
    set_number(find(path), std::bit_cast<int64_t>(value));
}

void MemorySimulator::run_to(Ticks time) {
    if (time < kernel_.now()) {
        fail("time does not run backwards", std::to_string(time));
    }
    kernel_.advance(time);
}

void MemorySimulator::command(std::string_view line) {
    settle();
    const std::string_view name = line.substr(0, line.find(' '));
    if (!session_.run_command(name, line)) {
        fail("no such command", name);
    }
}

std::vector<std::string> MemorySimulator::output_of(std::string_view line) {
    const size_t before = console_.lines.size();
    command(line);
    const auto first = console_.lines.begin() + static_cast<std::ptrdiff_t>(before);
    std::vector<std::string> output(first, console_.lines.end());
    console_.lines.erase(first, console_.lines.end());
    return output;
}

std::vector<std::string> MemorySimulator::lines() {
    return std::exchange(console_.lines, {});
}

}  // namespace wf::test
