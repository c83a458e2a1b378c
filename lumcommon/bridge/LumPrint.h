#pragma once

#include <lumcommon/bridge/LumPosition.h>
#include <lumcommon/bridge/LumText.h>
#include <lumcommon/core/LumError.h>
#include <lumcommon/names/MathMLName.h>
#include <lumcommon/names/SVGName.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/values/LumColor.h>
#include <lumcommon/values/LumLength.h>
#include <lumcommon/values/LumValue.h>
#include <lumcommon/xml/LumXmlParser.h>

#include <concepts>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>
#include <version>
#ifdef __cpp_lib_format
#include <format>
#endif

/// Printing in UTF-8: names, values, colours, lengths, URIs, errors, positions and events of the parser, by toUtf8(),
/// by operator<< and, where the standard library has it, by std::format. lumcommon.h does not include this header, as
/// it changes what `<<` makes of an event: its name, and not its number.
///
///     std::cout << name << " = " << std::setw(10) << element->getAttribute(name) << '\n';
///     std::cerr << error << '\n';
///     std::string line = std::format("{:>10} {}", name, value);
///
/// A width, a fill and an adjustment apply as to a string.
/// Errors: std::bad_alloc, and those of the stream.   Threads: as for the value and the stream.
namespace LumCommon {

/// LumError::getMessage(), with the position if one is known.
[[nodiscard]] inline std::string toUtf8(const LumError& error) { return toUtf8(error.getMessage()); }
/// "12.5pt"; empty for no length.
[[nodiscard]] LUM_API std::string toUtf8(const LumLength& length);
/// "book.xml:3:14"; a part that is not known is left out, so that nothing known is an empty string.
[[nodiscard]] LUM_API std::string toUtf8(const LumPosition& position);
/// "START_TAG" and so on; empty for other values.
[[nodiscard]] inline std::string toUtf8(LumXmlParser::EventType event) {
    return toUtf8(LumXmlParser::getEventTypeStr(event));
}
/// The string of the name; empty for one that is not in the vocabulary.
[[nodiscard]] inline std::string toUtf8(MathMLName name) { return toUtf8(name.toName()); }
/// The same of a name of SVG.
[[nodiscard]] inline std::string toUtf8(SVGName name) { return toUtf8(name.toName()); }

/// What this header prints.
template <class T>
concept LumPrintable = std::same_as<T, LumName> || std::derived_from<T, LumValue> || std::same_as<T, LumColor> ||
    std::same_as<T, LumLength> || std::derived_from<T, LumUri> || std::derived_from<T, LumError> ||
    std::same_as<T, LumPosition> || std::same_as<T, LumXmlParser::EventType> || std::same_as<T, MathMLName> ||
    std::same_as<T, SVGName>;

/// Writes toUtf8() of it, with the stream's width, fill and adjustment.
template <LumPrintable T>
std::ostream& operator<<(std::ostream& out, const T& printed) {
    return out << toUtf8(printed);
}

}  // namespace LumCommon

#ifdef __cpp_lib_format
/// As for a string: std::format("{:*^20}", value).
template <LumCommon::LumPrintable T>
struct std::formatter<T, char> : std::formatter<std::string_view, char> {
    template <class Context>
    auto format(const T& printed, Context& context) const {
        std::formatter<std::string_view, char> text(*this);  // whose format() is not const everywhere
        return text.format(LumCommon::toUtf8(printed), context);
    }
};
#endif
