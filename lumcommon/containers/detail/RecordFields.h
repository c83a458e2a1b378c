#pragma once

#include <lumcommon/streams/detail/StreamReading.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <span>

namespace LumCommon::detail {

/// A number in a record of a file: its offset and, by its type, its width.
template <class Number>
struct Field {
    std::size_t offset;

    constexpr std::size_t end() const noexcept { return offset + sizeof(Number); }
};

/// Consecutive numbers of one type in a record.
template <class Number>
struct FieldRow {
    std::size_t offset;
    std::size_t count;

    constexpr Field<Number> operator[](std::size_t index) const noexcept { return {offset + index * sizeof(Number)}; }
    constexpr std::size_t bytes() const noexcept { return count * sizeof(Number); }
    constexpr std::size_t end() const noexcept { return offset + bytes(); }
};

/// The bytes of a record, read field by field. A field that is not there in full is 0: nothing is ever read outside the
/// record.
class RecordView {
public:
    explicit RecordView(std::span<const char> record, std::endian order = std::endian::little) noexcept
        : record_(record), order_(order) {}

    template <class Number>
    Number get(Field<Number> field) const noexcept {
        if (field.end() > record_.size()) return 0;
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < sizeof(Number); ++i) {
            const std::size_t shift = 8 * (order_ == std::endian::little ? i : sizeof(Number) - 1 - i);
            value |= std::uint64_t{static_cast<unsigned char>(record_[field.offset + i])} << shift;
        }
        return static_cast<Number>(value);
    }
    /// The bytes in the order of the file; none if they are not all there.
    std::span<const char> get(FieldRow<std::uint8_t> row) const noexcept {
        return row.end() > record_.size() ? std::span<const char>() : record_.subspan(row.offset, row.count);
    }

private:
    std::span<const char> record_;
    std::endian order_;
};

/// Reads a record from a stream. If the stream ends within the record, the fields that it lacks are 0.
/// @tparam Record  states its size as `bytes`.
template <class Record>
class RecordReader {
public:
    /// @param front  how many bytes of the record have been read already; its fields in them are 0.
    explicit RecordReader(std::istream& in, std::size_t front = 0) noexcept
        : view_(std::span<const char>(room_, front + readBytes(in, std::span<char>(room_).subspan(front)))) {}
    RecordReader(const RecordReader&) = delete;
    RecordReader& operator=(const RecordReader&) = delete;

    template <class Number>
    Number get(Field<Number> field) const noexcept {
        return view_.get(field);
    }
    operator const RecordView&() const noexcept { return view_; }

private:
    char room_[Record::bytes] = {};
    RecordView view_;
};

}  // namespace LumCommon::detail
