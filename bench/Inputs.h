#pragma once

#include <istream>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

namespace LumBench {

struct Input {
    std::string name;
    std::string bytes;
};

/// Real documents, and generated ones that each stress one thing.
const std::vector<Input>& inputs();

/// Reads bytes in memory, without copying them.
class MemoryInput : private std::streambuf, public std::istream {
public:
    explicit MemoryInput(std::string_view bytes) : std::istream(this) {
        char* begin = const_cast<char*>(bytes.data());  // reading never writes to the get area of a streambuf
        setg(begin, begin, begin + bytes.size());
    }
};

}  // namespace LumBench
