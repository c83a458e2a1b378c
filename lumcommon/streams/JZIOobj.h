#pragma once

#include <lumcommon/core/Api.h>

#include <istream>
#include <string>

namespace LumCommon {

/// The least that random access needs: what the reader of compound files stands on.
/// Failure: -1 or false. Threads: one at a time.
class LUM_API JZIOobj {
public:
    enum Flags : unsigned { OPEN = 1u, BINARY = 4u, WRITABLE = 8u };

    JZIOobj() = default;
    virtual ~JZIOobj();
    JZIOobj& operator=(const JZIOobj&) = delete;

    /// True at once when it is open.
    [[nodiscard]] virtual bool Open() = 0;
    /// Always true.
    virtual bool Close() = 0;
    /// Reads up to `len` bytes; the number read, 0 at the end.
    virtual int Read(char* buf, int len) = 0;
    /// Writes `len` bytes; the number written. An object that cannot write gives -1.
    virtual int Write(const char* buf, int len);
    /// Moves to `offset` bytes from the start, the current position or the end (SEEK_SET, SEEK_CUR, SEEK_END). An
    /// object that cannot seek gives false.
    virtual bool Seek(long offset, int whence);
    /// The position in bytes, or -1.
    virtual long Tell() = 0;
    /// Reads up to `len` bytes from `offset` on, as Seek() from the start and Read() do; -1 where those fail. What the
    /// position is afterwards is left open.
    virtual int ReadAt(long offset, char* buf, int len);  // last, so that the places of the others stay

    bool IsOpen() const noexcept { return (flags_ & OPEN) != 0; }
    unsigned GetFlags() const noexcept { return flags_; }
    /// The size in bytes when it was opened for reading; 0 before that, for writing, and of what has no size.
    long GetSize() const noexcept { return sizeBytes_; }

protected:
    /// A copy has the flags of the original but is not open.
    JZIOobj(const JZIOobj& other) noexcept : flags_(other.flags_ & ~OPEN) {}

    unsigned flags_ = 0;
    long sizeBytes_ = 0;
};

/// A file by its descriptor.
///
/// A mode is read letter by letter: "r" for reading, "w" for reading and writing, "b" and "t" for the binary flag,
/// which changes nothing here; other letters are ignored.
class LUM_API JZFileIOobj : public JZIOobj {
public:
    /// @param path  in the platform's encoding; with null Open() fails.
    JZFileIOobj(const char* path, const char* mode);
    /// Takes an open descriptor, which is closed with the object; its position is left as it is.
    JZFileIOobj(int fd, const char* mode);
    /// A copy names the same path and is not open.
    JZFileIOobj(const JZFileIOobj& other);
    ~JZFileIOobj() override;

    /// A file opened for writing is made when it does not exist (mode 0600) and keeps its content. A directory cannot
    /// be opened.
    [[nodiscard]] bool Open() override;
    bool Close() override;
    int Read(char* buf, int len) override;
    int Write(const char* buf, int len) override;
    bool Seek(long offset, int whence) override;
    long Tell() override;
    /// One system call, where Seek() and Read() take two.
    int ReadAt(long offset, char* buf, int len) override;

private:
    void readMode(const char* mode) noexcept;

    std::string path_;
    int fd_ = -1;
};

/// A standard input stream.
class LUM_API JZStreamIOobj : public JZIOobj {
public:
    /// @param stream  must outlive the object; with null every operation fails.
    explicit JZStreamIOobj(std::istream* stream);

    /// Finds the size and moves to the start; false when the stream cannot seek.
    [[nodiscard]] bool Open() override;
    /// Does nothing; the stream stays open.
    bool Close() override;
    /// A read that meets the end leaves the stream with eofbit but without failbit: to be shorter than asked is no
    /// failure, and a seek works after it.
    int Read(char* buf, int len) override;
    /// False when the stream's state has failbit or badbit.
    bool Seek(long offset, int whence) override;
    /// -1 when the stream has failed.
    long Tell() override;

private:
    std::istream* stream_;
};

}  // namespace LumCommon
