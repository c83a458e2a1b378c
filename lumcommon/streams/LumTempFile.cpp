#include <lumcommon/core/LumError.h>
#include <lumcommon/core/LumMutex.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/PlatformText.h>
#include <lumcommon/streams/LumCustomStreamBuf.h>
#include <lumcommon/streams/LumTempFile.h>
#include <lumcommon/streams/detail/RawInflater.h>
#include <lumcommon/streams/detail/StreamReading.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <ostream>
#include <utility>

namespace LumCommon {
namespace {

constexpr int removalAttempts = 10;
constexpr int creationAttempts = 100;
// A name that is taken is not a failure, but a file system that claims to have every file must not keep us here
// forever.
constexpr int takenNamesAtMost = 1 << 16;

const char* orEmpty(const char* text) { return text ? text : ""; }

std::string findTempDirectory() {
    std::error_code error;
    const std::filesystem::path directory = std::filesystem::temp_directory_path(error);
    if (error || directory.empty()) return "./";
    std::string path = directory.string();
    if (path.back() != '/') path += '/';
    return path;
}

const std::string& tempDirectory() {
    static const std::string directory = findTempDirectory();
    return directory;
}

LumLock& mkTempLock() {
    static LumLock lock;
    return lock;
}

/// The counter in the next name. Threads: call with mkTempLock held.
unsigned nextCount() {
    static auto count = static_cast<unsigned>(std::chrono::system_clock::now().time_since_epoch().count());
    return count++;
}

std::string nextName(const char* dir, const char* prefix, const char* suffix) {
    std::array<char, 32> number{};
    std::snprintf(number.data(), number.size(), "%03x_%04x", static_cast<unsigned>(getpid()), nextCount());
    std::string name = dir ? std::string(dir) : tempDirectory();
    return name.append(orEmpty(prefix)).append(number.data()).append(orEmpty(suffix));
}

/// Whether an entry of that name exists in its directory, dangling links included. True if that cannot be determined.
bool mayExist(const char* path) {
    struct stat status {};
    if (lstat(path, &status) == 0) return true;
    return errno != ENOENT && errno != ENOTDIR && errno != ENAMETOOLONG && errno != ELOOP;
}

[[noreturn]] void throwCannotCreate(const std::string& path, const char16_t* reason) {
    throwCommonError(LumErrorCodeIO::CannotCreateTempFile, LumCommonErrorSource::TempFile,
                     detail::joined(detail::fromPlatformText(path.c_str()), reason));
}

/// Creates a file that was not there, for its owner alone; -1 if it cannot be created. A link that somebody puts there
/// in the meantime does not lead to another file.
int openNew(const char* path) noexcept { return open(path, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600); }

/// Checks that a file of this name can be created and removed. False if it cannot be created; errno says why.
bool tryName(const std::string& path) {
    const int fd = openNew(path.c_str());
    if (fd < 0) return false;
    const bool isRemoved = LumTempFile::removeTempFile(path.c_str());
    close(fd);
    if (!isRemoved) throwCannotCreate(path, u" (cannot remove)\n");
    return true;
}

std::string findFreePath(const char* dir, const char* prefix, const char* suffix) {
    LumMutex guard(&mkTempLock());
    std::string path;
    int failures = 0;
    for (int taken = 0; failures < creationAttempts && taken < takenNamesAtMost;) {
        path = nextName(dir, prefix, suffix);
        if (access(path.c_str(), F_OK) == 0) {
            ++taken;
        } else if (tryName(path)) {
            return path;
        } else {
            ++(errno == EEXIST ? taken : failures);
        }
    }
    throwCannotCreate(path, u" (cannot create)\n");
}

/// The file of a name that anybody can guess, opened for writing: a new one for its owner alone, or one that is there,
/// emptied, but only when it is a plain file of this user. A link that somebody has put in its place would lead the
/// bytes, or the emptying, to another file.
class OwnFile final : public LumCustomStreamController {
public:
    explicit OwnFile(const char* path) : fd_(openNew(path)) {
        if (fd_ < 0 && errno == EEXIST) fd_ = openEmptied(path);
    }
    OwnFile(const OwnFile&) = delete;
    OwnFile& operator=(const OwnFile&) = delete;
    ~OwnFile() override { close(); }

