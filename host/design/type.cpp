// SPDX-License-Identifier: Apache-2.0
// The type table: what each kind of type is made of and how large its objects are.
#include "host/design/type.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace wf {

namespace {

constexpr Slot word_slots = 8;
constexpr uint64_t largest_object = uint64_t{1} << 31;

std::vector<std::string> character_literals(std::string_view characters) {
    std::vector<std::string> literals;
    for (const char character : characters) {
        literals.push_back({'\'', character, '\''});
    }
    return literals;
}

// The number of values in a range; an empty range has none.
int64_t range_length(int64_t left, int64_t right, Direction direction) {
    const int64_t length = direction == Direction::to ? right - left + 1 : left - right + 1;
    return std::max<int64_t>(length, 0);
}

int64_t position_among(const auto &names, std::string_view wanted, auto name_of) {
    const auto found = std::find_if(names.begin(), names.end(), [&](const auto &entry) {
        return std::string_view(name_of(entry)) == wanted;
    });
    return found == names.end() ? -1 : found - names.begin();
}

}  // namespace

const Type *Type::element_type(uint32_t position) const {
    return kind == TypeKind::array ? element : fields[position].type;
}

Slot Type::element_offset(uint32_t position) const {
    return kind == TypeKind::array ? position * element->slots : fields[position].offset;
}

int64_t Type::position_of(int64_t index) const {
    const int64_t position = direction == Direction::to ? index - left : left - index;
    return position >= 0 && position < length ? position : -1;
}

int64_t Type::index_of(uint32_t position) const {
    return direction == Direction::to ? int64_t{left} + position : int64_t{left} - position;
}

int64_t Type::field_position(std::string_view field) const {
    return position_among(fields, field, [](const Field &entry) { return entry.name; });
}

int64_t Type::literal_position(std::string_view literal) const {
    return position_among(literals, literal, [](const std::string &entry) { return entry; });
}

size_t TypeTable::ArrayHash::operator()(const ArrayKey &key) const {
    size_t hash = std::hash<const void *>()(key.element);
    for (const int part : {key.left, key.right, static_cast<int>(key.direction)}) {
        hash = hash * 0x9e3779b97f4a7c15U + static_cast<uint32_t>(part);
    }
    return hash ^ (hash >> 32);
}

TypeTable::TypeTable()
    : std_logic_(enumeration("std_logic", character_literals("UX01ZWLH-"))),
      bit_(enumeration("bit", character_literals("01"))),
      boolean_(enumeration("boolean", {"FALSE", "TRUE"})) {
}

Type *TypeTable::add(TypeKind kind, std::string_view name, Slot slots) {
    Type *type = types_.make();
    type->kind = kind;
    type->name = name;
    type->slots = slots;
    return type;
}

const Type *TypeTable::enumeration(std::string_view name, std::vector<std::string> literals) {
    const auto count = static_cast<int32_t>(literals.size());
    Type *type = add(TypeKind::enumeration, name, count <= 256 ? 1 : word_slots);
    type->direction = Direction::to;
    type->right = count - 1;
    type->length = count;
    type->literals = std::move(literals);
    for (std::string &literal : type->literals) {
        type->literal_texts.push_back(literal.data());
    }
    return type;
}

const Type *TypeTable::integer(std::string_view name, int32_t left, int32_t right,
                               Direction direction) {
    Type *type = add(TypeKind::integer, name, word_slots);
    type->left = left;
    type->right = right;
    type->direction = direction;
    type->length = range_length(left, right, direction);
    type->starts_at_zero = left == 0;
    return type;
}

const Type *TypeTable::physical(std::string_view name, int32_t left, int32_t right) {
    Type *type = add(TypeKind::physical, name, word_slots);
    type->left = left;
    type->right = right;
    type->direction = Direction::to;
    type->starts_at_zero = left == 0;
    return type;
}

const Type *TypeTable::real(std::string_view name) {
    return add(TypeKind::real, name, word_slots);
}

const Type *TypeTable::time(std::string_view name) {
    return add(TypeKind::time, name, word_slots);
}

const Type *TypeTable::access(std::string_view name) {
    return add(TypeKind::access, name, word_slots);
}

const Type *TypeTable::file(std::string_view name) {
    return add(TypeKind::file, name, word_slots);
}

const Type *TypeTable::array(const Type *element, int32_t left, int32_t right) {
    return array(element, left, right, left <= right ? Direction::to : Direction::downto);
}

const Type *TypeTable::array(const Type *element, int32_t left, int32_t right,
                             Direction direction) {
    const ArrayKey key{element, left, right, direction};
    if (const auto known = arrays_.find(key); known != arrays_.end()) {
        return known->second;
    }
    const int64_t length = range_length(left, right, direction);
    const uint64_t slots = static_cast<uint64_t>(length) * element->slots;
    if (length > INT32_MAX || slots > largest_object) {
        return nullptr;
    }
    Type *type = add(TypeKind::array, "array", static_cast<Slot>(slots));
    type->left = left;
    type->right = right;
    type->direction = direction;
    type->length = length;
    type->element = element;
    type->starts_at_zero = element->starts_at_zero;
    arrays_.emplace(key, type);
    return type;
}

const Type *TypeTable::record(std::string_view name, std::vector<Field> fields) {
    uint64_t slots = 0;
    bool starts_at_zero = true;
    for (Field &field : fields) {
        field.offset = static_cast<Slot>(slots);
        slots += field.type->slots;
        starts_at_zero = starts_at_zero && field.type->starts_at_zero;
        if (slots > largest_object) {
            return nullptr;
        }
    }
    Type *type = add(TypeKind::record, name, static_cast<Slot>(slots));
    type->length = static_cast<int64_t>(fields.size());
    type->fields = std::move(fields);
    type->starts_at_zero = starts_at_zero;
    return type;
}

}  // namespace wf
