#pragma once

#include <lumcommon/core/Text.h>

#include <cstdint>
#include <variant>
#include <vector>

namespace LumCommon {

/// A class identifier as property sets store it.
struct OLE_CLSID {
    std::uint32_t data1 = 0;
    std::uint16_t data2 = 0;
    std::uint16_t data3 = 0;
    unsigned char data4[8] = {};

    friend bool operator==(const OLE_CLSID&, const OLE_CLSID&) = default;
};

struct OlePropertyElements;

// clang-format off
/// A value of a property set, of any type in the published format ([MS-OLEPS], Object Linking and Embedding Property
/// Set Data Structures, section 2.15). What it holds follows from its type:
///
/// | type | content |
/// |---|---|
/// | EMPTY, NULL_VALUE | std::monostate |
/// | INT8, INT16, INT32, INT64, INT | std::int64_t |
/// | CURRENCY | std::int64_t, in ten-thousandths |
/// | UINT8, UINT16, UINT32, UINT64, UINT, ERROR_CODE | std::uint64_t |
/// | FILE_TIME | std::uint64_t, in 100 nanoseconds since 1601-01-01 UTC; a duration for the editing time |
/// | FLOAT, DOUBLE | double |
/// | DATE | double, in days since 1899-12-30, without a time zone |
/// | BOOLEAN | bool |
/// | STRING, BASIC_STRING, WIDE_STRING | UnicodeString, up to the first zero |
/// | DECIMAL | UnicodeString, all its digits: "-12.50" |
/// | STREAM, STORAGE | UnicodeString, the name of what holds the value |
/// | STREAMED_OBJECT, STORED_OBJECT, VERSIONED_STREAM | UnicodeString, the name of what holds the value |
/// | CLASS_ID | OLE_CLSID |
/// | BLOB, BLOB_OBJECT | OlePropertyBytes |
/// | CLIPBOARD | OlePropertyBytes, as stored: the first four are the format's |
/// | VECTOR with INT8 or UINT8 | OlePropertyBytes |
/// | VECTOR or ARRAY with another of these types, or with VARIANT | OlePropertyElements |
///
///     if (const auto* pages = std::get_if<std::int64_t>(&value.content)) ...
///
/// Threads: as for any value type.
struct OlePropertyValue;
// clang-format on

using OlePropertyBytes = std::vector<unsigned char>;

/// The elements of a vector or an array, in the order stored. Each has its own type; with VARIANT these can differ.
struct OlePropertyElements {
    struct Dimension {
        std::uint32_t size = 0;
        std::int32_t lowestIndex = 0;

        friend bool operator==(const Dimension&, const Dimension&) = default;
    };

    std::vector<OlePropertyValue> values;
    std::vector<Dimension> dimensions;  ///< of an array, as stored; empty for a vector

    bool operator==(const OlePropertyElements& other) const;
};

struct OlePropertyValue {
    enum Type : std::uint32_t {
        EMPTY = 0,
        NULL_VALUE = 1,
        INT16 = 2,
        INT32 = 3,
        FLOAT = 4,
        DOUBLE = 5,
        CURRENCY = 6,
        DATE = 7,
        BASIC_STRING = 8,
        ERROR_CODE = 10,
        BOOLEAN = 11,
        VARIANT = 12,
        DECIMAL = 14,
        INT8 = 16,
        UINT8 = 17,
        UINT16 = 18,
        UINT32 = 19,
        INT64 = 20,
        UINT64 = 21,
        INT = 22,   // 32 bits
        UINT = 23,  // 32 bits
        STRING = 30,
        WIDE_STRING = 31,
        FILE_TIME = 64,
        BLOB = 65,
        STREAM = 66,
        STORAGE = 67,
        STREAMED_OBJECT = 68,
        STORED_OBJECT = 69,
        BLOB_OBJECT = 70,
        CLIPBOARD = 71,
        CLASS_ID = 72,
        VERSIONED_STREAM = 73,
        VECTOR = 0x1000,  // a flag
        ARRAY = 0x2000,   // a flag
    };

    using Content = std::variant<std::monostate, std::int64_t, std::uint64_t, double, bool, UnicodeString, OLE_CLSID,
                                 OlePropertyBytes, OlePropertyElements>;

    /// As stored, flags included.
    std::uint32_t type = EMPTY;
    /// The value cannot be read: it is cut short, claims more than there is, or its type is not one of the above. It
    /// then has no content.
    bool isDamaged = false;
    Content content;

    bool operator==(const OlePropertyValue&) const = default;
};

inline bool OlePropertyElements::operator==(const OlePropertyElements& other) const {
    return values == other.values && dimensions == other.dimensions;
}

/// A property of a set and where it belongs.
struct OleProperty {
    OLE_CLSID formatId;    ///< of its section: tells what the numbers mean
    std::uint32_t id = 0;  ///< unique in its section
    UnicodeString name;    ///< from the section's dictionary, for user-defined properties; else empty
    bool isNamed = false;  ///< its section has a dictionary, so that the number means nothing by itself
    OlePropertyValue value;
};

}  // namespace LumCommon
