#include <lumcommon/streams/JZIOobj.h>
#include <lumcommon/streams/detail/StreamReading.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

namespace LumCommon {
namespace {

/// Moves a descriptor's position and returns the new one; -1 on failure.
long moveTo(int fd, long offset, int whence) { return static_cast<long>(lseek(fd, offset, whence)); }

/// Repeats a system call that a signal has interrupted.
template <class Call>
int uninterrupted(Call call) {
    ssize_t result;
    do {
        result = call();
    } while (result < 0 && errno == EINTR);
    return static_cast<int>(result);
}

}  // namespace

JZIOobj::~JZIOobj() = default;

int JZIOobj::Write(const char*, int) { return -1; }

bool JZIOobj::Seek(long, int) { return false; }

int JZIOobj::ReadAt(long offset, char* buf, int len) { return Seek(offset, SEEK_SET) ? Read(buf, len) : -1; }

JZFileIOobj::JZFileIOobj(const char* path, const char* mode) : path_(path ? path : "") { readMode(mode); }

JZFileIOobj::JZFileIOobj(int fd, const char* mode) : fd_(fd) {
    readMode(mode);
    struct stat status {};
    if (fd < 0 || fstat(fd, &status) != 0) return;
    flags_ |= OPEN;
    if ((flags_ & WRITABLE) == 0) sizeBytes_ = static_cast<long>(status.st_size);
}

JZFileIOobj::JZFileIOobj(const JZFileIOobj& other) = default;

JZFileIOobj::~JZFileIOobj() { JZFileIOobj::Close(); }

void JZFileIOobj::readMode(const char* mode) noexcept {
    for (; mode && *mode; ++mode) {
        switch (*mode) {
            case 'r':
                flags_ &= ~static_cast<unsigned>(WRITABLE);
                break;
            case 'w':
                flags_ |= WRITABLE;
                break;
            case 'b':
                flags_ |= BINARY;
                break;
            case 't':
                flags_ &= ~static_cast<unsigned>(BINARY);
                break;
            default:
                break;
        }
    }
}

bool JZFileIOobj::Open() {
    if (IsOpen()) return true;
    const bool isWritable = (flags_ & WRITABLE) != 0;
    fd_ = open(path_.c_str(), (isWritable ? O_RDWR | O_CREAT : O_RDONLY) | O_CLOEXEC, 0600);
    if (fd_ < 0) return false;
    struct stat status {};
    if (fstat(fd_, &status) != 0 || S_ISDIR(status.st_mode)) {
        close(fd_);
        fd_ = -1;
        return false;
    }
    flags_ |= OPEN;
    // Something without an end to seek to, such as a pipe, has no size.
    sizeBytes_ = isWritable ? 0 : std::max(moveTo(fd_, 0, SEEK_END), 0L);
    if (!isWritable) moveTo(fd_, 0, SEEK_SET);
    return true;
}

bool JZFileIOobj::Close() {
    if (IsOpen()) close(fd_);
    fd_ = -1;
    flags_ &= ~static_cast<unsigned>(OPEN);
    return true;
}

int JZFileIOobj::Read(char* buf, int len) {
    if (len < 0) return -1;
    return uninterrupted([&] { return read(fd_, buf, static_cast<std::size_t>(len)); });
}

int JZFileIOobj::Write(const char* buf, int len) {
    if (len < 0) return -1;
    return uninterrupted([&] { return write(fd_, buf, static_cast<std::size_t>(len)); });
}

bool JZFileIOobj::Seek(long offset, int whence) { return moveTo(fd_, offset, whence) >= 0; }

int JZFileIOobj::ReadAt(long offset, char* buf, int len) {
    if (len < 0) return -1;
    return uninterrupted([&] { return pread(fd_, buf, static_cast<std::size_t>(len), offset); });
}

long JZFileIOobj::Tell() { return moveTo(fd_, 0, SEEK_CUR); }

JZStreamIOobj::JZStreamIOobj(std::istream* stream) : stream_(stream) { flags_ = BINARY; }

bool JZStreamIOobj::Open() {
    if (IsOpen()) return true;
    if (!Seek(0, SEEK_END)) return false;
    const long end = Tell();
    if (end < 0 || !Seek(0, SEEK_SET)) return false;
    sizeBytes_ = end;
    flags_ |= OPEN;
    return true;
}

bool JZStreamIOobj::Close() { return true; }

int JZStreamIOobj::Read(char* buf, int len) {
    if (!stream_ || len < 0) return -1;
    if (stream_->eof()) return 0;
    const std::size_t count = detail::readBytes(*stream_, {buf, static_cast<std::size_t>(len)});
    if (stream_->eof() && !stream_->bad()) {
        try {
            stream_->clear(std::ios_base::eofbit);
        } catch (...) {
            // The exception mask includes eofbit; the state has been set all the same.
        }
    }
    return static_cast<int>(count);
}

bool JZStreamIOobj::Seek(long offset, int whence) {
    if (!stream_ || whence < SEEK_SET || whence > SEEK_END) return false;
    constexpr std::ios_base::seekdir directions[] = {std::ios_base::beg, std::ios_base::cur, std::ios_base::end};
    try {
        stream_->seekg(offset, directions[whence]);
    } catch (...) {
        // Thrown because of the exception mask; the state is checked below.
    }
    return !stream_->fail();
}

long JZStreamIOobj::Tell() {
    if (!stream_ || stream_->fail()) return -1;
    try {
        // Not tellg(): it would make a stream that has reached its end fail.
        return static_cast<long>(stream_->rdbuf()->pubseekoff(0, std::ios_base::cur, std::ios_base::in));
    } catch (...) {
        return -1;
    }
}

}  // namespace LumCommon
