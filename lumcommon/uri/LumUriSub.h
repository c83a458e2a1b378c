#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>

namespace LumCommon {

/// The string functions that LumUri is built on. A URI here is just a string: resolution works on "/" and only spaces
/// are escaped. Nothing fails: malformed strings are treated by the same rules. Cost: linear. Threads: any.
class LUM_API LumUriSub {
public:
    LumUriSub() = delete;

    /// Set by unquoteUri() and accepted by the resolving functions, whose results do not depend on it.
    using URISPECTYPE = int;
    static constexpr URISPECTYPE URISPEC_0 = 0;  ///< of types 0 and 2, and where url(...) was taken off
    static constexpr URISPECTYPE URISPEC_2 = 2;  ///< of types 1 and 3 otherwise

    /// The string without url(...) and surrounding quotes, where `strType` (LumUri::URISTRTYPE) allows them.
    static UnicodeString unquoteUri(const UnicodeString& s, URISPECTYPE& specType, int strType);
    /// The index of the colon that ends the scheme; -1 if there is no scheme. A scheme has at least two characters, so
    /// a drive letter is not one.
    static int checkScheme(const UnicodeString& s);
    /// Whether the scheme is "file", in any case of the letters.
    static bool isFileScheme(const UnicodeString& s);
    /// Whether the scheme is "data", in any case of the letters.
    static bool isDataScheme(const UnicodeString& s);
    /// Whether the scheme is "jar", in any case of the letters.
    static bool isJarScheme(const UnicodeString& s);
    /// Replaces every space by "%20", in place.
    static void escapeHH(UnicodeString& s);
    /// Decodes percent escapes in place, each to one unit U+0000 to U+00FF.
    static void unescapeHH(UnicodeString& s);
    /// Trims white space and, except in a data: URI, escapes spaces.
    static UnicodeString makeUriSub(const UnicodeString& s);
    /// Converts a path or URI to a URI: "/a" becomes "file:///a", a relative path stays relative.
    static UnicodeString makeUriFromPath(const UnicodeString& path, URISPECTYPE specType = URISPEC_0);
    /// Resolves `reference` against `base`.
    static UnicodeString makeAbsUri(const UnicodeString& base, const UnicodeString& reference,
                                    URISPECTYPE specType = URISPEC_0);
    /// The local path of a file: URI or a string without scheme, percent escapes decoded; any other URI unchanged.
    static UnicodeString makeLocalPathFromUri(const UnicodeString& uri);
};

}  // namespace LumCommon
