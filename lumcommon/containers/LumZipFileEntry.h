#pragma once

#include <lumcommon/containers/LumZipEntry.h>

#include <memory>
#include <span>
#include <vector>

namespace LumCommon {

class LumInflaterStream;
class LumStrStream;

namespace detail {
struct DirectoryMember;
struct PackageRelationships;
}  // namespace detail

/// A member of a zip archive, read from its local header; its data are read from the archive's stream on first use.
///
/// Sizes and CRC-32 are those of the local header; if that leaves them to a data descriptor, those of the central
/// directory or of the descriptor (see LumZipFile). The data are as many of the claimed bytes as the stream really
/// holds, and memory grows only with these: a member that claims 4 GiB in a file of 100 bytes has fewer than 100.
/// Encrypted members and methods other than deflate are returned as stored; the CRC-32 is never checked.
/// Failure: nothing is thrown, except std::bad_alloc by readCompressedData().
/// Threads: one at a time for all entries of one archive, since they share its stream; streams made with `fresh` are
/// independent of it and of each other.
class LUM_API LumZipFileEntry : public LumZipEntry {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0x1E3480DFu;

    /// The method of data that are as they were.
    static constexpr std::uint16_t METHOD_STORED = 0;
    /// The method of data that are deflated.
    static constexpr std::uint16_t METHOD_DEFLATE = 8;

    /// Reads the local header. The stream is left after the member's data, or failed if it is too short for that and
    /// its buffer refuses to seek there.
    explicit LumZipFileEntry(std::istream& s);
    ~LumZipFileEntry() override;

    /// The name in the platform's default charset (UTF-8 on Linux, according to ICU), as stored: with "/" between
    /// folders and at the end of a folder's own name. Empty if the stream does not contain all of it.
    const UnicodeString& getFileName() const noexcept { return fileName_; }
    /// All fields of the local header, with the sizes of a data descriptor filled in. In an archive read by its central
    /// directory: the fields of that, except the lengths of name and extra field, which are those of the local header.
    const LumZipMemberFields& getFields() const noexcept { return fields_; }
    /// METHOD_STORED, METHOD_DEFLATE, or whatever else the archive says.
    std::uint16_t getMethod() const noexcept { return fields_.method; }
    /// Bit 0: encrypted; bit 3: sizes and checksum follow the data.
    std::uint16_t getFlags() const noexcept { return fields_.flags; }
    /// Of the uncompressed data, as the archive says; never checked.
    std::uint32_t getCrc32() const noexcept { return fields_.crc32; }
    /// In bytes, as claimed; see readCompressedData() for what is really there.
    std::uint32_t getCompressedSize() const noexcept { return fields_.compressedSize; }
    /// In bytes, as claimed.
    std::uint32_t getUncompressedSize() const noexcept { return fields_.uncompressedSize; }
    /// The content type in an office package; empty until LumZipFile::setContentType() has assigned one.
    const UnicodeString& getContentType() const noexcept { return contentType_; }

    /// The member's data as stored, read from the archive on the first call and kept.
    /// @return fewer bytes than claimed if the stream ends earlier, or if the central directory claims more than there
    /// are before the next member; none if the stream cannot seek or is gone, or turns bad (a later call then tries
    /// again).
    /// Failure: std::bad_alloc; a later call tries again.
    /// Ownership: the bytes live as long as the entry.
    /// Cost: O(data) on the first call.
    std::span<const char> readCompressedData();

    /// Opens the data as stored.
    /// @param fresh  true: a new LumStrStream with its own copy of the data. false: the entry's stream, rewound to 0.
    /// @return null if memory runs out or the archive's stream turns bad; a later call tries again.
    /// Ownership: with `fresh` the caller deletes the stream; without, it is deleted with the entry.
    /// Cost: O(data) with `fresh`, and on the first use of the data.
    [[nodiscard]] std::istream* getCompressedStream(bool fresh);
    /// Opens the data, inflated by a LumInflaterStream if the method is deflate; otherwise like getCompressedStream().
    /// Damaged or truncated data end early. The output is not limited to getUncompressedSize(): deflate turns one byte
    /// into 1032 at most.
    /// Argument, result, ownership and cost are those of getCompressedStream().
    [[nodiscard]] std::istream* getUncompressedStream(bool fresh);

    unsigned int getTypeID() const override;
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;

private:
    friend class LumZipFile;

    /// Reads the local header at the stream's position, but takes the fields and the name from the directory.
    LumZipFileEntry(std::istream& s, const detail::DirectoryMember& member);

    /// For an archive that deletes its stream; data not read until now are lost.
    void forgetStream() noexcept { stream_ = nullptr; }
    /// True if the header says so and does not state a compressed size itself.
    bool leavesSizesToDescriptor() const noexcept;
    /// True if the local header does not tell where the data end, because the size is elsewhere.
    bool hasUnknownEnd() const noexcept;
    /// Makes the data end at that position of the stream at the latest.
    void limitData(std::streamoff end) noexcept;
    bool seekData();
    void loadData();

    LumZipMemberFields fields_;
    UnicodeString fileName_;
    std::uint32_t maxDataBytes_ = 0xFFFFFFFFu;
    bool hasReadData_ = false;
    std::vector<char> data_;
    std::unique_ptr<LumStrStream> compressedStream_;
    std::unique_ptr<LumInflaterStream> uncompressedStream_;
    UnicodeString contentType_;                                    // assigned by containers/office/LumZipPackage.cpp
    std::unique_ptr<detail::PackageRelationships> relationships_;  // null until read, in the same place
};

}  // namespace LumCommon
