#pragma once

#include <istream>
#include <memory>

namespace LumCommon {
class LumUri;
}

namespace LumCommon::detail {

/// LumUri::getStream() for a caller that must not take a lack of memory for a resource that is not there: it throws
/// std::bad_alloc or LumError 0x801. Any other failure gives null.
std::unique_ptr<std::istream> openResource(const LumUri& resource, bool& isRefused);

}  // namespace LumCommon::detail
