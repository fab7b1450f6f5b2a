// SPDX-License-Identifier: Apache-2.0
// One function for each kind of type. A type refers only to those before it, so none contains
// itself.
#include "host/source/ghw/types.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace wf::ghw {
namespace {

constexpr uint8_t descending_mark = 0x80;

bool is_byte(Kind kind) {
    return kind == Kind::bit2 || kind == Kind::enum8;
}

bool is_discrete(Kind kind) {
    return is_byte(kind) || kind == Kind::int32 || kind == Kind::int64;
}

bool is_scalar(Kind kind) {
    return is_discrete(kind) || kind == Kind::real64 || kind == Kind::physical32 ||
           kind == Kind::physical64;
}

bool fits_bound(int64_t value) {
    return value >= INT32_MIN && value <= INT32_MAX;
}

int32_t bound(int64_t value) {
    return static_cast<int32_t>(std::clamp<int64_t>(value, INT32_MIN, INT32_MAX));
}

// The unit that is one tick, as a power of ten of seconds.
constexpr std::pair<std::string_view, int> units[] = {{"fs", -15}, {"ps", -12}, {"ns", -9},
                                                      {"us", -6},  {"ms", -3},  {"sec", 0}};

}  // namespace

bool Types::read(Tokens &tokens) {
    uint32_t declared = 0;
    if (!tokens.mark({"\0\0\0\0", 4}, "four zero bytes") ||
        !tokens.word(declared, "the number of types")) {
        return false;
    }
    for (uint32_t i = 0; i < declared; ++i) {
        FileType type;
        if (!read_type(tokens, type)) {
            return false;
        }
        types_.push_back(std::move(type));
    }
    return tokens.mark({"\0", 1}, "the zero byte that ends the types");
}

bool Types::read_well_known(Tokens &tokens) const {
    if (!tokens.mark({"\0\0\0\0", 4}, "four zero bytes")) {
        return false;
    }
    for (uint8_t code = 1; code != 0;) {
        if (!tokens.byte(code, "the code of a well-known type") ||
            (code != 0 && read_reference(tokens, "the number of a type") == nullptr)) {
            return false;
        }
    }
    return true;
}

const FileType *Types::read_reference(Tokens &tokens, std::string_view expected) const {
    uint32_t number = 0;
    if (!tokens.number(number, count(), expected)) {
        return nullptr;
    }
    if (number == 0) {
        tokens.fault(std::string(expected) + " of at least 1", "0");
        return nullptr;
    }
    return &types_[number - 1];
}

bool Types::read_value(Tokens &tokens, const FileType &type, std::string &text) const {
    int64_t value = 0;
    if (!is_discrete(type.kind)) {
        return tokens.fault("the number of a discrete type", "another type");
    }
    if (!read_number(tokens, type.kind, value)) {
        return false;
    }
    if (!is_byte(type.kind)) {
        text = std::to_string(value);
        return true;
    }
    if (value >= type.type->length) {
        return tokens.fault("a position below " + std::to_string(type.type->length),
                            std::to_string(value));
    }
    text = type.type->literals[static_cast<std::size_t>(value)];
    return true;
}

bool Types::read_type(Tokens &tokens, FileType &type) {
    uint8_t kind = 0;
    if (!tokens.byte(kind, "the kind of a type")) {
        return false;
    }
    type.kind = static_cast<Kind>(kind);
    if (type.kind == Kind::enum32) {
        return tokens.fault("an enumeration of at most 256 literals", "a larger one");
    }
    if (!is_scalar(type.kind) &&
        (kind < static_cast<uint8_t>(Kind::array) || kind > 39 || kind == 36)) {
        return tokens.fault("the kind of a type", std::to_string(kind));
    }
    if (!strings_.read_reference(tokens, type.name, "the name of a type")) {
        return false;
    }
    switch (type.kind) {
        case Kind::bit2:
        case Kind::enum8:
            return read_enumeration(tokens, type);
        case Kind::int32:
        case Kind::int64:
            type.type = table_.integer(type.name, INT32_MIN, INT32_MAX);
            return true;
        case Kind::real64:
            type.type = table_.real(type.name);
            return true;
        case Kind::physical32:
        case Kind::physical64:
            return read_physical(tokens, type);
        case Kind::array:
            return read_array(tokens, type);
        case Kind::record:
        case Kind::unbounded_record:
            return read_record(tokens, type);
        case Kind::subtype_scalar:
            return read_scalar_subtype(tokens, type);
        case Kind::subtype_array:
        case Kind::subtype_record:
            return read_composite_subtype(tokens, type, true);
        default:
            return read_composite_subtype(tokens, type, false);
    }
}

