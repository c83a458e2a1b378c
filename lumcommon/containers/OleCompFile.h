#pragma once

#include <lumcommon/containers/OleDirInfo.h>
#include <lumcommon/core/Api.h>
#include <lumcommon/core/MaybeOwned.h>

#include <bit>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace LumCommon {

class JZIOobj;
class LumUri;
class OleStream;

namespace detail {
class SectorChain;
}

/// Reads a compound file: a file that holds storages and streams like a file system holds folders and files. Office
/// programs used it for their documents before packages.
///
///     OleCompFile file;
///     OleDirPath path{"WordDocument"};
///     if (file.OLEopen("letter.doc")) {
///         OleStream* stream = file.OLEopenStream(&path);  // null when there is none
///         ...
///         file.OLEcloseStream(stream);
///     }
///
/// The layout is that of the published Compound File Binary format, in either byte order. Sector n begins after 512
/// bytes and n sectors; a header that states version 4 is padded to a whole sector, and sector n begins after n + 1
/// sectors.
///
/// Opening fails if the header is damaged, a table points at sectors that are not there, an entry has an impossible
/// name, or sectors are smaller than a directory entry (128 bytes) or than a mini sector. A chain of sectors that loops
/// ends where it returns to itself: opening fails if it is the chain of the directory or of the mini FAT; a chain of
/// FAT sectors is used as far as it was walked, as is a mini FAT whose chain ends early.
///
/// Failure: false, null, -1 or 0. A file that could not be opened, also for lack of memory, has no entries. Otherwise
/// nothing is thrown but std::bad_alloc: what finds something in the file, reads it or detects its kind does not answer
/// "nothing" when memory runs out. The file can still be used.
/// Ownership: streams must be closed before the file is destroyed or opened again.
/// Cost: opening reads the tables and the directory, not the streams. Memory grows only with what the file really
/// contains of these, whatever the header claims. Nothing recurses.
/// Threads: one at a time for the file and all its streams.
class LUM_API OleCompFile {
public:
    OleCompFile();
    OleCompFile(const OleCompFile&) = delete;
    OleCompFile& operator=(const OleCompFile&) = delete;
    ~OleCompFile();

    /// Closes the file that was open and opens another.
    /// @param path  in the platform's encoding; null fails.
    [[nodiscard]] bool OLEopen(const char* path);
    /// @param io  opened here if it is not open; its size is the position of its end or, if it cannot seek there,
    ///            GetSize(). Borrowed: it must outlive its use here. Null fails.
    [[nodiscard]] bool OLEopen(JZIOobj* io);
    /// Whether a file has been opened and not closed since.
    bool isOpen() const noexcept { return io_.get() != nullptr; }
    /// Whether to accept files with harmless faults: a header that gives -1 for the first sector of the mini FAT or of
    /// the list of FAT sectors, with a count of 0, and unused directory entries that state impossible lengths for their
    /// names, which are then empty. Off by default; applies to files opened afterwards.
    void setAcceptsLooseFiles(bool accepts) noexcept { acceptsLooseFiles_ = accepts; }

    /// Opens a stream at position 0. Null if the path leads nowhere or to something that is not a stream, or if the
    /// stream should be in a mini stream that the file lacks.
    /// Ownership: release it with OLEcloseStream().
    [[nodiscard]] OleStream* OLEopenStream(const OleDirPath* path);
    /// Deletes the stream; null is allowed.
    void OLEcloseStream(OleStream* stream);

    /// The index in the directory of the entry that a path leads to; -1 if there is none. The empty path leads to the
    /// root.
    long getDirIndex(const OleDirPath* path) const;
    /// Looks for a name among an entry, its siblings, theirs and so on, in the order entry, left, right. Returns its
    /// index in the directory, or -1. Names are compared in upper case, by language-independent rules.
    /// @param start  an entry of this directory. Null gives -1, as does a null name.
    /// Cost: O(siblings), and one bit of memory for each entry of the directory.
    /// @param name  zero-terminated.
    long findDirEntryByName(const OleDirInfo* start, const char* name) const;
    /// The entry at that index; null outside the directory. Borrowed: valid until the file is closed.
    const OleDirInfo* getDirInfo(long index) const noexcept;
    /// The same, for changing the entry in memory; the file is never changed.
    OleDirInfo* getDirInfo(long index) noexcept;
    /// The number of entries, unused ones included.
    long getDirCount() const noexcept { return static_cast<long>(directory_.size()); }

