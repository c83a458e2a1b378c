#include <lumcommon/core/LumError.h>
#include <lumcommon/core/detail/CaseMapping.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/names/detail/NameIntern.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/values/LumLength.h>
#include <lumcommon/values/LumNamedValueMap.h>
#include <lumcommon/values/LumTokenizer.h>
#include <lumcommon/values/LumValue.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <iterator>
#include <vector>

namespace LumCommon {

namespace {

/// The interned name; the null name if the table is full.
LumName makeName(const UnicodeString& text) {
    try {
        return LumName(LumNameTable::getSharedNameEnum(text));
    } catch (const LumError&) {
        if (!detail::isNameTableFull()) throw;  // out of memory
        return LumName();
    }
}

/// A parameter "key=value".
struct Parameter {
    UnicodeString key;
    UnicodeString value;
};

/// False, with `parameter` unchanged, if the item has no "=" or nothing before it.
bool splitParameter(const UnicodeString& item, Parameter& parameter) {
    const int equals = item.indexOf(u'=');
    if (equals <= 0) return false;
    detail::checked(parameter.key.setTo(item, 0, equals));
    detail::checked(parameter.value.setTo(item, equals + 1));
    return true;
}

/// The name of a key that this file knows; the null name for most others. Nothing is interned, as all known keys are
/// built in. The user's locale must not matter: a Turkish one would make a dotless letter of the "I" in "FIT".
LumNameEnum findKey(const UnicodeString& key) { return LumNameTable::getBuiltinNameEnum(detail::toLowerCase(key)); }

/// The text as points; a plain number counts as points. NaN if it is neither.
float readPoints(const UnicodeString& text) {
    const LumValue value = LumValue::parse(text);
    if (value.getUnit() == UNIT_NUMBER) return value.getRealValue(UNIT_NUMBER);
    return value.getLengthValue().getPoints();
}

float readPointsOrZero(const UnicodeString& text) {
    const float points = readPoints(text);
    return std::isnan(points) ? 0.0f : points;
}

void setPoints(LumValue& target, LumNameEnum item, float points) {
    target.setNamedItem(item, LumValue(points, UNIT_PT));
}

void setNamedDestination(LumValue& target, const UnicodeString& text) {
    const LumValue value = LumValue::parse(text);
    if (value.getKind() == KIND_NAME) target.setNamedItem(NAME_nameddest, LumValue(value.getNameValue()));
    if (value.getKind() == KIND_STRING) target.setNamedItem(NAME_nameddest, makeName(*value.getStringPointer()));
}

void setPage(LumValue& target, const UnicodeString& text) {
    const int page = LumValue::parse(text).getIntegerValue();
    if (page >= 1) target.setNamedItem(NAME_page, page);
}

/// "fith,100": how the page is fitted, and where its visible part begins.
void setView(LumValue& target, const UnicodeString& text) {
    LumTokenizer parts(text);
    const LumNameEnum view = findKey(parts.nextSeparatedValue(u','));
    LumNameEnum coordinate = NAME_NULL;
    switch (view) {
        case NAME_fit:
        case NAME_fitb:
            break;
        case NAME_fith:
        case NAME_fitbh:
            coordinate = NAME_top;
            break;
        case NAME_fitv:
        case NAME_fitbv:
            coordinate = NAME_left;
            break;
        default:
            return;
    }
    target.setNamedItem(NAME_view, LumName(view));
    const UnicodeString second = parts.nextSeparatedValue(u',');
    if (coordinate != NAME_NULL && parts.getKind() != LumTokenizer::TOKEN_END) {
        setPoints(target, coordinate, readPointsOrZero(second));
    }
}

void setViewRectangle(LumValue& target, const UnicodeString& text) {
    LumTokenizer parts(text);
    for (const LumNameEnum item : {NAME_left, NAME_top, NAME_width, NAME_height}) {
        setPoints(target, item, readPointsOrZero(parts.nextSeparatedValue(u',')));
    }
    target.setNamedItem(NAME_view, LumName(NAME_viewrect));
}

/// "150,10,20": a zoom factor and the corner of the page that is shown.
void setZoomView(LumValue& target, const UnicodeString& text) {
    LumTokenizer parts(text);
    const float zoom = LumValue::parse(parts.nextSeparatedValue(u',')).getRealValue(UNIT_NUMBER);
    if (zoom > 0) target.setNamedItem(NAME_zoom, LumValue(zoom, UNIT_NUMBER));
    for (const LumNameEnum item : {NAME_left, NAME_top}) {
        // A percentage or a word is not a position on a page: leave it unset, as 0 would scroll to the edge.
        const float points = readPoints(parts.nextSeparatedValue(u','));
        if (!std::isnan(points)) setPoints(target, item, points);
    }
    if (zoom > 0) target.setNamedItem(NAME_view, LumName(NAME_xyz));
}

/// Without a destination to go to, a viewer needs a page and a view.
void addDefaults(LumValue& target) {
    if (!target.getNamedItem(NAME_nameddest).getNameValue().isNull()) return;
    if (target.getNamedItem(NAME_page).isNull()) target.setNamedItem(NAME_page, 1);
    if (target.getNamedItem(NAME_view).isNull()) target.setNamedItem(NAME_view, LumName(NAME_xyz));
}

/// What follows the keyword of a destination type; unused coordinates are null names.
struct DestinationType {
    LumNameEnum keyword;
    bool hasZoom;
    LumNameEnum coordinates[4];
};

constexpr DestinationType destinationTypes[] = {
    {NAME_fit, false, {}},
    {NAME_fitb, false, {}},
    {NAME_fith, false, {NAME_top}},
    {NAME_fitbh, false, {NAME_top}},
    {NAME_fitv, false, {NAME_left}},
    {NAME_fitbv, false, {NAME_left}},
    {NAME_fitr, false, {NAME_left, NAME_bottom, NAME_right, NAME_top}},
    {NAME_xyz, true, {}},
    {NAME_xyz_left, true, {NAME_left}},
    {NAME_xyz_top, true, {NAME_top}},
    {NAME_xyz_left_top, true, {NAME_left, NAME_top}},
};

LumValue makeDestinationType(LumNameEnum keyword) {
    LumValue value = LumName(keyword);
    value.setUnit(UNIT_IDENT);
    return value;
}

/// A positive number or percentage is a zoom in percent.
void setZoom(LumValue& target, const LumValue& value) {
    const float zoom = value.getRealValue(value.getUnit() == UNIT_PERCENT ? UNIT_PERCENT : UNIT_NUMBER);
    if (zoom > 0) target.setNamedItem(NAME_zoom, LumValue(zoom, UNIT_NUMBER));
}

/// Every absolute length is a position on a page, including Japanese points.
bool isPlace(const LumValue& value) {
    const LumValueUnitType unit = value.getUnit();
    return value.isNumeric() && ((unit >= UNIT_CM && unit <= UNIT_Q) || unit == UNIT_TWIP);
}

}  // namespace

LumValue LumValue::parseView(const UnicodeString& text, LumValue value, [[maybe_unused]] int flag) {
    LumTokenizer items(text);
    Parameter parameter;
    for (;;) {
        const UnicodeString item = items.nextSeparatedValue(u'&');
        if (items.getKind() == LumTokenizer::TOKEN_END) return value;
        if (!splitParameter(item, parameter)) continue;
        switch (findKey(parameter.key)) {
            case NAME_nameddest:
                setNamedDestination(value, parameter.value);
                break;
            case NAME_page:
                setPage(value, parameter.value);
                break;
            case NAME_view:
                setView(value, parameter.value);
                break;
            case NAME_viewrect:
                setViewRectangle(value, parameter.value);
                break;
            case NAME_zoom:
                setZoomView(value, parameter.value);
                break;
            default:
                break;
        }
    }
}

LumValue LumValue::parsePDFOpenParameters(const UnicodeString& link) {
    const int hash = link.indexOf(u'#');
    LumValue result;
    if (hash < 0) {
        result.setNamedItem(NAME_uri, link);
    } else {
        result.setNamedItem(NAME_uri, detail::checked(UnicodeString(link, 0, hash)));
        result = parseView(detail::checked(UnicodeString(link, hash + 1)), result, 0);
    }
    addDefaults(result);
    return result;
}

LumValue LumValue::parseDestinationType(const UnicodeString& text) {
    LumTokenizer tokens(text);
    const UnicodeString item = tokens.nextSeparatedValue(u' ');
    const LumValue first = item.isEmpty() ? LumValue() : parse(detail::toLowerCase(item));
    const auto* const type =
        std::ranges::find(destinationTypes, first.getNameValue().getEnum(), &DestinationType::keyword);
    if (type == std::end(destinationTypes)) {
        LumValue result = makeDestinationType(NAME_xyz_top);
        setZoom(result, first);
        return result;
    }
    LumValue result = makeDestinationType(type->keyword);
    if (type->hasZoom) setZoom(result, tokens.nextTokenValue());
    for (const LumNameEnum coordinate : type->coordinates) {
        if (coordinate == NAME_NULL) break;
        const LumValue value = tokens.nextTokenValue();
        if (isPlace(value)) result.setNamedItem(coordinate, value);
    }
    return result;
}

LumValue LumValue::parseXlinkHref(const UnicodeString& text) {
    LumValue result;
    if (text.isEmpty()) return result;
    const int hash = text.indexOf(u'#');
    if (hash < 0) result.setNamedItem(NAME_uri, text);
    if (hash > 0) result.setNamedItem(NAME_uri, detail::checked(UnicodeString(text, 0, hash)));
    if (hash >= 0) {
        const UnicodeString fragment = detail::checked(UnicodeString(text, hash + 1));
        LumTokenizer tokens(fragment);
        const LumValue first = tokens.nextTokenValue();
        if (tokens.getKind() == LumTokenizer::TOKEN_NAME && tokens.scanSeparator(u'=')) {
            result = parseView(fragment, result, 1);
        } else {
            result.setNamedItem(NAME_nameddest, first.getNameValue());
        }
    }
    addDefaults(result);
    return result;
}

LumValue LumValue::parseInternalDestination(const UnicodeString& text, int flag) {
    LumTokenizer tokens(text);
    LumValue result = tokens.nextTokenValue();
    switch (tokens.getKind()) {
        case LumTokenizer::TOKEN_END:
            return result;
        case LumTokenizer::TOKEN_NAME:
            result.setNamedItem(NAME_nameddest, LumValue(result.getNameValue()));
            break;
        case LumTokenizer::TOKEN_NUMBER:
            result.setNamedItem(NAME_page, result.getIntegerValue());
            break;
        default: {
            const UnicodeString trimmed = detail::checked(detail::copyOf(text).trim());
            if (trimmed.startsWith(u'#'))
                return parseView(detail::checked(UnicodeString(trimmed, 1)), LumValue(), flag);
            result = LumValue();
            result.setNamedItem(NAME_nameddest, makeName(trimmed));
            return result;
        }
    }
    if (tokens.skipSeparator(u'#'))
        result = parseView(detail::checked(UnicodeString(text, tokens.getPosition())), result, 1);
    return result;
}

LumValue LumValue::parseExcelOpenParameters(const UnicodeString& link) {
    const int hash = link.indexOf(u'#');
    if (hash < 0) return NULL_VALUE;
    LumTokenizer items(detail::checked(UnicodeString(link, hash + 1)));
    LumValue result;
    Parameter parameter;
    for (;;) {
        const UnicodeString item = items.nextSeparatedValue(u'&');
        if (item.isEmpty()) return result;
        if (!splitParameter(item, parameter)) continue;
        const LumNameEnum key = findKey(parameter.key);
        if (key != NAME_sheet && key != NAME_chart) continue;
        const int number = parse(parameter.value).getIntegerValue();
        if (number >= 0) result.setNamedItem(key, number);
    }
}

LumValue LumValue::parseUriFragmentParameters(const UnicodeString& text, bool lowerKeys) {
    const int hash = text.indexOf(u'#');
    if (hash < 0) return text;
    LumValue result;
    if (hash > 0) result = detail::checked(UnicodeString(text, 0, hash));
    LumTokenizer items(detail::checked(UnicodeString(text, hash + 1)));
    std::vector<LumNamedValue> entries;
    Parameter parameter;
    for (;;) {
        const UnicodeString item = items.nextSeparatedValue(u'&');
        if (item.isEmpty()) break;
        if (!splitParameter(item, parameter)) continue;
        const UnicodeString key = detail::checked(LumUri::unescape(parameter.key).trim());
        const LumName name = makeName(lowerKeys ? detail::toLowerCase(key) : key);
        // Under the null name the value would take the place of the text before the "#".
        if (!name.isNull()) entries.emplace_back(name, detail::checked(LumUri::unescape(parameter.value).trim()));
    }
    // Sorted by name, each entry is appended at the end of the map; in the order of a hostile text, each could move all
    // the others. The sort is stable, so the last of equal names still wins.
    std::ranges::stable_sort(entries, LessLumValueName());
    for (const LumNamedValue& entry : entries) result.setNamedItem(entry);
    return result;
}

}  // namespace LumCommon
