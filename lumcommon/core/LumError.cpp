#include <lumcommon/core/LumError.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/DecimalText.h>
#include <lumcommon/core/detail/ErrorText.h>

#include <iterator>
#include <string>
#include <string_view>

namespace LumCommon {
namespace {

using detail::append;
using detail::appendDecimal;
using detail::assign;
using detail::copyOf;
using detail::ErrorRow;
using detail::textOf;
using detail::viewOf;

constexpr ErrorRow errorRows[] = {
#include <lumcommon/core/LumErrors.inc>
};
static_assert(detail::isInOrder(errorRows));

constexpr std::u16string_view sourceTexts[] = {
#include <lumcommon/core/LumErrorSources.inc>
};
static_assert(std::size(sourceTexts) == 28);

/// The message of a code; see LumErrors.inc for the placeholders.
UnicodeString makeMessage(std::u16string_view text, const UnicodeString& arg1, const UnicodeString& arg2) {
    const std::u16string_view first = viewOf(arg1);
    UnicodeString clause;
    append(append(clause, first.empty() ? u"." : u": "), first);
    return detail::fillErrorText(text, {first, viewOf(arg2), first.empty() ? u"arg" : first, viewOf(clause)});
}

/// @param family  the high byte of the codes that the caller may raise: a code of the other family gets no text.
[[noreturn]] void throwWithText(std::uint16_t code, unsigned family, LumCommonErrorSource source,
                                std::u16string_view textOfUnknownCode, const UnicodeString& arg1,
                                const UnicodeString& arg2) {
    std::u16string_view text = textOfUnknownCode;
    if (code >> 8 == family) {
        if (const std::u16string_view known = detail::findErrorText(errorRows, code); known.data()) text = known;
    }
    throw LumError(code, makeMessage(text, arg1, arg2), getCommonErrorSource(source), -1, -1, UnicodeString());
}

UnicodeString textOfException(const std::exception& exception) {
    UnicodeString text(u"C++ exception: ");
    if (const char* const what = exception.what()) append(text, detail::checked(UnicodeString(what)));
    return text;
}

}  // namespace

LumError::LumError(std::uint16_t errorCode, const UnicodeString& text, const UnicodeString& raisedBy,
                   std::int32_t lineNumber, std::int32_t columnNumber, const UnicodeString& where)
    : code(errorCode),
      message(copyOf(text)),
      source(copyOf(raisedBy)),
      line(lineNumber),
      column(columnNumber),
      location(copyOf(where)) {}

LumError::LumError(const std::bad_alloc&, const UnicodeString& raisedBy)
    : LumError(static_cast<std::uint16_t>(LumErrorCodeLumLIB::OutOfMemory), UnicodeString(u"Out of memory."), raisedBy,
               -1, -1, UnicodeString()) {}

LumError::LumError(const std::exception& exception, const UnicodeString& raisedBy)
    : LumError(static_cast<std::uint16_t>(LumErrorCodeLumLIB::StdException), textOfException(exception), raisedBy, -1,
               -1, UnicodeString()) {}

UnicodeString LumError::getMessage() const {
    const UnicodeString position = getPositionDescription();
    if (position.isEmpty()) return message;
    // Appending to a bogus string leaves it bogus, so the text starts from an empty one.
    UnicodeString text;
    return append(append(append(text, message), u'\n'), position);
}

UnicodeString LumError::getPositionDescription() const {
    UnicodeString text;
    if (line != -1) {
        append(text, u"Line ");
        appendDecimal(text, line);
        append(text, u", ");
    }
    if (column != -1) {
        append(text, u"Col ");
        appendDecimal(text, column);
        append(text, u", ");
    }
    return append(text, location);
}

void LumError::setMessage(const UnicodeString& text) {
    const UnicodeString position = getPositionDescription();
    std::u16string_view kept = viewOf(text);
    if (!position.isEmpty() && kept.ends_with(viewOf(position))) {
        kept.remove_suffix(viewOf(position).size());
        if (kept.ends_with(u'\n')) {
            message = textOf(kept.substr(0, kept.size() - 1));
            return;
        }
    }
    assign(message, text);
}

void LumError::appendMessage(const UnicodeString& text) {
    if (text.isEmpty()) return;
    if (message.isEmpty()) {
        assign(message, text);
        return;
    }
    UnicodeString whole;  // the message stays as it is when memory runs out
    append(append(append(whole, message), u'\n'), text);
    message.swap(whole);
}

UnicodeString getCommonErrorSource(LumCommonErrorSource source) {
    UnicodeString text;
    const auto index = static_cast<std::size_t>(source);  // a negative value becomes too large
    if (index < std::size(sourceTexts) && !sourceTexts[index].empty()) {
        append(append(text, u"LumCommon::"), sourceTexts[index]);
    }
    return text;
}

void throwCommonError(LumErrorCodeLumLIB code, LumCommonErrorSource source, const UnicodeString& arg1,
                      const UnicodeString& arg2) {
    throwWithText(static_cast<std::uint16_t>(code), 0x08, source, u"SYSTEM ERROR: LumErrorCodeLumLIB", arg1, arg2);
}

void throwCommonError(LumErrorCodeIO code, LumCommonErrorSource source, const UnicodeString& arg) {
    throwWithText(static_cast<std::uint16_t>(code), 0x10, source, u"LumErrorCodeIO", arg, UnicodeString());
}

}  // namespace LumCommon
