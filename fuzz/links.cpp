// Any text may stand where a link is expected.
// Laws: reading twice gives the same items; items have the kind and the range that is promised; without a destination
// there are a page and a view; the text before a fragment is unchanged.

#include <lumcommon/lumcommon.h>

#include "FuzzSupport.h"

using namespace LumCommon;
using LumFuzz::Choices;
using LumFuzz::Digest;

namespace {

void add(const LumValue& value, Digest& digest) {
    digest.add(value.getTypeWord() & 0xFFu);
    digest.add(value.toString());
}

/// What is promised of these items in every result except a destination type and a fragment.
void checkViewerItems(const LumValue& value, int firstPage) {
    const LumValue page = value.getNamedItem(NAME_page);
    FUZZ_LAW(page.isNull() || (page.getKind() == KIND_INTEGER && page.getIntegerValue() >= firstPage));
    const LumValue zoom = value.getNamedItem(NAME_zoom);
    FUZZ_LAW(zoom.isNull() || zoom.getRealValue(UNIT_NUMBER) > 0);
    for (const LumNameEnum item : {NAME_left, NAME_top, NAME_width, NAME_height}) {
        const LumValue length = value.getNamedItem(item);
        FUZZ_LAW(length.isNull() || (length.getUnit() == UNIT_PT && length.getLengthValue().isValid()));
    }
    for (const LumNameEnum item : {NAME_nameddest, NAME_view}) {
        const LumValue name = value.getNamedItem(item);
        FUZZ_LAW(name.isNull() || name.getKind() == KIND_NAME);
    }
}

void checkDefaults(const LumValue& value) {
    if (!value.getNamedItem(NAME_nameddest).getNameValue().isNull()) return;
    FUZZ_LAW(!value.getNamedItem(NAME_page).isNull() && !value.getNamedItem(NAME_view).isNull());
}

void readLinks(const UnicodeString& text, int flag, Digest& digest) {
    const LumValue pdf = LumValue::parsePDFOpenParameters(text);
    checkViewerItems(pdf, 1);
    checkDefaults(pdf);
    FUZZ_LAW(pdf.getNamedItem(NAME_uri).toString().length() <= text.length());
    add(pdf, digest);

    const LumValue xlink = LumValue::parseXlinkHref(text);
    checkViewerItems(xlink, 1);
    if (!xlink.isNull()) checkDefaults(xlink);
    add(xlink, digest);

    const LumValue internal = LumValue::parseInternalDestination(text, flag);
    checkViewerItems(internal, 0);
    add(internal, digest);

    const LumValue view = LumValue::parseView(text, LumValue(), flag);
    checkViewerItems(view, 1);
    add(view, digest);

    const LumValue destination = LumValue::parseDestinationType(text);
    const LumValue type = destination.getNamedItem(NAME_NULL);
    FUZZ_LAW(type.getKind() == KIND_NAME && type.getUnit() == UNIT_IDENT);
    add(destination, digest);

    const LumValue excel = LumValue::parseExcelOpenParameters(text);
    FUZZ_LAW(excel.isNull() || excel.getNamedItem(NAME_sheet).getIntegerValue() >= 0);
    FUZZ_LAW(excel.isNull() || excel.getNamedItem(NAME_chart).getIntegerValue() >= 0);
    add(excel, digest);

    for (const bool lowerKeys : {false, true}) {
        const LumValue fragment = LumValue::parseUriFragmentParameters(text, lowerKeys);
        FUZZ_LAW(fragment.getNamedItem(NAME_NULL).toString() == text.tempSubString(0, text.indexOf(u'#') & INT32_MAX));
        add(fragment, digest);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices input(data, size);
    const unsigned how = input.byte();
    const UnicodeString text = LumFuzz::textOf(input.data(), input.size(), (how & 1u) != 0);
    Digest first, second;
    for (Digest* digest : {&first, &second}) readLinks(text, static_cast<int>(how >> 1), *digest);
    FUZZ_LAW(first == second);
    return 0;
}
