#pragma once

#include <lumcommon/core/Api.h>

#include <istream>
#include <string>

namespace LumCommon {

/// The minimal random-access interface that the reader of compound files is built on.
/// Failure: -1 or false. Threads: one at a time.
class LUM_API JZIOobj {
public:
    /// Bits of GetFlags().
    enum Flags : unsigned {
        OPEN = 1u,      ///< what IsOpen() tells
        BINARY = 4u,    ///< the mode had "b"; without effect
        WRITABLE = 8u,  ///< the mode had "w"
    };

    JZIOobj() = default;
    virtual ~JZIOobj();
    JZIOobj& operator=(const JZIOobj&) = delete;

    /// Returns true at once if it is already open.
    [[nodiscard]] virtual bool Open() = 0;
    /// Always true.
    virtual bool Close() = 0;
    /// Reads up to `len` bytes. Returns the number read, 0 at the end.
    virtual int Read(char* buf, int len) = 0;
    /// Writes `len` bytes. Returns the number written; an object that cannot write returns -1.
    virtual int Write(const char* buf, int len);
    /// Moves to `offset` bytes from the start, the current position or the end (SEEK_SET, SEEK_CUR, SEEK_END). An
    /// object that cannot seek returns false.
    virtual bool Seek(long offset, int whence);
    /// The position in bytes, or -1.
    virtual long Tell() = 0;
    /// Reads up to `len` bytes at `offset` bytes from the start, like Seek() followed by Read(); -1 if either fails.
    /// The position afterwards is unspecified.
    virtual int ReadAt(long offset, char* buf, int len);  // last, to keep the vtable slots of the others

    /// Whether Open() has succeeded and Close() was not called since.
    bool IsOpen() const noexcept { return (flags_ & OPEN) != 0; }
    /// The bits of Flags that are set.
    unsigned GetFlags() const noexcept { return flags_; }
    /// The size in bytes at the time it was opened for reading; 0 before that, when opened for writing, and for
    /// something without a size.
    long GetSize() const noexcept { return sizeBytes_; }

protected:
    /// A copy has the flags of the original but is not open.
    JZIOobj(const JZIOobj& other) noexcept : flags_(other.flags_ & ~OPEN) {}

    unsigned flags_ = 0;  ///< bits of Flags
    long sizeBytes_ = 0;  ///< what GetSize() returns
};

/// A file, accessed through its descriptor.
///
/// The mode is read letter by letter: "r" for reading, "w" for reading and writing, "b" and "t" set and clear the
/// binary flag, which has no effect here; other letters are ignored.
class LUM_API JZFileIOobj : public JZIOobj {
public:
    /// @param path  in the platform's encoding; null makes Open() fail.
    /// @param mode  the letters.
    JZFileIOobj(const char* path, const char* mode);
    /// Takes over an open descriptor, which is closed with the object; its position is left as it is.
    JZFileIOobj(int fd, const char* mode);
    /// A copy names the same path and is not open.
    JZFileIOobj(const JZFileIOobj& other);
    ~JZFileIOobj() override;

    /// A file opened for writing is created if it does not exist (mode 0600); an existing one keeps its content. A
    /// directory cannot be opened.
    [[nodiscard]] bool Open() override;
    bool Close() override;
    int Read(char* buf, int len) override;
    int Write(const char* buf, int len) override;
    bool Seek(long offset, int whence) override;
    long Tell() override;
    /// One system call, where Seek() and Read() would take two.
    int ReadAt(long offset, char* buf, int len) override;

private:
    void readMode(const char* mode) noexcept;

    std::string path_;
    int fd_ = -1;
};

/// A standard input stream, seen through this interface.
class LUM_API JZStreamIOobj : public JZIOobj {
public:
    /// @param stream  must outlive the object; with null every operation fails.
    explicit JZStreamIOobj(std::istream* stream);

    /// Determines the size and moves to the start; false if the stream cannot seek.
    [[nodiscard]] bool Open() override;
    /// Does nothing; the stream stays open.
    bool Close() override;
    /// A read that reaches the end leaves the stream with eofbit but without failbit: a short read is not a failure,
    /// and the stream can still seek.
    int Read(char* buf, int len) override;
    /// False if the stream's state has failbit or badbit.
    bool Seek(long offset, int whence) override;
    /// -1 when the stream has failed.
    long Tell() override;

private:
    std::istream* stream_;
};

}  // namespace LumCommon
