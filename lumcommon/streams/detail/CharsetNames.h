#pragma once

#include <string_view>

namespace LumCommon::detail {

// A charset can have three names: the one in a document, the one by which the library knows it (see
// LumKobStreamBuf::getLibraryName), and ICU's. They differ for few charsets; the rest have one name for all.

/// The library's name for a charset that a document names, in any case; null where that is the given name itself.
const char* findLibraryCharset(std::string_view given) noexcept;

/// The library's name for what ICU's detector has answered. It may be that of a larger charset: where ISO 8859 has
/// control characters, letters and quotation marks may turn out to follow. Null where that is the answer itself.
const char* findLibraryCharsetOfDetected(std::string_view detected) noexcept;

/// ICU's name for a charset that the library names; null where that is the library's name itself.
const char* findIcuCharset(std::string_view libraryName) noexcept;

}  // namespace LumCommon::detail
