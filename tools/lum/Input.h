#pragma once

#include <istream>
#include <memory>
#include <string>

namespace lum {

/// Opens what a command line names: a file, a URI, or - for standard input. The stream can seek; what cannot do so by
/// itself is kept in memory as far as it is read.
/// Failure: LumError 0x1003.
std::unique_ptr<std::istream> openInput(const std::string& file);

}  // namespace lum
