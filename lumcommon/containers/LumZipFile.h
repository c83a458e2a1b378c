#pragma once

#include <lumcommon/containers/LumZipFileEntry.h>
#include <lumcommon/core/LumPtr.h>

#include <iosfwd>
#include <map>
#include <vector>

namespace LumCommon {

/// Reads a zip archive from a file or from any stream that can seek.
///
/// Opening walks the local headers from the stream's position, one after another, and stops at the first record that is
/// neither a local header nor a data descriptor; the central directory is not read. Programs that write an archive in
/// one go leave the sizes of a member at 0 and put them into a data descriptor behind its data (bit 3 of its flags).
/// That is looked for: it is the first one whose place agrees with the compressed size that it states. Where there is
/// none, or it lacks the signature that most programs give it, the member is empty and mostly the last of the list. So
/// is one that claims more bytes than there are, as the 0xFFFFFFFF of a zip64 header does.
///
///     LumZipFile zip("book.zip");
///     LumZipFileEntry* entry = zip.getFileEntry(u"chapters/one.xml");
///     if (entry) std::cout << entry->getUncompressedStream(false)->rdbuf();
///
/// Failure: nothing is thrown. What cannot be opened or is no archive has no entries.
/// Threads: one at a time for the archive and all its entries.
class LUM_API LumZipFile {
public:
    /// No archive: no entries.
    LumZipFile();
    /// @param path  a local path in the platform's charset; null for none.
    explicit LumZipFile(const char* path);
    /// @param s    null for no archive; not a stream of one of this archive's own entries.
    /// @param own  true: the archive deletes `s` with itself or when another is opened. false: `s` must outlive the
    ///             archive and every entry whose data are not read yet.
    LumZipFile(std::istream* s, bool own);
    LumZipFile(const LumZipFile&) = delete;
    LumZipFile& operator=(const LumZipFile&) = delete;
    ~LumZipFile();

    /// Drops the archive that was open, its stream included when owned, and reads another; the arguments are those of
    /// the constructors. Cost: O(number of members), plus the names; the data are skipped, but for
    /// those in front of a data descriptor that has to be looked for.
    void open(const char* path);
    void open(std::istream* s, bool own);

    /// The members are counted in the order of the archive; those with the same name are all there.
    unsigned getFileEntryCount() const noexcept { return static_cast<unsigned>(entries_.size()); }
    /// The entry at that index; null when there is none. Ownership: borrowed; put it into a LumPtr to keep it longer
    /// than the archive. Data that were not read before an owned stream went with its archive are then empty.
    LumZipFileEntry* getFileEntry(unsigned index) const noexcept;
    /// The first entry with exactly that name; null when there is none.   Cost: O(log members).
    LumZipFileEntry* getFileEntry(const UnicodeString& name) const noexcept;

    /// True when a zip archive may begin at the stream's position: a local header, a central directory header, or the
    /// end record of an empty archive. The stream stays where it is. False for null and for a stream that cannot seek.
    static bool isZipFile(std::istream* s);
    /// False also when the file cannot be opened.
    static bool isZipFile(const char* path);

private:
    void init();
    void close() noexcept;

    std::istream* stream_ = nullptr;
    bool ownsStream_ = false;
    std::vector<LumPtr<LumZipFileEntry>> entries_;
    std::map<UnicodeString, LumZipFileEntry*> byName_;
};

}  // namespace LumCommon
