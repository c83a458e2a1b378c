#pragma once

#include <lumcommon/containers/LumZipFileEntry.h>
#include <lumcommon/core/LumPtr.h>
#include <lumcommon/core/MaybeOwned.h>

#include <iosfwd>
#include <map>
#include <memory>
#include <span>
#include <vector>

namespace LumCommon {

namespace detail {
struct PackageRelationships;
}  // namespace detail

/// Reads a zip archive from a file or from any seekable stream, and identifies office documents in it.
///
/// Opening lists the members by their local headers, from the stream's position on, up to the first record that is
/// neither a local header nor a data descriptor. If a local header does not state its member's size (a data descriptor
/// or a zip64 field has it), all members are listed from the central directory of the archive that ends the stream, in
/// the order of their local headers; in a truncated archive, which has no directory, the descriptor is searched for. A
/// member without any size that can be found is empty and usually the last of the list; one that claims more bytes than
/// there are is the last. Members listed from the directory never share data, so that overlapping ones do not multiply
/// the bytes of a file.
///
///     LumZipFile zip("book.zip");
///     LumZipFileEntry* entry = zip.getFileEntry(u"chapters/one.xml");
///     if (entry) std::cout << entry->getUncompressedStream(false)->rdbuf();
///
/// Office packages: the parts that describe a package, "[Content_Types].xml" and those in the folders "_rels", are read
/// when they are first needed, once per archive. They are read through the streams that their entries own, which are
/// rewound. Nothing outside the archive is opened for them.
///
/// Failure: something that cannot be opened or read (the stream turns bad) or is not an archive has no entries. What
/// opens an archive throws std::bad_alloc; the object then holds none. Otherwise only the members for office packages
/// throw: the parser's LumError if a describing part is not well-formed XML, and std::bad_alloc. They throw again
/// whenever they need that part; the rest of the archive can still be used.
/// Threads: one at a time for the archive and all its entries.
class LUM_API LumZipFile {
public:
    /// No archive: no entries.
    LumZipFile();
    /// @param path  a local path in the platform's charset; null for none.
    explicit LumZipFile(const char* path);
    /// @param s    null for no archive; must not be a stream of one of this archive's own entries.
    /// @param own  true: the archive deletes `s` at its own destruction or when another is opened. false: `s` must
    ///             outlive the archive and every entry whose data are not read yet.
    LumZipFile(std::istream* s, bool own);
    LumZipFile(const LumZipFile&) = delete;
    LumZipFile& operator=(const LumZipFile&) = delete;
    ~LumZipFile();

    /// Drops the archive that was open, deleting its stream if owned, and reads another; the arguments are those of the
    /// constructors. A stream that is owned is deleted also when this throws, and when it turns bad.
    /// Cost: O(number of members) plus the names; data are skipped, except before a data descriptor that has to be
    /// searched for. If the central directory is needed, the end of the stream is read too.
    void open(const char* path);
    /// The same for a stream that the caller has, or with `own` has had.
    void open(std::istream* s, bool own);

    /// Whether there is an archive to read, even one without members: the stream could be opened and read, and a zip
    /// archive begins where it stood.
    ///
    ///     LumZipFile zip("book.zip");
    ///     if (!zip.isOpen()) return fail("book.zip is no zip archive");
    bool isOpen() const noexcept { return isArchive_ || !entries_.empty(); }
    /// The number of members, those with equal names included. They are in the order of the archive.
    unsigned getFileEntryCount() const noexcept { return static_cast<unsigned>(entries_.size()); }
    /// All entries, in the order of the archive. Valid until another archive is opened or this one is destroyed.
    std::span<const LumPtr<LumZipFileEntry>> getFileEntries() const noexcept { return entries_; }
    /// The entry at that index; null if there is none.
    /// Ownership: borrowed; hold it in a LumPtr to keep it longer than the archive. Data that were not read before an
    /// owned stream was deleted with its archive are then empty.
    LumZipFileEntry* getFileEntry(unsigned index) const noexcept;
    /// The first entry with exactly that name; null if there is none. Cost: O(log members).
    LumZipFileEntry* getFileEntry(const UnicodeString& name) const noexcept;

