#pragma once

#include <lumcommon/containers/office/OlePropertyValue.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace LumCommon::detail {

/// Reads values from a property set in memory. Values can overlap and be read in several ways, so one reader reads no
/// more than four times the bytes of its set in total, and no more than 1,048,576 elements; anything beyond that is
/// damaged.
class PropertyValueReader {
public:
    /// @param set  must outlive the reader.
    PropertyValueReader(std::span<const unsigned char> set, bool isSwapped) noexcept;

    /// Sets the code page of the strings that are read next.
    void setCodePage(unsigned codePage);

    /// @param position  just after the type; may be past the end of the set.
    OlePropertyValue readValue(std::uint32_t type, std::uint64_t position);
    /// The names of a dictionary whose strings consist of 16-bit units, as far as they can be read.
    std::vector<std::pair<std::uint32_t, UnicodeString>> readWideNames(std::uint32_t count, std::uint64_t position);
    /// Text in the code page, up to its first zero.
    UnicodeString decode(std::span<const unsigned char> bytes) const;

    bool isWide() const noexcept;

private:
    /// How the strings in a vector are padded to four bytes: with zeros, as the format requires; not at all, as office
    /// programs write the titles of parts; or with whatever was in the writer's memory.
    enum class Padding { ZEROS, NONE, ANY };

    bool take(std::uint64_t bytes, std::span<const unsigned char>& run) noexcept;
    template <class Number>
    bool takeNumber(Number& number) noexcept;
    template <class Stored, class Held>
    bool readNumber(OlePropertyValue::Content& content) noexcept;
    bool readString(OlePropertyValue::Content& content);
    bool readWideString(OlePropertyValue::Content& content);
    bool readBytes(OlePropertyValue::Content& content);
    bool readClassId(OlePropertyValue::Content& content) noexcept;
    bool readDecimal(OlePropertyValue::Content& content);
    bool readScalar(std::uint32_t type, OlePropertyValue::Content& content);
    bool readElements(std::uint32_t type, OlePropertyValue::Content& content);
    bool readRun(std::uint32_t type, std::size_t count, Padding padding, std::vector<OlePropertyValue>& values);
    bool skipPadding(std::uint64_t start, Padding padding) noexcept;
    UnicodeString decodeWide(std::span<const unsigned char> bytes) const;

    std::span<const unsigned char> set_;
    bool littleEndian_;
    unsigned codePage_ = 0;
    std::string charset_;
    std::uint64_t position_ = 0;
    std::uint64_t budgetBytes_;
    std::size_t elementsLeft_;
};

}  // namespace LumCommon::detail
