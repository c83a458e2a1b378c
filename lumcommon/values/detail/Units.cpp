#include <lumcommon/core/detail/AsciiText.h>
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/values/detail/Units.h>

#include <cstddef>
#include <cstdint>

namespace LumCommon {

namespace {

constexpr int unitCount = 32;

/// The name that a unit is printed as; the null name for subtypes and for percent, whose sign is not a name.
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

constexpr std::size_t longestUnit = 4;

/// A text of at most longestUnit code units, packed into one number.
constexpr std::uint64_t pack(std::u16string_view text) noexcept {
    std::uint64_t packed = 0;
    for (const char16_t c : text) packed = packed << 16 | c;
    return packed;
}

struct UnitRow {
    std::uint64_t lowerCase;
    LumValueUnitType unit;
};
// clang-format off
constexpr UnitRow unitRows[] = {  // the common ones first
    {pack(u"pt"), UNIT_PT},
    {pack(u"em"), UNIT_EM},
    {pack(u"mm"), UNIT_MM},
    {pack(u"px"), UNIT_PX},
    {pack(u"in"), UNIT_IN},
    {pack(u"cm"), UNIT_CM},
    {pack(u"ex"), UNIT_EX},
    {pack(u"pc"), UNIT_PC},
    {pack(u"jpt"), UNIT_JPT},
    {pack(u"q"), UNIT_Q},
    {pack(u"deg"), UNIT_DEG},
    {pack(u"rad"), UNIT_RAD},
    {pack(u"grad"), UNIT_GRAD},
    {pack(u"ms"), UNIT_MS},
    {pack(u"s"), UNIT_S},
    {pack(u"hz"), UNIT_HZ},
    {pack(u"khz"), UNIT_KHZ},
    {pack(u"dpi"), UNIT_DPI},
    {pack(u"twip"), UNIT_TWIP},
};
// clang-format on

}  // namespace

const UnicodeString& LumValue::getUnitString(LumValueUnitType unit) {
    static const UnicodeString percent(u'%');
    if (unit == UNIT_PERCENT) return percent;
    return LumNameTable::getBuiltinNameString(unit < unitCount ? unitNames[unit] : NAME_NULL);
}

LumValueUnitType detail::findUnit(std::u16string_view text) noexcept {
    if (text.size() > longestUnit) return UNIT_NONE;
    // Only ASCII is folded: the Kelvin sign is a name character that full case folding would take for a "k".
    std::uint64_t folded = 0;
    for (const char16_t c : text) folded = folded << 16 | detail::toLowerAscii(c);
    for (const UnitRow& row : unitRows) {
        if (row.lowerCase == folded) return row.unit;
    }
    return UNIT_NONE;
}

}  // namespace LumCommon
