#pragma once

#include <string_view>

namespace LumCommon::detail {

// A charset can have three names: the one in a document, the one by which the library knows it (see
// LumKobStreamBuf::getLibraryName), and ICU's. They differ for only a few charsets; the rest have a single name.

/// The library's name for a charset named in a document, in upper or lower case; null if that is the given name itself.
const char* findLibraryCharset(std::string_view given) noexcept;

/// The library's name for a charset that ICU's detector has reported; null if that is the reported name itself. It may
/// name a superset: where ISO 8859 has control characters, later text may turn out to have letters and quotation marks.
const char* findLibraryCharsetOfDetected(std::string_view detected) noexcept;

/// ICU's name for a charset, given the library's name; null if both are the same.
const char* findIcuCharset(std::string_view libraryName) noexcept;

}  // namespace LumCommon::detail
