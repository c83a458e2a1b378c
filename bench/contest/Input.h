#pragma once

#include <istream>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

namespace LumBench {

/// A file in memory.
struct Input {
    std::string name;
    std::string bytes;
};

/// Failure: std::runtime_error when the file cannot be read or is empty.
Input readInput(const std::string& file);

/// Reads bytes in memory, without copying them.
class MemoryInput : private std::streambuf, public std::istream {
public:
    explicit MemoryInput(std::string_view bytes) : std::istream(this) {
        char* begin = const_cast<char*>(bytes.data());  // reading never writes to the get area of a streambuf
        setg(begin, begin, begin + bytes.size());
    }
};

/// Appends what is written to a string in memory, which grows as it must.
class MemoryOutput : private std::streambuf, public std::ostream {
public:
    explicit MemoryOutput(std::string& bytes) : std::ostream(this), bytes_(bytes) {}

protected:
    std::streamsize xsputn(const char* bytes, std::streamsize count) override {
        bytes_.append(bytes, static_cast<std::size_t>(count));
        return count;
    }
    std::streambuf::int_type overflow(std::streambuf::int_type c) override {
        bytes_ += std::streambuf::traits_type::to_char_type(c);
        return std::streambuf::traits_type::not_eof(c);
    }

private:
    std::string& bytes_;
};

}  // namespace LumBench
