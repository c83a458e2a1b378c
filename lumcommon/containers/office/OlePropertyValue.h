#pragma once

#include <lumcommon/core/Text.h>

#include <cstdint>
#include <variant>
#include <vector>

namespace LumCommon {

/// A class identifier as property sets store it.
struct OLE_CLSID {
    std::uint32_t data1 = 0;      ///< the first eight hexadecimal digits of the usual form
    std::uint16_t data2 = 0;      ///< the next four
    std::uint16_t data3 = 0;      ///< the next four
    unsigned char data4[8] = {};  ///< the rest, in order

    /// Whether all fields are equal.
    friend bool operator==(const OLE_CLSID&, const OLE_CLSID&) = default;
};

struct OlePropertyElements;
struct OlePropertyValue;

/// Bytes as they are stored.
using OlePropertyBytes = std::vector<unsigned char>;

/// The elements of a vector or an array, in the order stored. Each has its own type; with VARIANT these can differ.
struct OlePropertyElements {
    /// One dimension of an array.
    struct Dimension {
        std::uint32_t size = 0;        ///< the number of elements along it
        std::int32_t lowestIndex = 0;  ///< the index of the first of them

        /// Whether size and lowest index are equal.
        friend bool operator==(const Dimension&, const Dimension&) = default;
    };

    std::vector<OlePropertyValue> values;  ///< in the order stored
    std::vector<Dimension> dimensions;     ///< of an array, as stored; empty for a vector

    /// Whether all elements and dimensions are equal, in order.
    bool operator==(const OlePropertyElements& other) const;
};

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
struct OlePropertyValue {
    // clang-format on

    /// The types of the published format; VECTOR and ARRAY are flags that go with another type.
    enum Type : std::uint32_t {
        EMPTY = 0,              ///< no value
        NULL_VALUE = 1,         ///< null, as databases know it
        INT16 = 2,              ///< 16 bits
        INT32 = 3,              ///< 32 bits
        FLOAT = 4,              ///< 32 bits
        DOUBLE = 5,             ///< 64 bits
        CURRENCY = 6,           ///< an amount of money
        DATE = 7,               ///< days and fractions of days
        BASIC_STRING = 8,       ///< text in the code page of the section
        ERROR_CODE = 10,        ///< a status code of a system
        BOOLEAN = 11,           ///< true where anything but zero is stored
        VARIANT = 12,           ///< of a vector or array: each element has a type of its own
        DECIMAL = 14,           ///< an exact decimal
        INT8 = 16,              ///< 8 bits
        UINT8 = 17,             ///< 8 bits
        UINT16 = 18,            ///< 16 bits
        UINT32 = 19,            ///< 32 bits
        INT64 = 20,             ///< 64 bits
        UINT64 = 21,            ///< 64 bits
        INT = 22,               ///< 32 bits
        UINT = 23,              ///< 32 bits
        STRING = 30,            ///< text in the code page of the section
        WIDE_STRING = 31,       ///< text in UTF-16
        FILE_TIME = 64,         ///< a point in time, or a duration
        BLOB = 65,              ///< bytes with their number
        STREAM = 66,            ///< the name of a stream
        STORAGE = 67,           ///< the name of a storage
        STREAMED_OBJECT = 68,   ///< the name of a stream that holds an object
        STORED_OBJECT = 69,     ///< the name of a storage that holds an object
        BLOB_OBJECT = 70,       ///< a serialized object
        CLIPBOARD = 71,         ///< what a clipboard held, as an icon or preview
        CLASS_ID = 72,          ///< a class identifier
        VERSIONED_STREAM = 73,  ///< the name of a stream, with a version
        VECTOR = 0x1000,        ///< a flag: the value is a vector of the type in the low bits
        ARRAY = 0x2000,         ///< a flag: the value is an array of the type in the low bits
    };

    /// What a value can hold; the table above tells which type holds what.
    using Content = std::variant<std::monostate, std::int64_t, std::uint64_t, double, bool, UnicodeString, OLE_CLSID,
                                 OlePropertyBytes, OlePropertyElements>;

    /// As stored, flags included.
    std::uint32_t type = EMPTY;
    /// The value cannot be read: it is cut short, claims more than there is, or its type is not one of the above. It
    /// then has no content.
    bool isDamaged = false;
    Content content;  ///< std::monostate when damaged

    /// Whether types and contents are equal.
    bool operator==(const OlePropertyValue&) const = default;
};

inline bool OlePropertyElements::operator==(const OlePropertyElements& other) const {
    return values == other.values && dimensions == other.dimensions;
}

/// A property of a set and where it belongs.
struct OleProperty {
    OLE_CLSID formatId;      ///< of its section: tells what the numbers mean
    std::uint32_t id = 0;    ///< unique in its section
    UnicodeString name;      ///< from the section's dictionary, for user-defined properties; else empty
    bool isNamed = false;    ///< its section has a dictionary, so that the number means nothing by itself
    OlePropertyValue value;  ///< what the property is
};

}  // namespace LumCommon
