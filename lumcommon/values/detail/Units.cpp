#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/values/detail/Units.h>

#include <string_view>

namespace LumCommon {

namespace {

constexpr int unitCount = 32;

/// The name that a unit prints; the null name for subtypes and for the percent sign, which is no name.
constexpr LumNameEnum unitNames[unitCount] = {
    NAME_NULL,  // no unit
    NAME_NULL,  // number
    NAME_NULL,  // percent
    NAME_em,   NAME_ex,   NAME_px,   NAME_cm,   NAME_mm, NAME_in, NAME_pt, NAME_pc,  NAME_jpt,
    NAME_q,    NAME_deg,  NAME_rad,  NAME_grad, NAME_ms, NAME_s,  NAME_Hz, NAME_kHz,
    NAME_NULL,                        // delimiter character
    NAME_NULL,                        // quoted
    NAME_NULL,                        // URI
    NAME_NULL,                        // identifier
    NAME_NULL,                        // colour
    NAME_NULL, NAME_NULL, NAME_NULL,  // not assigned
    NAME_dpi,  NAME_twip,
    NAME_NULL,  // square points
    NAME_NULL,  // cubic points
};
static_assert(unitNames[UNIT_KHZ] == NAME_kHz && unitNames[UNIT_DPI] == NAME_dpi && unitNames[UNIT_TWIP] == NAME_twip);

struct UnitRow {
    std::u16string_view lowerCase;
    LumValueUnitType unit;
};
constexpr UnitRow unitRows[] = {
    {u"pt", UNIT_PT},   {u"em", UNIT_EM},   {u"mm", UNIT_MM},     {u"px", UNIT_PX},     {u"in", UNIT_IN},
    {u"cm", UNIT_CM},   {u"ex", UNIT_EX},   {u"pc", UNIT_PC},     {u"jpt", UNIT_JPT},   {u"q", UNIT_Q},
    {u"deg", UNIT_DEG}, {u"rad", UNIT_RAD}, {u"grad", UNIT_GRAD}, {u"ms", UNIT_MS},     {u"s", UNIT_S},
    {u"hz", UNIT_HZ},   {u"khz", UNIT_KHZ}, {u"dpi", UNIT_DPI},   {u"twip", UNIT_TWIP},
};
constexpr int longestUnit = 4;

// Folds ASCII only: the Kelvin sign is a name character that full case folding would take for a "k".
constexpr char16_t toLowerAscii(char16_t c) noexcept {
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c | 0x20) : c;
}

}  // namespace

const UnicodeString& LumValue::getUnitString(LumValueUnitType unit) {
    static const UnicodeString percent(u'%');
    if (unit == UNIT_PERCENT) return percent;
    return LumNameTable::getBuiltinNameString(unit < unitCount ? unitNames[unit] : NAME_NULL);
}

LumValueUnitType detail::findUnit(const UnicodeString& text) noexcept {
    if (text.length() > longestUnit) return UNIT_NONE;
    char16_t folded[longestUnit];
    const auto length = static_cast<std::size_t>(text.length());
    for (std::size_t i = 0; i < length; ++i) folded[i] = toLowerAscii(text.charAt(static_cast<int>(i)));
    for (const UnitRow& row : unitRows) {
        if (row.lowerCase == std::u16string_view(folded, length)) return row.unit;
    }
    return UNIT_NONE;
}

}  // namespace LumCommon
