#include <lumcommon/core/detail/AsciiText.h>
#include <lumcommon/core/detail/CaseMapping.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/DecimalText.h>
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/values/LumColor.h>
#include <lumcommon/values/LumValue.h>
#include <lumcommon/values/detail/ColorTable.h>
#include <lumcommon/values/detail/NumberText.h>

#include <unicode/uchar.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace LumCommon {

namespace {

/// Clamps to 0 to 1; NaN becomes 0.
constexpr float clampUnit(float value) noexcept { return value > 0 ? std::min(value, 1.0f) : 0.0f; }

/// The channel, 0 to 255, of a component from 0 to 1, rounded half up.
constexpr std::uint32_t makeChannel(double component) noexcept {
    return static_cast<std::uint32_t>(component * 255 + 0.5);
}

constexpr std::uint32_t packRGB(std::uint32_t r, std::uint32_t g, std::uint32_t b) noexcept {
    return r << 16 | g << 8 | b;
}

constexpr std::uint32_t makeGrayRGB(float gray) noexcept {
    const std::uint32_t channel = makeChannel(static_cast<double>(clampUnit(gray)));
    return packRGB(channel, channel, channel);
}

constexpr std::uint32_t getChannel(std::uint32_t rgb, int shift) noexcept { return (rgb >> shift) & 0xFFu; }

std::uint32_t convertCmyk(const LumColor::Cmyk& ink) noexcept {
    const auto channel = [&ink](float x) {
        const double k = static_cast<double>(ink.k);
        return makeChannel(1 - std::min(1.0, static_cast<double>(x) * (1 - k) + k));
    };
    return packRGB(channel(ink.c), channel(ink.m), channel(ink.y));
}

LumColor::Cmyk convertRGB(std::uint32_t rgb) noexcept {
    const float c = 1 - static_cast<float>(getChannel(rgb, 16)) / 255;
    const float m = 1 - static_cast<float>(getChannel(rgb, 8)) / 255;
    const float y = 1 - static_cast<float>(getChannel(rgb, 0)) / 255;
    const float k = std::min({c, m, y});
    return {clampUnit(c - k), clampUnit(m - k), clampUnit(y - k), clampUnit(k)};
}

/// Whether converting to lower case may change the text.
bool hasCase(std::u16string_view units) noexcept {
    return std::ranges::any_of(units, [](char16_t c) { return detail::isAsciiUpper(c) || c >= 0x80; });
}

const UnicodeString& getRegistrationName() {
    static const UnicodeString all(u"All");
    return all;
}

}  // namespace

void LumColor::setComponents(std::initializer_list<float> values) noexcept {
    std::transform(values.begin(), values.end(), components_.begin(), clampUnit);
}

LumColor LumColor::fromRGB(std::uint32_t rgb) noexcept {
    LumColor color;
    color.rgb_ = rgb;
    return color;
}

// The vocabulary holds the keywords in lower case, except "currentColor".
std::uint32_t LumColor::findKeyword(const UnicodeString& text) {
    constexpr std::u16string_view currentColor = u"currentcolor";
    constexpr std::size_t longestKeyword = 20;  // lightgoldenrodyellow; no lower case is shorter in units
    const std::u16string_view units = detail::viewOf(text);
    if (units == currentColor) return RGB_CURRENT_COLOR;
    if (units.size() > longestKeyword) return RGB_INVALID;
    const std::uint32_t rgb = detail::findColor(LumNameTable::getBuiltinNameEnum(text));
    if (rgb != RGB_INVALID || !hasCase(units)) return rgb;
    const UnicodeString lower = detail::toLowerCase(text);
    if (detail::viewOf(lower) == currentColor) return RGB_CURRENT_COLOR;
    return detail::findColor(LumNameTable::getBuiltinNameEnum(lower));
}

LumColor::LumColor(LumName name) : rgb_(detail::findColor(name.getEnum())) {
    if (rgb_ == RGB_INVALID) rgb_ = findKeyword(name.getString());
}

