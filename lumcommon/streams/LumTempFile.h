#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>

#include <cstddef>
#include <iosfwd>
#include <string>

namespace LumCommon {

/// The directory for temporary files, ending in "/": the one that the environment names (TMPDIR), else the system's,
/// else "./". It is looked up once per process.
LUM_API UnicodeString stGetTempDirectory();

/// Owns the name of a temporary file: finds a free name and removes the file on destruction. The file itself is created
/// by whoever writes it.
///
/// Names, directories, prefixes and suffixes of type `const char*` are in the platform's encoding; null counts as
/// empty.
/// Threads: names may be created on several threads and are never handed out twice; one object belongs to one thread at
/// a time.
class LUM_API LumTempFile {
public:
    /// Holds no file.
    LumTempFile() = default;
    /// Holds a new name; fails like getTempFile().
    LumTempFile(const char* dir, const char* prefix, const char* suffix);
    LumTempFile(const LumTempFile&) = delete;
    LumTempFile& operator=(const LumTempFile&) = delete;
    /// Removes the file if there is one; a failure is not reported.
    ~LumTempFile();

    /// The name held; empty if there is none.
    const UnicodeString& getFileName() const noexcept { return fileName_; }
    /// Removes the file held and holds `name` (null and empty: none).
    /// Failure: LumError 0x100D if it cannot be removed; the old name is then still held.
    void setFileName(const char* name);
    /// Removes the file held and holds a new name.
    /// Failure: as above, and as getTempFile(); after the latter no name is held.
    void setFileName(const char* dir, const char* prefix, const char* suffix);
    /// Forgets the name and returns it: the file is no longer removed.
    UnicodeString releaseFileName();
    /// Whether a name is held.
    bool isTempFile() const noexcept { return !path_.empty(); }
    /// Removes the file held, if there is one. The name is still held: a file created again under it will be removed as
    /// well.
    /// Failure: LumError 0x100D.
    void remove() const;

    /// Removes a file, in up to 10 attempts. Also true if there was none, or no file can have that name.
    static bool removeTempFile(const char* path);
    /// The same as stGetTempDirectory().
    static UnicodeString getTempDirectory();
    /// A name under which no file exists and one can be created: `dir`, `prefix`, the process id and a counter,
    /// `suffix`. The file does not exist on return; no other caller in this process gets the same name.
    /// @param dir  ends with "/"; null for the temporary directory.
    /// Failure: LumError 0x100E if no file can be created in 100 attempts, or one that was created cannot be removed.
    /// @param prefix  what comes first in the name.
    /// @param suffix  what comes last in it.
    static UnicodeString getTempFile(const char* dir, const char* prefix, const char* suffix);

    /// Inflates `length` bytes of raw deflate data (RFC 1951) into the file held, which is truncated first. A new file
    /// is created for its owner alone (rights 0600). One that is there is used only if it is a plain file of this user
    /// under one name and no link: anybody can guess the name of a temporary file and put something in its place.
    /// @return false if no file is held, it cannot be written, or the data are null, corrupt or truncated; the file may
    /// then hold a part of them.
    /// Failure: std::bad_alloc, with the same left behind.   Memory: constant.
    [[nodiscard]] bool inflate(const unsigned char* data, std::size_t length) const;
    /// The same into a stream.
    [[nodiscard]] static bool inflate(std::ostream& out, const unsigned char* data, std::size_t length);

private:
    void hold(const std::string& path);

    UnicodeString fileName_;
    std::string path_;  // as the system knows it: bytes that are not text would not survive in fileName_
};

}  // namespace LumCommon