    bool isOpen() const noexcept { return fd_ >= 0; }
    /// False if what was written may not be there.
    bool close() noexcept { return fd_ < 0 || ::close(std::exchange(fd_, -1)) == 0; }
    int read(char*, int) override { return -1; }
    int write(const char* bytes, int count) override {
        for (int written = 0; written < count;) {
            const ssize_t result = ::write(fd_, bytes + written, static_cast<std::size_t>(count - written));
            if (result < 0 && errno != EINTR) return written;
            if (result > 0) written += static_cast<int>(result);
        }
        return count;
    }

private:
    static int openEmptied(const char* path) noexcept {
        int fd = open(path, O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
        struct stat status {};
        if (fd >= 0 && (fstat(fd, &status) != 0 || !S_ISREG(status.st_mode) || status.st_uid != geteuid() ||
                        status.st_nlink != 1 || ftruncate(fd, 0) != 0)) {
            ::close(std::exchange(fd, -1));
        }
        return fd;
    }

    int fd_;
};

}  // namespace

UnicodeString stGetTempDirectory() { return detail::fromPlatformPath(tempDirectory()); }

UnicodeString LumTempFile::getTempDirectory() { return stGetTempDirectory(); }

UnicodeString LumTempFile::getTempFile(const char* dir, const char* prefix, const char* suffix) {
    return detail::fromPlatformPath(findFreePath(dir, prefix, suffix));
}

LumTempFile::LumTempFile(const char* dir, const char* prefix, const char* suffix) {
    hold(findFreePath(dir, prefix, suffix));
}

LumTempFile::~LumTempFile() {
    if (isTempFile()) removeTempFile(path_.c_str());
}

void LumTempFile::hold(const std::string& path) {
    UnicodeString fileName = detail::fromPlatformPath(path);
    path_ = path;
    fileName_.swap(fileName);
}

void LumTempFile::setFileName(const char* name) {
    // `name` may point into this object.
    const std::string path = orEmpty(name);
    remove();
    hold(path);
}

void LumTempFile::setFileName(const char* dir, const char* prefix, const char* suffix) {
    remove();
    releaseFileName();
    hold(findFreePath(dir, prefix, suffix));
}

UnicodeString LumTempFile::releaseFileName() {
    const UnicodeString name = fileName_;
    fileName_.remove();
    path_.clear();
    return name;
}

void LumTempFile::remove() const {
    if (!isTempFile() || removeTempFile(path_.c_str())) return;
    throwCommonError(LumErrorCodeIO::CannotRemoveTempFile, LumCommonErrorSource::TempFile, fileName_);
}

bool LumTempFile::removeTempFile(const char* path) {
    if (!path || !mayExist(path)) return true;
    for (int attempt = 0; attempt < removalAttempts; ++attempt) {
        if (std::remove(path) == 0) return true;
    }
    return false;
}

bool LumTempFile::inflate(const unsigned char* data, std::size_t length) const {
    if (!isTempFile()) return false;
    OwnFile file(path_.c_str());
    if (!file.isOpen()) return false;
    LumCustomStreamBuf buffer(&file);
    std::ostream out(&buffer);
    const bool isComplete = inflate(out, data, length);
    return out.flush() && file.close() && isComplete;
}

bool LumTempFile::inflate(std::ostream& out, const unsigned char* data, std::size_t length) {
    using Outcome = detail::RawInflater::Outcome;
    if (!data) return false;
    detail::RawInflater inflater;
    std::array<char, detail::refillBytes> buffer;
    std::span<const char> rest(reinterpret_cast<const char*>(data), length);
    for (Outcome outcome = Outcome::MORE; outcome == Outcome::MORE;) {
        std::span<char> room(buffer);
        outcome = inflater.step(rest, room);
        out.write(buffer.data(), static_cast<std::streamsize>(buffer.size() - room.size()));
        if (outcome == Outcome::BROKEN || !out.good()) return false;
    }
    return true;
}

}  // namespace LumCommon
