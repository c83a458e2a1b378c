#pragma once

#include <lumcommon/containers/OleDirInfo.h>
#include <lumcommon/containers/detail/RecordFields.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

// The records of a compound file as the published format lays them out. Sector numbers and directory indexes are
// signed: the negative ones have special meanings.

namespace LumCommon::detail {

inline constexpr std::string_view oleSignature = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";

struct OleHeader {
    static constexpr FieldRow<std::uint8_t> signature{0, oleSignature.size()};
    static constexpr FieldRow<std::uint8_t> classId{signature.end(), 16};
    static constexpr Field<std::uint16_t> minorVersion{classId.end()};
    static constexpr Field<std::uint16_t> majorVersion{minorVersion.end()};
    static constexpr FieldRow<std::uint8_t> majorVersionBytes{majorVersion.offset, 2};
    static constexpr Field<std::uint16_t> byteOrder{majorVersion.end()};
    static constexpr Field<std::uint16_t> sectorShift{byteOrder.end()};
    static constexpr Field<std::uint16_t> miniSectorShift{sectorShift.end()};
    static constexpr FieldRow<std::uint8_t> reserved{miniSectorShift.end(), 6};
    static constexpr Field<std::uint32_t> directorySectorCount{reserved.end()};
    static constexpr Field<std::uint32_t> fatSectorCount{directorySectorCount.end()};
    static constexpr Field<std::int32_t> firstDirectorySector{fatSectorCount.end()};
    static constexpr Field<std::uint32_t> transaction{firstDirectorySector.end()};
    static constexpr Field<std::uint32_t> miniStreamCutoff{transaction.end()};
    static constexpr Field<std::int32_t> firstMiniFatSector{miniStreamCutoff.end()};
    static constexpr Field<std::uint32_t> miniFatSectorCount{firstMiniFatSector.end()};
    static constexpr Field<std::int32_t> firstDifatSector{miniFatSectorCount.end()};
    static constexpr Field<std::uint32_t> difatSectorCount{firstDifatSector.end()};
    static constexpr FieldRow<std::int32_t> fatSectors{difatSectorCount.end(), 109};  // the rest is in the DIFAT
    static constexpr std::size_t bytes = fatSectors.end();
};
static_assert(OleHeader::bytes == 512);

inline bool startsWithOleSignature(std::span<const char> bytes) noexcept {
    return std::ranges::equal(RecordView(bytes).get(OleHeader::signature), oleSignature);
}

struct OleDirectoryEntry {
    static constexpr FieldRow<char16_t> name{0, 32};
    static constexpr Field<std::uint16_t> nameBytes{name.end()};  // the terminating zero included
    static constexpr Field<std::uint8_t> type{nameBytes.end()};
    static constexpr Field<std::uint8_t> color{type.end()};
    static constexpr Field<std::int32_t> left{color.end()};
    static constexpr Field<std::int32_t> right{left.end()};
    static constexpr Field<std::int32_t> child{right.end()};
    static constexpr FieldRow<std::uint8_t> classId{child.end(), 16};
    static constexpr Field<std::uint32_t> stateBits{classId.end()};
    static constexpr Field<std::uint64_t> creationTime{stateBits.end()};
    static constexpr Field<std::uint64_t> modificationTime{creationTime.end()};
    static constexpr Field<std::int32_t> startSector{modificationTime.end()};
    static constexpr Field<std::uint32_t> size{startSector.end()};
    static constexpr Field<std::uint32_t> sizeAbove4Gi{size.end()};
    static constexpr std::size_t bytes = sizeAbove4Gi.end();
};
static_assert(OleDirectoryEntry::bytes == OleDirInfo::entryBytes);

}  // namespace LumCommon::detail
