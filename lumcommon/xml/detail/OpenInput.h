#pragma once

#include <istream>
#include <memory>

namespace LumCommon {
class LumUri;
}

namespace LumCommon::detail {

/// Opens a resource that is to be parsed: LumUri::getStream(), and what is compressed with gzip is decompressed. (No
/// XML document begins with the byte that gzip data begin with.)
/// Null when the resource cannot be opened.
/// @param isRefused  receives whether that is because the resolver refuses it.
std::unique_ptr<std::istream> openInput(const LumUri& resource, bool& isRefused);

/// Errors: 0x1004 for an empty stream, 0x1006 for one that has failed.
void checkInput(std::istream& in);

}  // namespace LumCommon::detail
