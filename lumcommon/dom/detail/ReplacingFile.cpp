#include <lumcommon/core/LumError.h>
#include <lumcommon/core/detail/HexText.h>
#include <lumcommon/dom/detail/LocalFile.h>
#include <lumcommon/dom/detail/ReplacingFile.h>
#include <lumcommon/names/detail/UnitHash.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <optional>
#include <utility>
#include <vector>

namespace LumCommon::detail {

namespace {

constexpr std::size_t bufferBytes = std::size_t{64} * 1024;
constexpr int creationAttempts = 100;
constexpr int linksAtMost = 40;
constexpr mode_t rightsOfAll = 0666;  // less what the process masks out, as for any new file
constexpr mode_t rightsOfOwner = 0600;
constexpr const char* accessList = "system.posix_acl_access";

/// Repeats a call that a signal has interrupted.
template <class Call>
auto withoutInterruption(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR) result = call();
    return result;
}

/// False where bytes may not have reached the disk. Files and file systems that have nothing to synchronise say so.
bool synchronise(const Descriptor& file) {
    return withoutInterruption([&] { return ::fsync(file.get()); }) == 0 || errno == EINVAL || errno == ENOTSUP ||
           errno == EBADF;
}

/// A name that hardly anybody else uses or can guess.
std::string makeTemporaryName() {
    static std::atomic<std::uint64_t> count = 0;
    const HashKey& key = processHashKey();
    const auto ticks = static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    std::uint64_t number = foldMultiply(key.seed ^ ticks ^ ++count << 48, key.multiplier);
    std::string name = ".lum-";
    for (int i = 0; i < 16; ++i, number >>= 4) {
        name += static_cast<char>(hexDigit(static_cast<std::uint32_t>(number)));
    }
    return name + ".tmp";
}

std::optional<std::string> readLink(const Descriptor& folder, const std::string& name) {
    std::string target(4096, '\0');
    const ssize_t size = ::readlinkat(folder.get(), name.c_str(), target.data(), target.size());
    if (size <= 0 || static_cast<std::size_t>(size) == target.size()) return std::nullopt;
    target.resize(static_cast<std::size_t>(size));
    return target;
}

/// Gives `to` the access control list of `from`, or none if it has none. False if it cannot have it.
bool copyAccessList(const Descriptor& from, const Descriptor& to) {
    const ssize_t size = ::fgetxattr(from.get(), accessList, nullptr, 0);
    if (size < 0) {
        ::fremovexattr(to.get(), accessList);  // one that the folder gives to new files
        return true;
    }
    std::vector<char> list(static_cast<std::size_t>(size));
    return ::fgetxattr(from.get(), accessList, list.data(), list.size()) == size &&
           ::fsetxattr(to.get(), accessList, list.data(), list.size(), 0) == 0;
}

}  // namespace

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    close();
    number_ = other.release();
    return *this;
}

int Descriptor::release() noexcept { return std::exchange(number_, -1); }

bool Descriptor::close() noexcept {
    const int number = release();
    // The number is free again even after an interruption, which says nothing about what was written.
    return number < 0 || ::close(number) == 0 || errno == EINTR;
}

ReplacingFile::ReplacingFile(const UnicodeString& uri) : buffer_(file_), stream_(&buffer_) {
    const std::optional<std::string> path = findLocalFile(uri);
    if (path && openTarget(*path)) return;
    throwCommonError(LumErrorCodeIO::CannotOpen, LumCommonErrorSource::SerializerSetOutput, uri);
}

ReplacingFile::~ReplacingFile() = default;

ReplacingFile::Temporary::~Temporary() {
    if (!name.empty()) ::unlinkat(folder.get(), name.c_str(), 0);
}

/// Follows links by hand, as the file that they lead to is the one to be replaced.
bool ReplacingFile::openTarget(std::string path) {
    struct stat seen = {};
    const bool isThere = ::stat(path.c_str(), &seen) == 0;
    if (isThere && !S_ISREG(seen.st_mode)) {
        if (S_ISDIR(seen.st_mode)) return false;
        file_ = Descriptor(withoutInterruption([&] { return ::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY); }));
        return file_.isOpen();
    }
    for (int links = 0; links <= linksAtMost; ++links) {
        const std::size_t slash = path.rfind('/');
        const std::string folder = slash == std::string::npos ? "./" : path.substr(0, slash + 1);
        name_ = path.substr(slash + 1);  // all of it where there is no slash
        if (name_.empty() || name_ == "." || name_ == "..") return false;
        temporary_.folder = Descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!temporary_.folder.isOpen())
            temporary_.folder = Descriptor(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        struct stat status = {};
        if (::fstatat(temporary_.folder.get(), name_.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
            return errno == ENOENT && !isThere && openBeside(rightsOfAll);
        }
        if (!S_ISLNK(status.st_mode)) {
            const bool isSeen = isThere && status.st_ino == seen.st_ino && status.st_dev == seen.st_dev;
            return isSeen && openBeside(rightsOfOwner) && takeRights();
        }
        const std::optional<std::string> target = readLink(temporary_.folder, name_);
        if (!target) return false;
        path = target->front() == '/' ? *target : folder + *target;
    }
    return false;
}

