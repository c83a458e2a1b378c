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

/// Reads a compound file: a file that holds storages and streams as a file system holds folders and files. Office
/// programs wrote their documents so before they wrote packages.
///
///     OleCompFile file;
///     OleDirPath path{"WordDocument"};
///     if (file.OLEopen("letter.doc")) {
///         OleStream* stream = file.OLEopenStream(&path);  // null when there is none
///         ...
///         file.OLEcloseStream(stream);
///     }
///
/// The layout is that of the published Compound File Binary format, in either byte order. Sector n lies 512 bytes
/// behind n sectors; where the header states version 4 it is padded to a whole sector, and sector n lies behind n + 1.
///
/// A damaged header, a table that points at sectors that are not there, and an entry with an impossible name make
/// opening fail, as do sectors smaller than an entry of the directory (128 bytes) or than a mini sector. A chain of
/// sectors that comes back to itself ends there: opening fails when it is that of the directory or of the mini FAT; a
/// chain of FAT sectors is used as far as it was walked, as is a mini FAT whose chain ends early.
///
/// Failure: false, null, -1 or 0; nothing is thrown. A file that could not be opened has no entries.
/// Ownership: streams are closed before the file is destroyed or opened anew.
/// Cost: opening reads the tables and the directory, not the streams. Memory grows with these as far as they are in the
/// file, whatever the header claims. Nothing recurses.
/// Threads: one at a time for the file and all its streams.
class LUM_API OleCompFile {
public:
    OleCompFile();
    OleCompFile(const OleCompFile&) = delete;
    OleCompFile& operator=(const OleCompFile&) = delete;
    ~OleCompFile();

    /// Drops the file that was open and opens another.
    /// @param path  in the platform's encoding; null fails.
    [[nodiscard]] bool OLEopen(const char* path);
    /// @param io  opened here if it is not open; its size is where seeking to its end leads or, where it cannot do
    ///            that, what GetSize() says. Borrowed: it outlives the file's use.
    [[nodiscard]] bool OLEopen(JZIOobj* io);
    bool isOpen() const noexcept { return io_.get() != nullptr; }
    /// Whether files open that are loose where nothing depends on it: whose header gives -1 for the first sector of the
    /// mini FAT or of the list of FAT sectors, with a count of 0, and whose unused entries of the directory state
    /// impossible lengths for their names, which are then empty. Off at first; holds for what is opened afterwards.
    void setAcceptsLooseFiles(bool accepts) noexcept { acceptsLooseFiles_ = accepts; }

    /// A new stream at position 0. Null when the path leads nowhere or to what is no stream, and for a stream that
    /// should lie in a mini stream that the file lacks.
    /// Ownership: to be given back with OLEcloseStream.
    [[nodiscard]] OleStream* OLEopenStream(const OleDirPath* path);
    /// Deletes the stream; null is allowed.
    void OLEcloseStream(OleStream* stream);

    /// The place in the directory of what a path leads to, -1 when that is nothing. The empty path leads to the root.
    long getDirIndex(const OleDirPath* path) const;
    /// Looks for a name among an entry, its siblings, theirs and so on, in this order: entry, left, right.
    /// Both names are upper-cased by the rules of no particular language and compared.
    /// @param start  an entry of this directory. Null, as a null name, gives -1.
    /// Cost: O(siblings), and a bit for each entry of the directory.
    long findDirEntryByName(const OleDirInfo* start, const char* name) const;
    /// Null for a place outside the directory. Borrowed until the file is closed.
    const OleDirInfo* getDirInfo(long index) const noexcept;
    OleDirInfo* getDirInfo(long index) noexcept;
    /// The number of entries, unused ones included.
    long getDirCount() const noexcept { return static_cast<long>(directory_.size()); }

    /// What the FAT, or the mini FAT, has for a sector: the next of its chain, -2 at its end, -1 for a free sector and
    /// for one outside the table.
    long getNextBlock(long sector, bool mini) const noexcept;
    /// Reads a whole sector into a buffer of the file's own; false when it is not all there.
    bool readBlock(long sector);
    /// What readBlock() read last, of the size of a sector. Valid until the next call or the end of the file.
    std::span<const char> getBlock() const noexcept { return block_; }

    bool isLittleEndian() const noexcept { return littleEndian_; }
    /// The two bytes of the major version in hexadecimal, as they lie: "03 00".
    const std::string& getVersion() const noexcept { return version_; }
    /// In bytes.
    std::int64_t getSectorSize() const noexcept { return std::int64_t{1} << sectorShift_; }
    std::int64_t getMiniSectorSize() const noexcept { return std::int64_t{1} << miniSectorShift_; }
    /// Streams below this size lie in the mini stream.
    std::uint32_t getMiniStreamCutoff() const noexcept { return miniStreamCutoff_; }
    /// Of the whole file.
    std::int64_t getFileSize() const noexcept { return fileBytes_; }

    /// Whether what follows in the stream begins as a compound file does. Up to 512 bytes are read.
    static bool isOLEUri(std::istream& s);
    /// False also when the resource cannot be opened.
    static bool isOLEUri(const LumUri& uri);

    /// What kind of document it is: 1 a word processor's, 2 a spreadsheet, 3 a presentation, 4 one of the Japanese word
    /// processor, 0 another compound file or none at all.
    /// @param s  can seek; it is read from its start.
    static int detectOLEDocument(std::istream& s);
    /// 0 also when the resource cannot be opened. One that cannot seek is kept in memory as far as it is read.
    static int detectOLEDocument(const LumUri& uri);
    /// The same for the file that is open; 0 when none is.
    int getDocumentKind();

private:
    friend class OleStream;

    bool OLEopenSub();
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
