#pragma once

#include <lumcommon/core/LumPtr.h>
#include <lumcommon/names/LumName.h>

#include <cstddef>
#include <memory>

namespace LumCommon {

namespace detail {
class NameStore;
LumNameEnum internName(const char16_t* text, std::size_t units);
}  // namespace detail

/// The table that assigns identifiers to strings. The static operations work on the one table that the process shares.
///
/// The shared table lives while a LumDocument, a NamespaceManager or a caller of addRefSharedNameTable() holds it; when
/// the last of them lets it go, its run-time names are lost and numbering starts again at 1598. Its references are
/// counted by addRefSharedNameTable() and releaseSharedNameTable() alone: a LumPtr would change the count without the
/// lock.
///
/// Threads: the static operations may be called from any thread, except setupSharedNameTable() and cleanup(). Built-in
/// names are looked up and read without a lock. Interning a run-time name takes the table's lock, unless the thread has
/// interned it lately: each thread remembers short names. Reading the string of a run-time name takes none: strings
/// never move, and an identifier is published only after its string is in place.
class LUM_API LumNameTable : public LumRCObject {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0x31FB5B85u;

    /// A new, empty table, separate from the shared one.
    LumNameTable();

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;

    /// Interns `text` in the shared table. The empty string gives 0. Throws code 0x801 when 2^24 - 1 names are in use.
    /// Cost: one hash and compare for a name that the thread has interned lately; else another hash, and a lock for
    /// run-time names.
    static LumNameEnum getSharedNameEnum(const UnicodeString& text);
    /// The string of a name, empty when `id` is not in use.
    /// Ownership: a built-in string lives until cleanup(), a run-time string as long as the shared table.
    static const UnicodeString& getSharedNameString(LumNameEnum id);
    /// The built-in identifier of `text`, 0 when it is not built in. Adds nothing, takes no lock.
    static LumNameEnum getBuiltinNameEnum(const UnicodeString& text);
    /// The built-in string, empty outside 1 to 1597.
    static const UnicodeString& getBuiltinNameString(LumNameEnum id);

    /// The shared table, created if there is none; no reference is taken.
    static LumNameTable* getSharedNameTable();
    /// The shared table, created if there is none, with one more reference: give it back with releaseSharedNameTable().
    static LumNameTable* addRefSharedNameTable();
    /// Gives back a reference of addRefSharedNameTable(); with the last one the table is destroyed.
    static void releaseSharedNameTable();
    /// Creates the shared table without taking the lock: for start-up code, before any other thread runs.
    static void setupSharedNameTable();
    /// Destroys the shared table and what the library keeps for names. Nothing may use names during or after it.
    static void cleanup();

    // The operations on one table take no lock: on the shared table they are for start-up and shutdown, and for callers
    // that hold its lock. Reading strings and the last identifier is safe while another thread interns.

    /// Interns `text` in this table.   Failure: as for getSharedNameEnum().
    LumNameEnum getNameEnum(const UnicodeString& text);
    /// Adds `text` to the run-time part of this table without looking at the built-in names and without a lock:
    /// for callers that hold the lock of the shared table.
    LumNameEnum getNonBuiltinNameEnumMutexed(const UnicodeString& text);
    /// The string of an identifier of this table, empty when it is not in use.
    const UnicodeString& getNameString(LumNameEnum id) const;
    /// The built-in identifier of `text`, else this table's, else 0. Adds nothing.
    LumNameEnum lookupName(const UnicodeString& text) const;
    /// The identifier assigned last; 1597 in a new table.
    LumNameEnum getLastNameEnum() const;

    /// Names that were interned in this table are lost with it.
    ~LumNameTable() override;

private:
    friend class LumName;  // generateID
    friend LumNameEnum detail::internName(const char16_t* text, std::size_t units);
    struct Shared;  // the state of the one shared table
    /// Interns the text of prefix, "-" and the next number whose text is not a name yet.
    static LumNameEnum internNumbered(const UnicodeString& prefix);
    explicit LumNameTable(detail::NameStore* sharedStore);

    std::unique_ptr<detail::NameStore> ownStore_;
    detail::NameStore* store_;
};

}  // namespace LumCommon
