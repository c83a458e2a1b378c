#include "Input.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace LumBench {

Input readInput(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    Input input{file, std::string{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()}};
    if (!in || input.bytes.empty()) throw std::runtime_error("cannot read " + file);
    return input;
}

}  // namespace LumBench