    /// True if a zip archive may begin at the stream's position: a local header, a central directory header, or the end
    /// record of an empty archive. The stream does not move. False for null and for a stream that cannot seek.
    static bool isZipFile(std::istream* s);
    /// Also false if the file cannot be opened.
    static bool isZipFile(const char* path);

    // Office packages. The bodies of the public members from here on are in containers/office/LumZipPackage.cpp.

    /// The kind of office document that the package holds, by the content type of getOfficeDocument():
    /// 1 to 4 word processing (document, with macros, template, template with macros), 5 to 8 spreadsheet (likewise), 9
    /// binary spreadsheet, 10 and 11 presentation (without and with macros), 12 and 13 slide show, 14 and 15 template
    /// of presentations, 16 theme; 0 for anything else. Failure: see the class.
    int detectOOXDocument();
    /// The same for a file; 0 if it cannot be opened.
    static int detectOOXDocument(const char* path);
    /// The same for the archive at the stream's position, which changes.
    /// @param s  stays with the caller. Null and a stream that has failed give 0.
    static int detectOOXDocument(std::istream* s);
    /// The main part: the entry that the package's relationship of type "officeDocument" leads to; null if there is
    /// none.
    LumZipFileEntry* getOfficeDocument();
    /// Whether to accept packages in the Strict form of Office Open XML (ISO/IEC 29500). Their relationship types begin
    /// with "http://purl.oclc.org/ooxml/officeDocument/relationships/" instead of
    /// "http://schemas.openxmlformats.org/officeDocument/2006/relationships/". If they are accepted, a type that no
    /// relationship has is looked up in the other form, by getOfficeDocument() and getRelationshipTargetFromType().
    /// Off by default, so that detectOOXDocument() gives 0 for such a package. Kept when another archive is opened.
    void setAcceptsStrictPackages(bool accepts) noexcept { acceptsStrictPackages_ = accepts; }

    /// The content type of an entry of this archive; empty for null and if the package states none.
    UnicodeString getContentType(LumZipFileEntry* entry);
    /// Gives every entry its content type: that of its "Override", else of the "Default" for its extension (the part
    /// after the last "."). Names are compared exactly, that of an override without its leading "/"; it applies to the
    /// first of several entries with that name. Of two elements for the same part or extension, the last one counts.
    void setContentType();

    /// The target of the relationship with that id or type, the first one if there are several; empty if there is none.
    /// An internal target is resolved against the name of its source. The result is the name of an entry if the target
    /// leads to one, even with "/" in front, with more "../" than there are folders, or with percent escapes that the
    /// name of the entry lacks; a target with a scheme is resolved as by LumUri. An external target (any TargetMode
    /// other than "Internal") is given as written.
    /// @param source  the entry whose relationships are meant; null for those of the package.
    /// Cost: O(log relationships), plus the lengths of both names.
    /// @param id  the identifier that the content of the source uses.
    UnicodeString getRelationshipTargetFromId(const UnicodeString& id, LumZipFileEntry* source = nullptr);
    /// The same by type; of several relationships of one type the first.
    UnicodeString getRelationshipTargetFromType(const UnicodeString& type, LumZipFileEntry* source = nullptr);
    /// The TargetMode of that relationship as written; "Internal" if it has none or there is no such relationship.
    UnicodeString getRelationshipTargetMode(const UnicodeString& id, LumZipFileEntry* source = nullptr);
    /// Reads the relationships of a source, for callers that want to meet errors early. Elements without a Target are
    /// skipped; of those with the same id, and of those with the same type, the first one counts.
    void makeRelationships(LumZipFileEntry* source = nullptr);

private:
    void init();
    /// Takes the members from the central directory. False, with nothing changed and the stream where it was, if it
    /// does not lead to the local header at `unwalkable`.
    bool takeFromDirectory(std::streamoff start, std::streamoff unwalkable);
    /// Reads them on first use.
    const detail::PackageRelationships& relationshipsOf(LumZipFileEntry* source);
    void close() noexcept;

    MaybeOwned<std::istream> stream_;
    std::vector<LumPtr<LumZipFileEntry>> entries_;
    std::map<UnicodeString, LumZipFileEntry*> byName_;
    bool isArchive_ = false;
    bool hasContentTypes_ = false;
    bool acceptsStrictPackages_ = false;
    std::unique_ptr<detail::PackageRelationships> relationships_;  // of the package; null until they have been read
};

}  // namespace LumCommon