LumColor::LumColor(LumNameEnum name) : LumColor(LumName(name)) {}

LumColor::LumColor(int r, int g, int b) noexcept {
    const auto channel = [](int value) { return static_cast<std::uint32_t>(std::clamp(value, 0, 255)); };
    rgb_ = packRGB(channel(r), channel(g), channel(b));
}

LumColor::LumColor(const LumValue& value) : LumColor(value.getColorValue()) {}

LumColor::LumColor(float gray) noexcept : rgb_(makeGrayRGB(gray)), colorSpace_(NAME_HASH_GRAYSCALE) {
    setComponents({gray});
}

LumColor::LumColor(const LumColor& fallback, float gray) noexcept : LumColor(gray) { rgb_ = fallback.rgb_; }

LumColor::LumColor(float c, float m, float y, float k) noexcept : colorSpace_(NAME_HASH_CMYK) {
    setComponents({c, m, y, k});
    rgb_ = convertCmyk({components_[0], components_[1], components_[2], components_[3]});
}

LumColor::LumColor(const LumColor& fallback, float c, float m, float y, float k) noexcept : LumColor(c, m, y, k) {
    rgb_ = fallback.rgb_;
}

LumColor::LumColor(const UnicodeString& name, float tint) : LumColor(name, tint, 1, 1, 1, 1) { isCmykGiven_ = false; }

LumColor::LumColor(const UnicodeString& name, float tint, float c, float m, float y, float k)
    : rgb_(makeGrayRGB(1 - clampUnit(tint))),
      colorSpace_(NAME_HASH_SEPARATION),
      name_(name.isEmpty() ? getRegistrationName() : detail::copyOf(name)),
      isTintGiven_(true),
      isCmykGiven_(true) {
    setComponents({tint, c, m, y, k});
}

LumColor::LumColor(const LumColor& fallback, const UnicodeString& name, float tint) : LumColor(name, tint) {
    const Cmyk ink = convertRGB(fallback.rgb_);
    setComponents({tint, ink.c, ink.m, ink.y, ink.k});
    rgb_ = fallback.rgb_;
    isRgbGiven_ = true;
}

LumColor::LumColor(const LumColor& fallback, const UnicodeString& name, float tint, float c, float m, float y, float k)
    : LumColor(name, tint, c, m, y, k) {
    rgb_ = fallback.rgb_;
    isRgbGiven_ = true;
}

LumColor::LumColor(const LumColor& fallback, const UnicodeString& name, float c0, float c1, float c2, float c3)
    : rgb_(fallback.rgb_), colorSpace_(NAME_icc_color), name_(detail::copyOf(name)) {
    setComponents({c0, c1, c2, c3});
}

std::uint32_t LumColor::cmyk2rgb(float c, float m, float y, float k) noexcept {
    return convertCmyk({clampUnit(c), clampUnit(m), clampUnit(y), clampUnit(k)});
}

LumColor LumColor::rgb2cmyk(std::uint32_t rgb) noexcept {
    const Cmyk ink = convertRGB(rgb);
    return LumColor(ink.c, ink.m, ink.y, ink.k);
}

std::uint32_t LumColor::getSeparationRGB() const noexcept {
    const float tint = components_[0];
    if (colorSpace_ != NAME_HASH_SEPARATION || tint >= 1) return rgb_;
    const Cmyk ink = isRgbGiven_ && !isCmykGiven_ ? convertRGB(rgb_) : getAlternative();
    return convertCmyk({ink.c * tint, ink.m * tint, ink.y * tint, ink.k * tint});
}

LumColor LumColor::getDark() const noexcept {
    if (rgb_ > RGB_LARGEST) return fromRGB(rgb_);
    const auto darken = [this](int shift) { return getChannel(rgb_, shift) * 2 / 3; };
    return fromRGB(packRGB(darken(16), darken(8), darken(0)));
}

