#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>
#include <lumcommon/names/LumName.h>

#include <concepts>
#include <filesystem>
#include <string>
#include <string_view>

/// The texts of the standard library on the way into this one and back. Wherever a text, a value or a URI is asked for,
/// toText() and pathToUri() are accepted; wherever a name is, toName().
///
///     element->setAttribute(toName("title"), toText(line));    // line: std::string
///     document->createTextNode(toText(u8"caf\u00e9"));
///     std::string bytes = toUtf8(element->getAttribute(toName("title")));
///     LumXmlUtil::getRootParser(pathToUri(std::filesystem::path("100%41.fo")));
///
/// Errors: std::bad_alloc, also for a text of more than 2^31-1 units.   Cost: linear.   Threads: any.
namespace LumCommon {

/// The text of UTF-8; each malformed sequence becomes U+FFFD. Zeros are characters like any other.
[[nodiscard]] LUM_API UnicodeString toText(std::string_view utf8);
/// The same from a literal u8"...".
[[nodiscard]] LUM_API UnicodeString toText(std::u8string_view utf8);
/// A copy of the units as they are.
[[nodiscard]] LUM_API UnicodeString toText(std::u16string_view text);

/// The name of such a text, interned: see LumName for how long it lives.
template <class Text>
requires requires(const Text& text) { toText(text); }
[[nodiscard]] LumName toName(const Text& text) { return LumName(toText(text)); }

/// The text in UTF-8; U+FFFD for halves of surrogate pairs.
[[nodiscard]] LUM_API std::string toUtf8(std::u16string_view text);
/// The same; a bogus text gives an empty string.
template <std::derived_from<UnicodeString> Text>
[[nodiscard]] std::string toUtf8(const Text& text) {
    return text.isEmpty() ? std::string()
                          : toUtf8(std::u16string_view(text.getBuffer(), static_cast<std::size_t>(text.length())));
}
/// The string of the name.
[[nodiscard]] inline std::string toUtf8(LumName name) { return toUtf8(name.getString()); }
/// The same by its identifier.
[[nodiscard]] inline std::string toUtf8(LumNameEnum name) { return toUtf8(LumName(name)); }
/// What toString() of a value, a colour, a URI and so on gives.
template <class Value>
requires requires(const Value& value) {
    { value.toString() } -> std::convertible_to<const UnicodeString&>;
}
[[nodiscard]] std::string toUtf8(const Value& value) { return toUtf8(value.toString()); }

/// The URI of a file, see LumUri::fromLocalPath(): a path is a path, "100%41" is not "100A", and names that are no text
/// lead to their files too. Relative paths are completed by the working directory.
///
/// Where an operation takes const char* as a path (LumZipFile, OleCompFile), path.c_str() is right.
/// LumDocument and LumXmlParser take the path itself.
/// @return an empty text for an empty path and for one with a zero byte.
[[nodiscard]] LUM_API UnicodeString pathToUri(const std::filesystem::path& path);

/// The path of a file: URI, or of a string without a scheme, as LumUri::findLocalPath() gives it:
/// `uriToPath(pathToUri(path)) == std::filesystem::absolute(path)`.
/// @return an empty path for any other URI, and for one that no file can have.
[[nodiscard]] LUM_API std::filesystem::path uriToPath(const UnicodeString& uri);

}  // namespace LumCommon

/// A short name: `lum::pathToUri(path)`.
namespace lum = LumCommon;