bool Types::read_enumeration(Tokens &tokens, FileType &type) {
    const uint32_t most = type.kind == Kind::bit2 ? 2 : 256;
    uint32_t count = 0;
    if (!tokens.number(count, most, "a number of literals")) {
        return false;
    }
    if (count == 0) {
        return tokens.fault("a literal", "an enumeration without any");
    }
    std::vector<std::string> literals;
    for (uint32_t i = 0; i < count; ++i) {
        std::string_view literal;
        if (!strings_.read_reference(tokens, literal, "the number of a literal's string")) {
            return false;
        }
        literals.emplace_back(literal);
    }
    const std::vector<std::string> truth = {"false", "true"};
    if (literals == table_.std_logic()->literals) {
        type.type = table_.std_logic();
    } else if (type.name == "bit" && literals == table_.bit()->literals) {
        type.type = table_.bit();
    } else if (type.name == "boolean" && literals == truth) {
        type.type = table_.boolean();
    } else {
        type.type = table_.enumeration(type.name, std::move(literals));
    }
    return true;
}

bool Types::read_physical(Tokens &tokens, FileType &type) {
    const bool is_time = type.kind == Kind::physical64 && type.name == "time";
    uint32_t count = 0;
    if (!tokens.number(count, UINT32_MAX, "the number of units")) {
        return false;
    }
    bool is_settled = false;
    for (uint32_t i = 0; i < count; ++i) {
        std::string_view name;
        int64_t ticks = 0;
        if (!strings_.read_reference(tokens, name, "the name of a unit") ||
            !tokens.signed_number(ticks, "the value of a unit")) {
            return false;
        }
        const auto *unit = std::find_if(std::begin(units), std::end(units),
                                        [&](const auto &known) { return known.first == name; });
        if (is_time && ticks == 1 && unit != std::end(units) && !is_settled) {
            resolution_ = unit->second;
            is_settled = true;
        }
    }
    type.type = is_time ? table_.time(type.name) : table_.physical(type.name, INT32_MIN, INT32_MAX);
    return true;
}

bool Types::read_array(Tokens &tokens, FileType &type) const {
    const FileType *element = read_reference(tokens, "the number of an element's type");
    uint32_t dimensions = 0;
    if (element == nullptr || !tokens.number(dimensions, deepest, "a number of dimensions")) {
        return false;
    }
    if (dimensions == 0) {
        return tokens.fault("a number of dimensions", "0");
    }
    type.element = static_cast<uint32_t>(element - types_.data());
    for (uint32_t i = 0; i < dimensions; ++i) {
        const FileType *index = read_reference(tokens, "the number of an index's type");
        if (index == nullptr) {
            return false;
        }
        if (!is_discrete(index->kind)) {
            return tokens.fault("the number of a discrete type", "another type");
        }
        type.indices.push_back(static_cast<uint32_t>(index - types_.data()));
    }
    return true;
}

bool Types::read_record(Tokens &tokens, FileType &type) {
    type.kind = Kind::record;
    uint32_t count = 0;
    if (!tokens.number(count, UINT32_MAX, "the number of fields")) {
        return false;
    }
    bool is_bounded = true;
    type.fields = std::make_shared<std::vector<FileType::Part>>();
    for (uint32_t i = 0; i < count; ++i) {
        FileType::Part field;
        if (!strings_.read_reference(tokens, field.name, "the name of a field")) {
            return false;
        }
        const FileType *field_type = read_reference(tokens, "the number of a field's type");
        if (field_type == nullptr) {
            return false;
        }
        field.type = static_cast<uint32_t>(field_type - types_.data());
        is_bounded = is_bounded && field_type->type != nullptr;
        type.fields->push_back(field);
    }
    type.type = is_bounded ? make_record(tokens, type) : nullptr;
    return !is_bounded || type.type != nullptr;
}

bool Types::read_scalar_subtype(Tokens &tokens, FileType &type) {
    const FileType *base = read_reference(tokens, "the number of a base type");
    Range range;
    if (base == nullptr) {
        return false;
    }
    if (!is_scalar(base->kind)) {
        return tokens.fault("the number of a scalar type", "a composite type");
    }
    if (!read_range(tokens, base->kind, range)) {
        return false;
    }
    type.kind = base->kind;
    const std::string_view name = type.name.empty() ? base->name : type.name;
    if (type.kind == Kind::int32 || type.kind == Kind::int64) {
        type.type = table_.integer(name, bound(range.left), bound(range.right), range.direction);
    } else if (base->type->kind == TypeKind::physical) {
        type.type = table_.physical(name, bound(range.left), bound(range.right));
    } else {
        type.type = base->type;
    }
    return true;
}

