#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/format/xls/XlsFormat.h>
#include <lumcommon/format/xls/detail/XlsCell.h>
#include <lumcommon/format/xls/detail/XlsRender.h>
#include <lumcommon/format/xls/detail/XlsTables.h>
#include <lumcommon/format/xls/detail/XlsWriter.h>

#include <cmath>

namespace LumCommon::detail {

namespace {

/// The sections that numbers may use, in their order.
struct NumberSections {
    explicit NumberSections(const FMT2& code) {
        for (int i = 0; i < code.count; ++i) {
            if (code.sections[static_cast<std::size_t>(i)].kind != FMT::TEXT) index[count++] = i;
        }
    }
    int index[4] = {};
    int count = 0;
};

bool holds(const FMT& section, double value) { return xlsConditionHolds(value, section.condition, section.operand); }

const FMT& at(const FMT2& code, int section) { return code.sections[static_cast<std::size_t>(section)]; }

int selectOf(const FMT2& code, const NumberSections& usable, double value) {
    if (usable.count == 0) return XlsFormat::NO_SECTION;
    const FMT& first = at(code, usable.index[0]);
    if (usable.count == 1) {
        return first.condition == 0 || holds(first, value) ? usable.index[0] : XlsFormat::CONDITION_FAILED;
    }
    const FMT& second = at(code, usable.index[1]);
    if (usable.count == 2) {
        if (first.condition != 0 ? holds(first, value) : value >= 0) return usable.index[0];
        const bool takesRest = second.condition == 0 && (first.condition != 0 || value < 0);
        if (takesRest || (second.condition != 0 && holds(second, value))) return usable.index[1];
        return XlsFormat::NO_SECTION;
    }
    if (first.condition != 0 ? holds(first, value) : value > 0) return usable.index[0];
    if (second.condition != 0 ? holds(second, value) : value < 0) return usable.index[1];
    if (first.condition != 0 || second.condition != 0 || value == 0) return usable.index[2];
    return XlsFormat::NO_SECTION;
}

/// The operators of conditions; 0 is no condition.
enum Operator : int { NONE, AT_LEAST, AT_MOST, OTHER_THAN, BELOW, ABOVE, EQUAL };

/// Whether only negative numbers meet the condition of the first or the second of several sections. Programs know the
/// usual pairs of conditions, which these are, not every pair.
bool isForNegatives(const FMT& section, const FMT& other, bool isFirst) {
    if (!isFirst && section.condition == NONE) {
        return (other.condition == AT_LEAST || other.condition == ABOVE) && other.operand <= 0;
    }
    if (section.operand > 0) return false;
    if (!isFirst) return section.condition == BELOW || (section.condition == AT_MOST && section.operand < 0);
    const int second = other.condition;
    if (section.condition == BELOW) return second == NONE || second == AT_LEAST || second == ABOVE || second == EQUAL;
    return section.condition == AT_MOST && (second == NONE || second == ABOVE);
}

/// Whether a section was chosen for the sign of its values, which it is then left to show.
bool impliesSign(const FMT2& code, const NumberSections& usable, int section, const XlsRules& rules) {
    if (usable.count < 2) return false;
    const bool isFirst = section == usable.index[0];
    if (!isFirst && section != usable.index[1]) return false;
    const FMT& first = at(code, usable.index[0]);
    const FMT& second = at(code, usable.index[1]);
    if (!isFirst && second.condition == NONE && (usable.count > 2 || first.condition == NONE)) return true;
    return rules.conditionsImplySigns && isForNegatives(isFirst ? first : second, isFirst ? second : first, isFirst);
}

int colorOf(const FMT& section) { return section.color == 0 ? XlsFormat::NO_COLOR : xlsPaletteColor(section.color); }

UnicodeString generalText(double value, const XlsNumberStyle& style) {
    const XlsDecimal decimal(value);
    const std::string general =
        (decimal.isNegative() ? "-" : "") + xlsGeneral(decimal.abs(), style.generalChars, *style.rules);
    return checked(UnicodeString(general.data(), static_cast<std::int32_t>(general.size()), US_INV));
}

/// A code with nothing but sections for texts shows a number as General does, and perhaps that text by its section.
int showAsText(const FMT2& code, double value, const XlsNumberStyle& style, UnicodeString& text, int& color) {
    const UnicodeString general = generalText(value, style);
    const int section = showXlsText(code, general, text, color);
    if (style.rules->textCodesShowGeneral) text = general;
    return section;
}

/// Shows what stands for a number that no section shows.
int refuse(int failure, double value, const XlsNumberStyle& style, UnicodeString& text) {
    if (failure == XlsFormat::CONDITION_FAILED && style.rules->failedConditionIsGeneral) {
        text = generalText(value, style);
    } else {
        append(text, style.rules->refused);
    }
    return failure;
}

}  // namespace

bool xlsConditionHolds(double value, int condition, double operand) {
    switch (condition) {
        case 1:
            return value >= operand;
        case 2:
            return value <= operand;
        case 3:
            return value != operand;
        case 4:
            return value < operand;
        case 5:
            return value > operand;
        case 6:
            return value == operand;
        default:
            return false;
    }
}

int selectXlsNumber(const FMT2& code, double value) { return selectOf(code, NumberSections(code), value); }

int selectXlsText(const FMT2& code) {
    for (int i = 0; i < code.count; ++i) {
        if (at(code, i).kind == FMT::TEXT) return i;
    }
    return XlsFormat::NO_SECTION;
}

int showXlsNumber(const FMT2& code, double value, const XlsNumberStyle& style, const XlsCodeNames* names,
                  UnicodeString& text, int& color, XlsFill& fill) {
    text.remove();
    color = XlsFormat::NO_COLOR;
    fill = XlsFill();
    if (!std::isfinite(value)) {
        append(text, u"#NUM!");
        return XlsFormat::NO_SECTION;
    }
    const NumberSections usable(code);
    if (usable.count == 0) return showAsText(code, value, style, text, color);
    const int section = selectOf(code, usable, value);
    if (section < 0) return refuse(section, value, style, text);
    if (impliesSign(code, usable, section, *style.rules)) value = std::fabs(value);
    const FMT& chosen = at(code, section);
    XlsWriter writer(text);
    if (chosen.kind == FMT::NUMBER) {
        renderXlsNumber(chosen, XlsDecimal(value), style, writer);
    } else {
        const XlsDateNames* const own = names ? names->sections[section].get() : nullptr;
        if (!renderXlsDate(chosen, XlsDecimal::exact(value), style, own, writer)) {
            return refuse(XlsFormat::NOT_A_DATE, value, style, text);
        }
    }
    writer.flush();
    color = colorOf(chosen);
    fill = {writer.fillAt(), writer.fillCharacter()};
    return section;
}

int showXlsText(const FMT2& code, const UnicodeString& value, UnicodeString& text, int& color) {
    int section = selectXlsText(code);
    // A fourth section is for texts, whatever it contains.
    if (section < 0 && code.count == 4) section = 3;
    color = section < 0 ? XlsFormat::NO_COLOR : colorOf(at(code, section));
    if (section < 0) {
        assign(text, value);
        return section;
    }
    text.remove();
    XlsWriter writer(text);
    renderXlsText(at(code, section), value, writer);
    writer.flush();
    return section;
}

}  // namespace LumCommon::detail
