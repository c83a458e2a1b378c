#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>

#include <cstddef>
#include <iosfwd>
#include <string>

namespace LumCommon {

/// The directory for temporary files, ending in "/": what the environment names (TMPDIR), else that of the system, else
/// "./". It is looked up once in a process.
LUM_API UnicodeString stGetTempDirectory();

/// Owns the name of one temporary file: finds a free one and removes the file in the end. The file itself is made by
/// who writes it.
///
/// Names, directories, prefixes and suffixes of type `const char*` are in the platform's encoding; null is empty.
/// Threads: names may be made on several threads and never come twice; one object belongs to one thread at a time.
class LUM_API LumTempFile {
public:
    /// Holds no file.
    LumTempFile() = default;
    /// Holds a new name; fails as getTempFile() does.
    LumTempFile(const char* dir, const char* prefix, const char* suffix);
    LumTempFile(const LumTempFile&) = delete;
    LumTempFile& operator=(const LumTempFile&) = delete;
    /// Removes the file when there is one; a failure is not reported.
    ~LumTempFile();

    /// The name held; empty when none is.
    const UnicodeString& getFileName() const noexcept { return fileName_; }
    /// Removes the file held and holds `name` (null and empty: none).
    /// Failure: LumError 0x100D when it cannot be removed; the old name is still held then.
    void setFileName(const char* name);
    /// Removes the file held and holds a new name.
    /// Failure: as above, and as getTempFile(); after the latter no name is held.
    void setFileName(const char* dir, const char* prefix, const char* suffix);
    /// Forgets the name and returns it: the file is no longer removed.
    UnicodeString releaseFileName();
    /// Whether a name is held.
    bool isTempFile() const noexcept { return !path_.empty(); }
    /// Removes the file held, if there is one. The name is still held: a file made anew under it is removed as well.
    /// Failure: LumError 0x100D.
    void remove() const;

    /// Removes a file, in up to 10 attempts. True also when there was none, or none can have that name.
    static bool removeTempFile(const char* path);
    /// As stGetTempDirectory().
    static UnicodeString getTempDirectory();
    /// A name under which no file exists and one can be made: `dir`, `prefix`, the process and a count, `suffix`. The
    /// file does not exist on return; other callers in this process do not get the name.
    /// @param dir  ends with "/"; null for the temporary directory.
    /// Failure: LumError 0x100E when no file can be made after 100 attempts, or one that was made cannot be removed.
    static UnicodeString getTempFile(const char* dir, const char* prefix, const char* suffix);

    /// Writes into the file held, cut to nothing first, what `length` bytes of raw deflate data (RFC 1951) hold.
    /// @return false when none is held, it cannot be written, or the data are corrupt or cut; the file may then hold a
    /// part. Memory: constant.
    [[nodiscard]] bool inflate(const unsigned char* data, std::size_t length) const;
    /// The same into a stream.
    [[nodiscard]] static bool inflate(std::ostream& out, const unsigned char* data, std::size_t length);

private:
    void hold(const std::string& path);

    UnicodeString fileName_;
    std::string path_;  // as the system knows it: bytes that are no text would not survive the way through fileName_
};

}  // namespace LumCommon
