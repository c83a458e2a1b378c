#include <lumcommon/core/detail/CaseMapping.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/xml/detail/InputEncoding.h>
#include <lumcommon/xml/detail/ParserPolicy.h>

namespace LumCommon::detail {

namespace {

bool isIn(XmlEncoding encoding, XmlEncoding a, XmlEncoding b) { return encoding == a || encoding == b; }

/// What a built-in encoding name selects when the input is in `current`; nothing changes for names of UTF-16 and
/// UTF-32 without byte order once the order is known. False for any other name.
bool findEncoding(LumNameEnum name, XmlEncoding& current) {
    switch (name) {
        case NAME_ANSI_X3_4:
        case NAME_ANSI_X3_4_1968:
        case NAME_ANSI_X3_4_1986:
        case NAME_ASCII:
        case NAME_ISO646_US:
        case NAME_ISO_646_IRV:
        case NAME_ISO_646_IRV_1991:
        case NAME_US_ASCII:
            current = XmlEncoding::Ascii;
            return true;
        case NAME_ISO_10646_UCS_2:
        case NAME_UCS_2:
        case NAME_UNICODE:
        case NAME_UTF_16:
            if (!isIn(current, XmlEncoding::Utf16LE, XmlEncoding::Utf16BE)) current = XmlEncoding::Utf16Generic;
            return true;
        case NAME_ISO_10646_UCS_4:
        case NAME_UCS_4:
        case NAME_UTF_32:
            if (!isIn(current, XmlEncoding::Utf32LE, XmlEncoding::Utf32BE)) current = XmlEncoding::Utf32Generic;
            return true;
        case NAME_ISO_8859_1:
        case NAME_ISO_8859_1_2:
        case NAME_ISO_8859_1_1987:
        case NAME_LATIN1:
            current = XmlEncoding::Latin1;
            return true;
        case NAME_UTF_16BE:
            current = XmlEncoding::Utf16BE;
            return true;
        case NAME_UTF_16LE:
            current = XmlEncoding::Utf16LE;
            return true;
        case NAME_UTF_32BE:
            current = XmlEncoding::Utf32BE;
            return true;
        case NAME_UTF_32LE:
            current = XmlEncoding::Utf32LE;
            return true;
        case NAME_UTF_8:
            current = XmlEncoding::Utf8;
            return true;
        default:
            return false;
    }
}

}  // namespace

bool selectEncoding(XmlInput& input, const UnicodeString& name, const ParserPolicy& policy) {
    const UnicodeString knownName = input.encodingName;
    assign(input.encodingName, name);
    if (name.isEmpty() || input.isConverted()) return true;
    const UnicodeString key = toUpperCase(checked(copyOf(name).trim()));
    XmlEncoding encoding = input.getEncoding();
    if (findEncoding(LumNameTable::getBuiltinNameEnum(key), encoding)) {
        input.setEncoding(encoding);
        return true;
    }
    if (policy.takesBuiltinEncodingsOnly()) return false;
    // Bytes that have shown a form of Unicode, by a mark or by their order, are in no other charset; converting from
    // one would only spoil them.
    const bool isFormKnown = input.hasBom || (encoding >= XmlEncoding::Utf16LE && encoding <= XmlEncoding::Utf32BE &&
                                              encoding != XmlEncoding::Utf32Generic);
    if (isFormKnown && XmlInput::isCharset(key)) {
        input.encodingName = knownName;
        return true;
    }
    return input.convertFrom(key) || policy.forgivesUnknownEncodings();
}

}  // namespace LumCommon::detail