    /// The entry of the FAT, or of the mini FAT, for a sector: the next sector of its chain, -2 at the end of the
    /// chain, -1 for a free sector and for one outside the table.
    long getNextBlock(long sector, bool mini) const noexcept;
    /// Reads a whole sector into the object's own buffer; false if it is not all there.
    bool readBlock(long sector);
    /// The sector that readBlock() read last. Valid until its next call or until the file is closed.
    std::span<const char> getBlock() const noexcept { return block_; }

    /// The byte order that the header states.
    bool isLittleEndian() const noexcept { return littleEndian_; }
    /// The two bytes of the major version in hexadecimal, in the order of the file: "03 00".
    const std::string& getVersion() const noexcept { return version_; }
    /// In bytes.
    std::int64_t getSectorSize() const noexcept { return std::int64_t{1} << sectorShift_; }
    /// In bytes.
    std::int64_t getMiniSectorSize() const noexcept { return std::int64_t{1} << miniSectorShift_; }
    /// Streams smaller than this many bytes are in the mini stream.
    std::uint32_t getMiniStreamCutoff() const noexcept { return miniStreamCutoff_; }
    /// The size of the whole file in bytes.
    std::int64_t getFileSize() const noexcept { return fileBytes_; }

    // Kinds of documents. The bodies of the public members from here on are in containers/office/OleDetect.cpp.

    /// Whether a compound file may begin at the stream's position. Up to 512 bytes are read.
    static bool isOLEUri(std::istream& s);
    /// Also false if the resource cannot be opened.
    static bool isOLEUri(const LumUri& uri);

    /// The kind of document: 1 word processing, 2 spreadsheet, 3 presentation, 4 Japanese word processor, 0 another
    /// compound file or not a compound file.
    /// @param s  must be able to seek; it is read from its start.
    static int detectOLEDocument(std::istream& s);
    /// Also 0 if the resource cannot be opened. One that cannot seek is kept in memory as far as it is read.
    static int detectOLEDocument(const LumUri& uri);
    /// The same for the file that is open; 0 if none is.
    int getDocumentKind();

private:
    friend class OleStream;

    bool OLEopenSub();
    bool readTables();
    bool parseHeader();
    bool isFirstOrNone(std::int32_t sector, std::uint32_t count) const noexcept;
    bool readFatList(std::uint32_t count, std::int32_t firstDifat);
    bool buildFAT();
    bool buildMiniFAT();
    bool buildDirInfo();
    void close() noexcept;

    std::endian byteOrder() const noexcept { return littleEndian_ ? std::endian::little : std::endian::big; }
    std::int64_t getSectorOffset(std::int32_t sector) const noexcept;
    std::int64_t getMiniSectorOffset(std::int32_t miniSector);
    std::int64_t getSectorCount() const noexcept;
    bool isSectorThere(std::int64_t sector) const noexcept;
    void appendBlockTo(std::vector<std::int32_t>& table) const;
    std::size_t readAt(std::int64_t offset, char* to, std::size_t bytes);

    MaybeOwned<JZIOobj> io_;
    std::int64_t fileBytes_ = 0;
    bool littleEndian_ = true;
    bool acceptsLooseFiles_ = false;
    std::string version_;
    std::int64_t sectorsStart_ = 0;  // the offset of sector 0
    unsigned sectorShift_ = 0;
    unsigned miniSectorShift_ = 0;
    std::uint32_t miniStreamCutoff_ = 0;
    std::int32_t firstDirSector_ = 0;
    std::int32_t firstMiniFatSector_ = 0;
    std::uint32_t miniFatSectorCount_ = 0;
    std::vector<std::int32_t> fatSectors_;
    std::vector<std::int32_t> fat_;
    std::vector<std::int32_t> miniFat_;
    std::vector<OleDirInfo> directory_;
    std::int32_t miniStreamStart_ = -1;
    std::unique_ptr<detail::SectorChain> miniStream_;
    std::vector<char> block_;
};

}  // namespace LumCommon
