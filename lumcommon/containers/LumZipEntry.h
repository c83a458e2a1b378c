#pragma once

#include <lumcommon/core/LumRCObject.h>

#include <cstdint>
#include <ios>
#include <iosfwd>

namespace LumCommon {

/// The fields that the local header and the central directory header of a member share, in their order.
struct LumZipMemberFields {
    std::uint16_t versionNeeded = 0;     ///< the version of the format, times ten
    std::uint16_t flags = 0;             ///< bit 0: encrypted; bit 3: a data descriptor follows the data
    std::uint16_t method = 0;            ///< 0: stored; 8: deflate
    std::uint16_t modificationTime = 0;  ///< in the format of DOS
    std::uint16_t modificationDate = 0;  ///< in the format of DOS
    std::uint32_t crc32 = 0;             ///< of the uncompressed data; never checked
    std::uint32_t compressedSize = 0;    ///< in bytes
    std::uint32_t uncompressedSize = 0;  ///< in bytes
    std::uint16_t nameLength = 0;        ///< in bytes
    std::uint16_t extraLength = 0;       ///< in bytes
};

/// One record of a zip archive. Each class reads its record at the stream's position when it is constructed.
///
/// Failure: nothing is thrown, even if the stream throws. A field past the end of the stream is 0, and so is every
/// field after it. All numbers are what the archive says; none has been checked against another.
/// Of the derived classes only LumZipFileEntry has its own type identifier.
/// Ownership: the stream stays with the caller.
/// Threads: one at a time per stream.
class LUM_API LumZipEntry : public LumRCObject {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0xB84B5A40u;

    /// "PK\3\4": the local header of a member.
    static constexpr std::uint32_t SIGNATURE_FILE = 0x04034B50u;
    /// "PK\7\8": a data descriptor.
    static constexpr std::uint32_t SIGNATURE_EXTHEADER = 0x08074B50u;
    /// "PK\1\2": a header of the central directory.
    static constexpr std::uint32_t SIGNATURE_DIRECTORY = 0x02014B50u;
    /// "PK\5\6": the end record of the central directory.
    static constexpr std::uint32_t SIGNATURE_END_DIRECTORY = 0x06054B50u;

    /// Reads the signature.
    explicit LumZipEntry(std::istream& s);
    ~LumZipEntry() override;

    /// The stream that the record was read from; null once an archive that owned it is gone.
    std::istream* getStream() const noexcept { return stream_; }
    /// Where the record begins in the stream, in bytes; -1 if the stream had failed or cannot seek.
    std::streamoff getPosition() const noexcept { return position_; }
    /// The first four bytes of the record; 0 if they could not be read.
    std::uint32_t getSignature() const noexcept { return signature_; }

    /// The next four bytes as a little-endian number; the stream does not move. 0 if there are fewer or the stream
    /// cannot seek.
    static std::uint32_t getSignature(std::istream& s);

    unsigned int getTypeID() const override;
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;

private:
    friend class LumZipFileEntry;  // forgets the stream that its archive deletes

    std::istream* stream_;
    std::streamoff position_;
    std::uint32_t signature_;
};

/// A data descriptor: it follows the data of a member whose sizes were not known when its header was written.
class LUM_API LumZipExtheaderEntry : public LumZipEntry {
public:
    /// Reads the record at the stream's position.
    explicit LumZipExtheaderEntry(std::istream& s);

    /// Of the uncompressed data, as the archive says; never checked.
    std::uint32_t getCrc32() const noexcept { return crc32_; }
    /// In bytes.
    std::uint32_t getCompressedSize() const noexcept { return compressedSize_; }
    /// In bytes.
    std::uint32_t getUncompressedSize() const noexcept { return uncompressedSize_; }

private:
    std::uint32_t crc32_;
    std::uint32_t compressedSize_;
    std::uint32_t uncompressedSize_;
};

/// A file header of the central directory. Constructing it leaves the stream after its comment.
class LUM_API LumZipDirectoryEntry : public LumZipEntry {
public:
    /// Reads the record at the stream's position, name and comment included.
    explicit LumZipDirectoryEntry(std::istream& s);

    /// The version of the format in the low byte, times ten; the system in the high one.
    std::uint16_t getVersionMadeBy() const noexcept { return versionMadeBy_; }
    /// What the local header of the member says too, or should.
    const LumZipMemberFields& getFields() const noexcept { return fields_; }
    /// In bytes.
    std::uint16_t getCommentLength() const noexcept { return commentLength_; }
    /// The number of the disk that the member begins on.
    std::uint16_t getDiskNumberStart() const noexcept { return diskNumberStart_; }
    /// Bit 0: the member is thought to be text.
    std::uint16_t getInternalAttributes() const noexcept { return internalAttributes_; }
    /// What the system of the version has for the file; unused by the library.
    std::uint32_t getExternalAttributes() const noexcept { return externalAttributes_; }
    /// Where the local header begins, in bytes from the start of the archive.
    std::uint32_t getLocalHeaderOffset() const noexcept { return localHeaderOffset_; }
    /// The name in the platform's default charset; empty if the stream does not contain all of it.
    const UnicodeString& getFileName() const noexcept { return fileName_; }

private:
    std::uint16_t versionMadeBy_;
    LumZipMemberFields fields_;
    std::uint16_t commentLength_;
    std::uint16_t diskNumberStart_;
    std::uint16_t internalAttributes_;
    std::uint32_t externalAttributes_;
    std::uint32_t localHeaderOffset_;
    UnicodeString fileName_;
};

/// The end record of the central directory. Constructing it leaves the stream before the archive's comment.
class LUM_API LumZipEndDirectoryEntry : public LumZipEntry {
public:
    /// Reads the record at the stream's position.
    explicit LumZipEndDirectoryEntry(std::istream& s);

    /// The number of this disk; 0 in an archive of one file.
    std::uint16_t getDiskNumber() const noexcept { return diskNumber_; }
    /// The number of the disk that the central directory begins on.
    std::uint16_t getDirectoryDisk() const noexcept { return directoryDisk_; }
    /// How many headers of the central directory are on this disk.
    std::uint16_t getDiskEntryCount() const noexcept { return diskEntryCount_; }
    /// How many headers the central directory has; 65535 may stand for more.
    std::uint16_t getTotalEntryCount() const noexcept { return totalEntryCount_; }
    /// In bytes.
    std::uint32_t getDirectorySize() const noexcept { return directorySize_; }
    /// Where the central directory begins, in bytes from the start of its disk.
    std::uint32_t getDirectoryOffset() const noexcept { return directoryOffset_; }
    /// In bytes, of the comment of the archive.
    std::uint16_t getCommentLength() const noexcept { return commentLength_; }

private:
    std::uint16_t diskNumber_;
    std::uint16_t directoryDisk_;
    std::uint16_t diskEntryCount_;
    std::uint16_t totalEntryCount_;
    std::uint32_t directorySize_;
    std::uint32_t directoryOffset_;
    std::uint16_t commentLength_;
};

}  // namespace LumCommon