LumColor LumColor::getLight() const noexcept {
    if (rgb_ > RGB_LARGEST) return fromRGB(rgb_);
    const auto lighten = [this](int shift) { return 255 - (255 - getChannel(rgb_, shift)) / 2; };
    return fromRGB(packRGB(lighten(16), lighten(8), lighten(0)));
}

bool LumColor::isInvalid() const {
    if (rgb_ > RGB_LARGEST && rgb_ != RGB_TRANSPARENT && rgb_ != RGB_CURRENT_COLOR) return true;
    return colorSpace_ == NAME_icc_color && name_ == UnicodeString(u'#');
}

bool LumColor::isRegistrationName() const { return name_.caseCompare(getRegistrationName(), U_FOLD_CASE_DEFAULT) == 0; }

LumName LumColor::getColorName() const noexcept { return detail::findColorName(rgb_); }

bool operator==(const LumColor& a, const LumColor& b) {
    if (a.rgb_ != b.rgb_ || a.colorSpace_ != b.colorSpace_) return false;
    if (a.colorSpace_ != NAME_HASH_SEPARATION) return a.name_ == b.name_ && a.components_ == b.components_;
    if (a.name_ != b.name_ && !(a.isRegistrationName() && b.isRegistrationName())) return false;
    // An alternative that was not given follows from the rest.
    if (a.components_[0] != b.components_[0] || a.isCmykGiven_ != b.isCmykGiven_) return false;
    return !a.isCmykGiven_ || a.components_ == b.components_;
}

namespace {

constexpr char16_t argumentSeparator = u',';

void appendChannels(UnicodeString& text, std::uint32_t rgb) {
    for (int shift = 16; shift >= 0; shift -= 8) {
        detail::appendDecimal(text, getChannel(rgb, shift));
        detail::append(text, argumentSeparator);
    }
}

void appendArguments(UnicodeString& text, const float* begin, int count) {
    for (int i = 0; i < count; ++i) {
        detail::append(text, argumentSeparator);
        detail::appendReal(text, static_cast<double>(begin[i]));
    }
}

}  // namespace

void LumColor::appendSeparation(UnicodeString& text) const {
    if (isRegistrationName()) {
        detail::append(text, LumName(NAME_HASH_REGISTRATION).getString());
    } else {
        detail::append(text, colorSpace_.getString());
        detail::append(text, u",\"");
        detail::append(text, name_);
        detail::append(text, u'"');
    }
    if (!isTintGiven_) return;
    appendArguments(text, components_.data(), isCmykGiven_ ? 5 : 1);
}

UnicodeString LumColor::toString(bool svgForm) const {
    if (rgb_ == RGB_TRANSPARENT) return LumName(NAME_transparent).getString();
    if (rgb_ == RGB_CURRENT_COLOR) return LumName(NAME_currentColor).getString();
    if (colorSpace_.isNull() && isInvalid()) return UnicodeString();

    UnicodeString text;
    if (svgForm || colorSpace_.isNull()) {
        const LumName keyword = svgForm ? getColorName() : LumName();
        if (keyword.isNull()) {
            detail::appendHexColor(text, rgb_);
        } else {
            detail::append(text, keyword.getString());
        }
        if (colorSpace_.isNull()) return text;
        detail::append(text, u" icc-color(");
    } else {
        detail::append(text, u"rgb-icc(");
        if (colorSpace_ != NAME_HASH_SEPARATION || isRgbGiven_) appendChannels(text, rgb_);
    }
    if (colorSpace_ == NAME_HASH_SEPARATION) {
        appendSeparation(text);
    } else {
        detail::append(text, colorSpace_ == NAME_icc_color ? name_ : colorSpace_.getString());
        appendArguments(text, components_.data(), colorSpace_ == NAME_HASH_GRAYSCALE ? 1 : 4);
    }
    detail::append(text, u')');
    return text;
}

}  // namespace LumCommon
