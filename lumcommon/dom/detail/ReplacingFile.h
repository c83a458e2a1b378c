#pragma once

#include <lumcommon/core/Text.h>

#include <sys/types.h>

#include <memory>
#include <ostream>
#include <streambuf>
#include <string>

namespace LumCommon::detail {

/// A file descriptor of its own.
class Descriptor {
public:
    explicit Descriptor(int number = -1) noexcept : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept;
    ~Descriptor() { close(); }

    int get() const noexcept { return number_; }
    bool isOpen() const noexcept { return number_ >= 0; }
    /// False if the system tells only now that something could not be written. It is closed all the same.
    bool close() noexcept;

private:
    int release() noexcept;

    int number_;
};

/// A new file beside the one that it is going to replace, for LumDocument::saveReplacing(), which tells the rules.
/// Threads: one at a time.
class ReplacingFile {
public:
    /// Errors: 0x1003.
    explicit ReplacingFile(const UnicodeString& uri);
    /// Without replace(), what was there stays.
    ~ReplacingFile();
    ReplacingFile(const ReplacingFile&) = delete;
    ReplacingFile& operator=(const ReplacingFile&) = delete;

    std::ostream& stream() noexcept { return stream_; }
    /// Puts what has been written in the place of what was there.   Errors: 0x1007.
    void replace();

private:
    /// Writes to a descriptor, whatever interrupts the system.
    class Buffer final : public std::streambuf {
    public:
        explicit Buffer(Descriptor& file);

    protected:
        int_type overflow(int_type c) override;
        std::streamsize xsputn(const char* bytes, std::streamsize count) override;
        int sync() override;

    private:
        bool writeAll(const char* bytes, std::size_t count);

        Descriptor& file_;
        std::unique_ptr<char[]> room_;
    };

    bool openTarget(std::string path);
    bool openBeside(mode_t rights);
    bool takeRights();

    /// The name of a file in a folder, removed in the end.
    struct Temporary {
        ~Temporary();

        Descriptor folder;
        std::string name;  // empty: none
    };

    Descriptor file_;
    Temporary temporary_;
    std::string name_;  // of the target, in the same folder
    Buffer buffer_;
    std::ostream stream_;
};

}  // namespace LumCommon::detail