bool Types::read_composite_subtype(Tokens &tokens, FileType &type, bool is_bounded) {
    const FileType *base = read_reference(tokens, "the number of a base type");
    if (base == nullptr) {
        return false;
    }
    if (is_scalar(base->kind)) {
        return tokens.fault("the number of a composite type", "a scalar type");
    }
    const std::string_view name = type.name;
    type = *base;
    type.name = name.empty() ? base->name : name;
    if (is_bounded && type.type == nullptr) {
        type.type = read_bounds(tokens, *base);
    }
    return !is_bounded || type.type != nullptr;
}

bool Types::read_number(Tokens &tokens, Kind kind, int64_t &value) const {
    if (is_byte(kind)) {
        uint8_t position = 0;
        const bool is_read = tokens.byte(position, "a position of an enumeration");
        value = position;
        return is_read;
    }
    if (kind == Kind::real64) {
        return tokens.long_word(value, "a real");
    }
    return tokens.signed_number(value, "a number");
}

bool Types::read_range(Tokens &tokens, Kind kind, Range &range) const {
    uint8_t lead = 0;
    if (!tokens.byte(lead, "a range")) {
        return false;
    }
    const auto given = static_cast<uint8_t>(lead & ~descending_mark);
    if (static_cast<Kind>(given) != kind) {
        return tokens.fault("a range of kind " + std::to_string(static_cast<int>(kind)),
                            std::to_string(given));
    }
    range.direction = (lead & descending_mark) != 0 ? Direction::downto : Direction::to;
    return read_number(tokens, kind, range.left) && read_number(tokens, kind, range.right);
}

const Type *Types::read_bounds(Tokens &tokens, const FileType &type) {
    return type.kind == Kind::array ? read_array_bounds(tokens, type) : make_record(tokens, type);
}

const Type *Types::read_array_bounds(Tokens &tokens, const FileType &type) {
    std::vector<Range> ranges;
    for (const uint32_t index : type.indices) {
        Range range;
        if (!read_range(tokens, types_[index].kind, range)) {
            return nullptr;
        }
        if (!fits_bound(range.left) || !fits_bound(range.right)) {
            tokens.fault("bounds of 32 bits", "wider ones");
            return nullptr;
        }
        ranges.push_back(range);
    }
    const Type *made = complete(tokens, type.element);
    for (; made != nullptr && !ranges.empty(); ranges.pop_back()) {
        const Range &range = ranges.back();
        made = checked(tokens,
                       table_.array(made, bound(range.left), bound(range.right), range.direction));
    }
    return made;
}

const Type *Types::complete(Tokens &tokens, uint32_t number) {
    const FileType &type = types_[number];
    return type.type != nullptr ? type.type : read_bounds(tokens, type);
}

const Type *Types::make_record(Tokens &tokens, const FileType &type) {
    fields_made_ += type.fields->size();
    if (fields_made_ > most_fields) {
        tokens.fault("records of at most " + std::to_string(most_fields) + " fields", "more");
        return nullptr;
    }
    std::vector<Field> fields;
    for (const FileType::Part &part : *type.fields) {
        const Type *made = complete(tokens, part.type);
        if (made == nullptr) {
            return nullptr;
        }
        fields.push_back({.name = std::string(part.name), .type = made});
    }
    return checked(tokens, table_.record(type.name, std::move(fields)));
}

// Elements without any scalar take no room in the file, so their number says nothing by itself.
const Type *Types::checked(Tokens &tokens, const Type *type) {
    if (type == nullptr) {
        tokens.fault("a type of at most 2147483648 bytes", "a larger one");
        return nullptr;
    }
    const Extent size = extent(type);
    constexpr uint64_t empty_parts = 65536;
    if (size.depth > deepest || size.parts > size.leaves * deepest + empty_parts) {
        tokens.fault("a type of at most " + std::to_string(deepest) + " levels and " +
                         std::to_string(empty_parts) + " empty elements",
                     "a larger one");
        return nullptr;
    }
    return type;
}

Types::Extent Types::extent(const Type *type) {
    if (!type->is_composite()) {
        return {};
    }
    if (const auto known = extents_.find(type); known != extents_.end()) {
        return known->second;
    }
    Extent sum{.parts = 1, .leaves = 0, .depth = 0};
    const bool is_array = type->kind == TypeKind::array;
    const auto kinds = is_array ? 1U : type->element_count();
    const uint64_t times = is_array ? static_cast<uint64_t>(type->length) : 1;
    for (uint32_t i = 0; i < kinds; ++i) {
        const Extent part = extent(type->element_type(i));
        sum.parts += times * part.parts;
        sum.leaves += times * part.leaves;
        sum.depth = std::max(sum.depth, part.depth);
    }
    ++sum.depth;
    extents_.emplace(type, sum);
    return sum;
}

}  // namespace wf::ghw
