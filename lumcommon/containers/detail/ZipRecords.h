#pragma once

#include <lumcommon/containers/LumZipEntry.h>
#include <lumcommon/containers/detail/RecordFields.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <ios>

// The records of a zip archive as the published format lays them out, each beginning with its signature. All numbers
// are little-endian; names, extra fields and comments follow the records.

namespace LumCommon::detail {

/// The fields that a local header and a header of the central directory share.
template <std::size_t start>
struct ZipMemberLayout {
    static constexpr Field<std::uint16_t> versionNeeded{start};
    static constexpr Field<std::uint16_t> flags{versionNeeded.end()};
    static constexpr Field<std::uint16_t> method{flags.end()};
    static constexpr Field<std::uint16_t> modificationTime{method.end()};
    static constexpr Field<std::uint16_t> modificationDate{modificationTime.end()};
    static constexpr Field<std::uint32_t> crc32{modificationDate.end()};
    static constexpr Field<std::uint32_t> compressedSize{crc32.end()};
    static constexpr Field<std::uint32_t> uncompressedSize{compressedSize.end()};
    static constexpr Field<std::uint16_t> nameLength{uncompressedSize.end()};
    static constexpr Field<std::uint16_t> extraLength{nameLength.end()};
    static constexpr std::size_t end = extraLength.end();

    static LumZipMemberFields readFrom(const RecordView& record) noexcept {
        LumZipMemberFields fields;
        fields.versionNeeded = record.get(versionNeeded);
        fields.flags = record.get(flags);
        fields.method = record.get(method);
        fields.modificationTime = record.get(modificationTime);
        fields.modificationDate = record.get(modificationDate);
        fields.crc32 = record.get(crc32);
        fields.compressedSize = record.get(compressedSize);
        fields.uncompressedSize = record.get(uncompressedSize);
        fields.nameLength = record.get(nameLength);
        fields.extraLength = record.get(extraLength);
        return fields;
    }
};

/// What every record begins with.
struct ZipSignature {
    static constexpr Field<std::uint32_t> signature{0};
    static constexpr std::size_t bytes = signature.end();
};

struct ZipLocalHeader : ZipSignature {
    using Member = ZipMemberLayout<signature.end()>;
    static constexpr std::size_t bytes = Member::end;
};
static_assert(ZipLocalHeader::bytes == 30);

struct ZipDescriptor : ZipSignature {
    static constexpr Field<std::uint32_t> crc32{signature.end()};
    static constexpr Field<std::uint32_t> compressedSize{crc32.end()};
    static constexpr Field<std::uint32_t> uncompressedSize{compressedSize.end()};
    static constexpr std::size_t bytes = uncompressedSize.end();
};
static_assert(ZipDescriptor::bytes == 16);

struct ZipDirectoryHeader : ZipSignature {
    static constexpr Field<std::uint16_t> versionMadeBy{signature.end()};
    using Member = ZipMemberLayout<versionMadeBy.end()>;
    static constexpr Field<std::uint16_t> commentLength{Member::end};
    static constexpr Field<std::uint16_t> diskNumberStart{commentLength.end()};
    static constexpr Field<std::uint16_t> internalAttributes{diskNumberStart.end()};
    static constexpr Field<std::uint32_t> externalAttributes{internalAttributes.end()};
    static constexpr Field<std::uint32_t> localHeaderOffset{externalAttributes.end()};
    static constexpr std::size_t bytes = localHeaderOffset.end();
};
static_assert(ZipDirectoryHeader::bytes == 46);

struct ZipEndRecord : ZipSignature {
    static constexpr Field<std::uint16_t> diskNumber{signature.end()};
    static constexpr Field<std::uint16_t> directoryDisk{diskNumber.end()};
    static constexpr Field<std::uint16_t> diskEntryCount{directoryDisk.end()};
    static constexpr Field<std::uint16_t> totalEntryCount{diskEntryCount.end()};
    static constexpr Field<std::uint32_t> directorySize{totalEntryCount.end()};
    static constexpr Field<std::uint32_t> directoryOffset{directorySize.end()};
    static constexpr Field<std::uint16_t> commentLength{directoryOffset.end()};
    static constexpr std::size_t bytes = commentLength.end();
};
static_assert(ZipEndRecord::bytes == 22);

/// In a zip64 archive, comes right before the locator, which comes right before the end record.
struct Zip64EndRecord : ZipSignature {
    static constexpr std::uint32_t SIGNATURE = 0x06064B50u;
    static constexpr Field<std::uint64_t> recordSize{signature.end()};
    static constexpr Field<std::uint16_t> versionMadeBy{recordSize.end()};
    static constexpr Field<std::uint16_t> versionNeeded{versionMadeBy.end()};
    static constexpr Field<std::uint32_t> diskNumber{versionNeeded.end()};
    static constexpr Field<std::uint32_t> directoryDisk{diskNumber.end()};
    static constexpr Field<std::uint64_t> diskEntryCount{directoryDisk.end()};
    static constexpr Field<std::uint64_t> totalEntryCount{diskEntryCount.end()};
    static constexpr Field<std::uint64_t> directorySize{totalEntryCount.end()};
    static constexpr Field<std::uint64_t> directoryOffset{directorySize.end()};
    static constexpr std::size_t bytes = directoryOffset.end();
};
static_assert(Zip64EndRecord::bytes == 56);

struct Zip64Locator : ZipSignature {
    static constexpr std::uint32_t SIGNATURE = 0x07064B50u;
    static constexpr Field<std::uint32_t> endRecordDisk{signature.end()};
    static constexpr Field<std::uint64_t> endRecordOffset{endRecordDisk.end()};
    static constexpr Field<std::uint32_t> diskCount{endRecordOffset.end()};
    static constexpr std::size_t bytes = diskCount.end();
};
static_assert(Zip64Locator::bytes == 20);

/// The bytes of a signature in the order in which an archive has them.
constexpr std::array<char, ZipSignature::bytes> zipSignatureBytes(std::uint32_t signature) noexcept {
    return {static_cast<char>(signature & 0xFF), static_cast<char>(signature >> 8 & 0xFF),
            static_cast<char>(signature >> 16 & 0xFF), static_cast<char>(signature >> 24)};
}

}  // namespace LumCommon::detail
