#pragma once

#include <lumcommon/containers/LumZipFileEntry.h>
#include <lumcommon/core/LumPtr.h>
#include <lumcommon/core/MaybeOwned.h>

#include <iosfwd>
#include <map>
#include <memory>
#include <vector>

namespace LumCommon {

namespace detail {
struct PackageRelationships;
}  // namespace detail

/// Reads a zip archive from a file or from any stream that can seek, and tells what an office document in it is.
///
/// Opening walks the local headers from the stream's position, one after another, and stops at the first record that is
/// neither a local header nor a data descriptor. Programs that write an archive in one go leave the sizes of a member
/// at 0 and put them into a data descriptor behind its data (bit 3 of its flags), or at 0xFFFFFFFF and into an extra
/// field of zip64. The walk cannot go on behind such a member, unless its descriptor follows at once because it is
/// empty. Then all members are taken from the central directory instead, in the order of their local headers:
/// - The directory is that of the archive that ends the stream. It is believed when it leads to the member at which the
///   walk stopped; what stands in front of the archive is allowed for. Sizes of zip64 are read.
/// - A record that leads to no local header, or into the header of another member, is left out. Data end where the next
///   member begins at the latest, so that members which overlap do not multiply the bytes of a file.
/// - Without such a directory (the archive is cut) the descriptor is looked for: it is the first one whose place agrees
///   with the compressed size that it states. Where there is none, or it lacks the signature that most programs give
///   it, the member is empty and mostly the last of the list.
/// A member that claims more bytes than there are is the last of the list.
///
///     LumZipFile zip("book.zip");
///     LumZipFileEntry* entry = zip.getFileEntry(u"chapters/one.xml");
///     if (entry) std::cout << entry->getUncompressedStream(false)->rdbuf();
///
/// Office packages: the parts that describe a package, "[Content_Types].xml" and those in the folders "_rels", are read
/// when something is first asked that needs them, once until another archive is opened. They are read through the
/// streams that their entries own, which are rewound. Nothing outside the archive is opened for them.
///
/// Failure: nothing is thrown, but a describing part that is no well-formed XML throws the parser's LumError, and want
/// of memory std::bad_alloc. What that part would have said is then not known, and every further question that needs it
/// throws again; the rest of the archive can be used. What cannot be opened or is no archive has no entries.
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
    /// the constructors. Cost: O(number of members), plus the names; the data are skipped, but for those in front of a
    /// data descriptor that has to be looked for. The central directory makes it read at the end of the stream.
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

    /// The kind of office document that the package holds, by the content type of getOfficeDocument():
    /// 1 to 4 word processing (document, with macros, template, template with macros), 5 to 8 spreadsheet (likewise),
    /// 9 binary spreadsheet, 10 and 11 presentation (without and with macros), 12 and 13 slide show, 14 and 15 template
    /// of presentations, 16 theme; 0 for anything else. Errors: see the class.
    int detectOOXDocument();
    /// The same for a file; 0 when it cannot be opened.
    static int detectOOXDocument(const char* path);
    /// The same for the archive at the stream's position, which has moved afterwards.
    /// @param s  stays the caller's. 0 for null and for a stream that has failed.
    static int detectOOXDocument(std::istream* s);
    /// The main part: the entry that the package's relationship of the type "officeDocument" leads to; null without.
    LumZipFileEntry* getOfficeDocument();
    /// Whether a package in the Strict form of Office Open XML (ISO/IEC 29500) is a package like any other. Its
    /// relationship types begin with "http://purl.oclc.org/ooxml/officeDocument/relationships/" in place of
    /// "http://schemas.openxmlformats.org/officeDocument/2006/relationships/". When that is accepted, a type that no
    /// relationship has is looked for in the other form, here and in getRelationshipTargetFromType().
    /// Off at first, so that the kind of such a package is 0. Kept when another archive is opened.
    void setAcceptsStrictPackages(bool accepts) noexcept { acceptsStrictPackages_ = accepts; }

    /// The content type of an entry of this archive; empty for null and where the package states none.
    UnicodeString getContentType(LumZipFileEntry* entry);
    /// Gives every entry its content type: that of its "Override", else of the "Default" for its extension (what
    /// follows the last "."). Names are compared exactly, an override without its leading "/"; among equal names of
    /// entries it speaks of the first. Of two elements for the same part or extension the last one holds.
    void setContentType();

    /// The target of the relationship with that id or type, the first one when there are several; empty without one.
    /// An internal target is resolved against the name of its source. It is the name of an entry where it leads to one,
    /// also with "/" in front, with more "../" than there are folders, and with percent escapes that the name of the
    /// entry lacks; a target with a scheme is as LumUri resolves it. An external target (any other TargetMode than
    /// "Internal") is as written.
    /// @param source  the entry whose relationships are meant; null for those of the package.
    /// Cost: O(log relationships), plus the lengths of both names.
    UnicodeString getRelationshipTargetFromId(const UnicodeString& id, LumZipFileEntry* source = nullptr);
    UnicodeString getRelationshipTargetFromType(const UnicodeString& type, LumZipFileEntry* source = nullptr);
    /// "Internal", "External", or what else is written; "Internal" also where nothing is.
    UnicodeString getRelationshipTargetMode(const UnicodeString& id, LumZipFileEntry* source = nullptr);
    /// Reads the relationships of a source, for callers that want to meet its errors early. Elements without Target are
    /// passed over; of those with the same id, and of those with the same type, the first one holds.
    void makeRelationships(LumZipFileEntry* source = nullptr);

private:
    void init();
    /// Takes the members from the central directory. False, and nothing changed, when it does not lead to the local
    /// header at `unwalkable`; the stream is then where it was.
    bool takeFromDirectory(std::streamoff start, std::streamoff unwalkable);
    /// Reads them when they have not been read.
    const detail::PackageRelationships& relationshipsOf(LumZipFileEntry* source);
    void close() noexcept;

    MaybeOwned<std::istream> stream_;
    std::vector<LumPtr<LumZipFileEntry>> entries_;
    std::map<UnicodeString, LumZipFileEntry*> byName_;
    bool hasContentTypes_ = false;
    bool acceptsStrictPackages_ = false;
    std::unique_ptr<detail::PackageRelationships> relationships_;  // of the package; null until they have been read
};

}  // namespace LumCommon