bool ReplacingFile::openBeside(mode_t rights) {
    for (int attempt = 0; attempt < creationAttempts; ++attempt) {
        std::string name = makeTemporaryName();
        constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
        file_ = Descriptor(withoutInterruption(
            [&] { return ::openat(temporary_.folder.get(), name.c_str(), flags | O_LARGEFILE, rights); }));
        if (file_.isOpen()) {
            temporary_.name = std::move(name);
            return true;
        }
        if (errno != EEXIST) return false;
    }
    return false;
}

/// Gives the new file owner, group and rights of the old one, as far as the system lets. Whoever could not read the old
/// one cannot read the new one. False if the old one may not be written.
bool ReplacingFile::takeRights() {
    const Descriptor target(withoutInterruption(
        [&] { return ::openat(temporary_.folder.get(), name_.c_str(), O_WRONLY | O_CLOEXEC | O_NOFOLLOW); }));
    struct stat old = {}, made = {};
    if (!target.isOpen() || ::fstat(target.get(), &old) != 0 || ::fstat(file_.get(), &made) != 0) return false;
    mode_t rights = old.st_mode & 0777u;
    bool keepsGroup = old.st_gid == made.st_gid || ::fchown(file_.get(), static_cast<uid_t>(-1), old.st_gid) == 0;
    if (old.st_uid != made.st_uid && ::fchown(file_.get(), old.st_uid, static_cast<gid_t>(-1)) != 0) {
        // The file then belongs to whoever replaces it.
    }
    if (!copyAccessList(target, file_)) keepsGroup = false;
    if (!keepsGroup) rights &= ~mode_t{070} | (rights & 07u) << 3;  // another group may do what everybody may
    return withoutInterruption([&] { return ::fchmod(file_.get(), rights); }) == 0;
}

void ReplacingFile::replace() {
    bool isDone = stream_.flush().good() && synchronise(file_);
    isDone = file_.close() && isDone;
    if (isDone && !temporary_.name.empty()) {
        const int folder = temporary_.folder.get();
        const char* const made = temporary_.name.c_str();
        isDone = withoutInterruption([&] { return ::renameat(folder, made, folder, name_.c_str()); }) == 0;
        if (isDone) {
            temporary_.name.clear();
            isDone = synchronise(temporary_.folder);
        }
    }
    if (!isDone) throwCommonError(LumErrorCodeIO::OutputFailed, LumCommonErrorSource::SerializerCheckStream);
}

ReplacingFile::Buffer::Buffer(Descriptor& file)
    : file_(file), room_(std::make_unique_for_overwrite<char[]>(bufferBytes)) {
    setp(room_.get(), room_.get() + bufferBytes);
}

bool ReplacingFile::Buffer::writeAll(const char* bytes, std::size_t count) {
    while (count > 0) {
        const ssize_t written = withoutInterruption([&] { return ::write(file_.get(), bytes, count); });
        if (written <= 0) return false;
        bytes += written;
        count -= static_cast<std::size_t>(written);
    }
    return true;
}

int ReplacingFile::Buffer::sync() {
    const bool isWritten = writeAll(pbase(), static_cast<std::size_t>(pptr() - pbase()));
    setp(room_.get(), room_.get() + bufferBytes);
    return isWritten ? 0 : -1;
}

ReplacingFile::Buffer::int_type ReplacingFile::Buffer::overflow(int_type c) {
    if (sync() != 0) return traits_type::eof();
    if (!traits_type::eq_int_type(c, traits_type::eof())) sputc(traits_type::to_char_type(c));
    return traits_type::not_eof(c);
}

std::streamsize ReplacingFile::Buffer::xsputn(const char* bytes, std::streamsize count) {
    if (count <= epptr() - pptr()) return std::streambuf::xsputn(bytes, count);
    return sync() == 0 && writeAll(bytes, static_cast<std::size_t>(count)) ? count : 0;
}

}  // namespace LumCommon::detail
