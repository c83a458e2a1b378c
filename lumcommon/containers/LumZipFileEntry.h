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
/// Sizes and CRC-32 are those of the local header; where that leaves them to a data descriptor, those of the central
/// directory or of the descriptor (see LumZipFile). The data are as many of the claimed bytes as the stream really
/// holds, and memory grows with these alone: a member that claims 4 GiB in a file of 100 bytes has less than 100.
/// Encrypted members and methods other than deflate are handed out as they are stored; nothing is checked against the
/// CRC-32.
/// Failure: nothing is thrown.
/// Threads: one at a time for all entries of one archive, since they share its stream; streams made with `fresh` are
/// independent of it and of each other.
class LUM_API LumZipFileEntry : public LumZipEntry {
public:
    static constexpr unsigned int TYPE_ID = 0x1E3480DFu;

    static constexpr std::uint16_t METHOD_STORED = 0;
    static constexpr std::uint16_t METHOD_DEFLATE = 8;

    /// Reads the local header; the stream stands behind the member's data afterwards, or has failed where the stream
    /// is too short for that and its buffer refuses to go there.
    explicit LumZipFileEntry(std::istream& s);
    ~LumZipFileEntry() override;

    /// The name in the platform's default charset (ICU takes Linux for UTF-8), as stored: with "/" between folders, and
    /// at the end of a folder's own name. Empty when the stream does not hold all of it.
    const UnicodeString& getFileName() const noexcept { return fileName_; }
    /// All that the local header says, the sizes of a data descriptor put in. Of an archive read by its central
    /// directory: what that says, but the lengths of name and extra field are those of the local header.
    const LumZipMemberFields& getFields() const noexcept { return fields_; }
    std::uint16_t getMethod() const noexcept { return fields_.method; }
    std::uint16_t getFlags() const noexcept { return fields_.flags; }
    std::uint32_t getCrc32() const noexcept { return fields_.crc32; }
    /// In bytes, as claimed; see readCompressedData() for what is there.
    std::uint32_t getCompressedSize() const noexcept { return fields_.compressedSize; }
    /// In bytes, as claimed.
    std::uint32_t getUncompressedSize() const noexcept { return fields_.uncompressedSize; }
    /// The content type in an office package, see LumZipFile::setContentType(); empty until that has assigned one.
    const UnicodeString& getContentType() const noexcept { return contentType_; }

    /// The member's data as they are stored, read from the archive on the first call and kept.
    /// @return fewer bytes than claimed when the stream ends or fails earlier, or when the central directory gave more
    /// than lie in front of the next member; none when the stream cannot seek, is gone, or memory is wanting (a later
    /// call then tries again).
    /// Ownership: they live as long as the entry.   Cost: O(data) on the first call.
    std::span<const char> readCompressedData();

    /// Opens the data as they are stored.
    /// @param fresh  true: a new LumStrStream over a copy of its own. false: the entry's stream, rewound to 0.
    /// @return null when memory is wanting.
    /// Ownership: with `fresh` the caller deletes the stream; without, it dies with the entry.
    /// Cost: O(data) with `fresh`, and on the first use of the data.
    std::istream* getCompressedStream(bool fresh);
    /// Opens the data inflated when the method is deflate, by a LumInflaterStream; else as getCompressedStream().
    /// Data that are damaged or cut end early. What a stream yields is not bounded by getUncompressedSize(): deflate
    /// makes at most 1032 bytes of one.
    std::istream* getUncompressedStream(bool fresh);

    unsigned int getTypeID() const override;
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;

private:
    friend class LumZipFile;

    /// Reads the local header at the stream's position, but takes from the directory what that says.
    LumZipFileEntry(std::istream& s, const detail::DirectoryMember& member);

    /// The archive deletes its stream; data not read until now are not there any more.
    void forgetStream() noexcept { stream_ = nullptr; }
    /// True when the header says so and states no compressed size itself.
    bool leavesSizesToDescriptor() const noexcept;
    /// True when the local header does not tell where the data end, because the size is elsewhere.
    bool hasUnknownEnd() const noexcept;
    /// The data end at that position of the stream at the latest.
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
    UnicodeString contentType_;
    std::unique_ptr<detail::PackageRelationships> relationships_;  // null until they have been read
};

}  // namespace LumCommon
