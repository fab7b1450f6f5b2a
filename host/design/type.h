// SPDX-License-Identifier: Apache-2.0
// The types of a design's signals and the table that owns them. A type says how many slots of the
// design's storage one object of it takes; it knows nothing of objects or values.
#pragma once

#include "host/design/arena.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace wf {

// A place in the design's storage, one byte wide. An enumeration of at most 256 literals takes one
// slot (its position); every other scalar takes eight (an int64_t, or a double for a real, copied
// in and out). The leaves of a composite follow each other in declared order.
using Slot = uint32_t;
inline constexpr Slot no_slot = UINT32_MAX;

enum class TypeKind : uint8_t {
    integer,
    array,
    record,
    enumeration,
    physical,
    real,
    access,
    file,
    time
};

// The direction of a range, in the interface's numbers; a record has none.
enum class Direction : int8_t { downto = -1, none = 0, to = 1 };

struct Type;

// One field of a record; `offset` is its distance in slots from the record's first.
struct Field {
    std::string name;
    const Type *type;
    Slot offset = 0;
};

// A type; made by TypeTable and never changed afterwards.
struct Type {
    TypeKind kind = TypeKind::integer;
    Direction direction = Direction::none;
    std::string name;
    int32_t left = 0;    // an enumeration's bounds are 0 and its last position
    int32_t right = 0;   //
    int64_t length = 0;  // elements, literals, fields or values of an integer; 0 for other kinds
    Slot slots = 0;
    bool starts_at_zero = true;         // the leftmost value is all bytes zero
    const Type *element = nullptr;      // an array's
    std::vector<std::string> literals;  // as written: character literals with their quotes
    std::vector<char *> literal_texts;  // the same, as the interface hands them out
    std::vector<Field> fields;

    bool is_composite() const { return kind == TypeKind::array || kind == TypeKind::record; }
    bool is_byte() const { return slots == 1 && kind == TypeKind::enumeration; }
    // How many elements or fields stand one level below: 0 for a scalar.
    uint32_t element_count() const { return is_composite() ? static_cast<uint32_t>(length) : 0; }
    // The type of the element at a position, and its distance in slots from the first.
    const Type *element_type(uint32_t position) const;
    Slot element_offset(uint32_t position) const;
    // The position of an index of an array's range, or -1.
    int64_t position_of(int64_t index) const;
    // The index, in an array's range, of the element at a position.
    int64_t index_of(uint32_t position) const;
    // The position of the field of that name, or -1.
    int64_t field_position(std::string_view field) const;
    // The position of a literal as written, or -1.
    int64_t literal_position(std::string_view literal) const;
};

// Owns the types of one design; a type stays where it is until the table goes. The predefined types
// and the arrays come out as one object however often they are asked for, the others are made anew.
class TypeTable {
  public:
    TypeTable();
    TypeTable(const TypeTable &) = delete;
    TypeTable &operator=(const TypeTable &) = delete;

    const Type *std_logic() const { return std_logic_; }
    const Type *bit() const { return bit_; }
    const Type *boolean() const { return boolean_; }
    const Type *enumeration(std::string_view name, std::vector<std::string> literals);
    const Type *integer(std::string_view name, int32_t left, int32_t right,
                        Direction direction = Direction::to);
    const Type *physical(std::string_view name, int32_t left, int32_t right);
    const Type *real(std::string_view name = "real");
    const Type *time(std::string_view name = "time");
    const Type *access(std::string_view name);
    const Type *file(std::string_view name);
    // An array; without a direction it runs upwards when left <= right. Null when one object of it
    // would take more than 2^31 slots.
    const Type *array(const Type *element, int32_t left, int32_t right);
    const Type *array(const Type *element, int32_t left, int32_t right, Direction direction);
    // A record of these fields, whose offsets are computed here. Null when it is too large.
    const Type *record(std::string_view name, std::vector<Field> fields);

    // Whether this is the address of one of the table's types; any address may be asked for.
    bool contains(const void *type) const { return types_.contains(type); }

  private:
    struct ArrayKey {
        const Type *element;
        int32_t left, right;
        Direction direction;
        bool operator==(const ArrayKey &) const = default;
    };
    struct ArrayHash {
        size_t operator()(const ArrayKey &key) const;
    };

    Type *add(TypeKind kind, std::string_view name, Slot slots);

    Arena<Type> types_;
    std::unordered_map<ArrayKey, const Type *, ArrayHash> arrays_;
    const Type *std_logic_;
    const Type *bit_;
    const Type *boolean_;
};

}  // namespace wf
