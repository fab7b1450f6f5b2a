// SPDX-License-Identifier: Apache-2.0
// The types of a GHW file, turned one by one into the design's types.
//
// - A subtype of an enumeration is its type: positions count from the type's first literal.
//   std_ulogic, bit and boolean are the design's own.
// - A subtype of an integer or a physical type has its own bounds; bounds beyond 32 bits are cut to
//   them. The physical type called time is a time.
// - An array of several dimensions is an array of arrays, the first dimension outermost.
// - An array without bounds, and what contains one, has no type in the design; its subtypes give
//   the bounds that are missing, those of an array before those of its elements.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/design/type.h"
#include "host/source/ghw/strings.h"
#include "host/source/ghw/tokens.h"

namespace wf::ghw {

// What a type of the file is called by its number: the kinds that a signal can have.
enum class Kind : uint8_t {
    bit2 = 22,  // enumerations of two and of up to 256 literals: a value is a byte
    enum8 = 23,
    enum32 = 24,
    int32 = 25,  // a value is a signed LEB128 number, as of the physical types
    int64 = 26,
    real64 = 27,  // eight bytes
    physical32 = 28,
    physical64 = 29,
    array = 31,
    record = 32,
    unbounded_record = 33,
    subtype_scalar = 34,
    subtype_array = 35,
    subtype_unbounded_array = 37,
    subtype_record = 38,
    subtype_unbounded_record = 39
};

// One type of the file.
struct FileType {
    struct Part {
        std::string_view name;
        uint32_t type = 0;
    };

    Kind kind = Kind::bit2;  // of the type behind a subtype
    std::string_view name;
    const Type *type = nullptr;                 // the design's; null while bounds are missing
    uint32_t element = 0;                       // an array's
    std::vector<uint32_t> indices;              // the types of an array's indices, one a dimension
    std::shared_ptr<std::vector<Part>> fields;  // a record's; its subtypes have the same
};

class Types {
  public:
    // Composites within composites, and the dimensions of an array.
    static constexpr uint32_t deepest = 64;
    // Fields of all records together, those of their subtypes included.
    static constexpr uint32_t most_fields = 1U << 22;

    // Makes types in `table`, with names from `strings`; both outlive this object.
    Types(TypeTable &table, const Strings &strings) : table_(table), strings_(strings) {}

    // Reads the section of types behind its tag.
    bool read(Tokens &tokens);
    // Reads the section of well-known types behind its tag. They are known by their literals, so
    // that nothing is left to do.
    bool read_well_known(Tokens &tokens) const;

    // Reads the number of a type: the type, or null.
    const FileType *read_reference(Tokens &tokens, std::string_view expected) const;
    // Reads one discrete value, and gives it as written: `3`, `red`, `'x'`.
    bool read_value(Tokens &tokens, const FileType &type, std::string &text) const;

    // Scalars in one object of a type.
    uint32_t leaves(const Type *type) { return static_cast<uint32_t>(extent(type).leaves); }

    // The length of a tick as a power of ten of seconds. The file tells it by the unit of time that
    // is one tick; when it does not hold the type time, ticks are femtoseconds.
    int resolution() const { return resolution_; }

  private:
    struct Range {
        Direction direction = Direction::to;
        int64_t left = 0;
        int64_t right = 0;
    };
    // The size of a type as a tree: `parts` counts elements and fields of all levels.
    struct Extent {
        uint64_t parts = 1;
        uint64_t leaves = 1;
        uint32_t depth = 0;
    };

    uint32_t count() const { return static_cast<uint32_t>(types_.size()); }
    bool read_type(Tokens &tokens, FileType &type);
    bool read_enumeration(Tokens &tokens, FileType &type);
    bool read_physical(Tokens &tokens, FileType &type);
    bool read_array(Tokens &tokens, FileType &type) const;
    bool read_record(Tokens &tokens, FileType &type);
    bool read_scalar_subtype(Tokens &tokens, FileType &type);
    bool read_composite_subtype(Tokens &tokens, FileType &type, bool is_bounded);
    bool read_number(Tokens &tokens, Kind kind, int64_t &value) const;
    bool read_range(Tokens &tokens, Kind kind, Range &range) const;
    // The type with the bounds that are missing, which are read; null on failure.
    const Type *read_bounds(Tokens &tokens, const FileType &type);
    const Type *read_array_bounds(Tokens &tokens, const FileType &type);
    const Type *complete(Tokens &tokens, uint32_t number);
    const Type *make_record(Tokens &tokens, const FileType &type);
    // Null, and a message, when the type is null or out of all proportion.
    const Type *checked(Tokens &tokens, const Type *type);
    Extent extent(const Type *type);

    TypeTable &table_;
    const Strings &strings_;
    std::vector<FileType> types_;  // number 1 first
    std::unordered_map<const Type *, Extent> extents_;
    std::size_t fields_made_ = 0;
    int resolution_ = -15;
};

}  // namespace wf::ghw
