#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>
#include <lumcommon/names/LumName.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace LumCommon {

class LumValue;

namespace detail {
class ColorReader;
}

/// A colour of a property: an sRGB value and, for print, its definition in a process or spot colour space.
///
/// Four colour spaces besides plain RGB (the null name): NAME_HASH_GRAYSCALE, NAME_HASH_CMYK, NAME_HASH_SEPARATION (a
/// spot ink; the registration colour is the separation "All") and NAME_icc_color. Every component is kept in 0 to 1:
/// arguments outside that range are clamped, and NaN becomes 0. A constructor with a fallback takes the RGB value from
/// it; the others compute the RGB value.
///
/// Failure: nothing here throws except when memory runs out. Threads: a plain value; separate objects are independent.
class LUM_API LumColor {
public:
    /// Values above RGB_LARGEST are not colours but markers: transparent and currentColor; any other one is invalid.
    static constexpr std::uint32_t RGB_LARGEST = 0x00FFFFFFu;
    /// The marker of "transparent".
    static constexpr std::uint32_t RGB_TRANSPARENT = 0xFFFFFFFFu;
    /// The marker of "currentColor".
    static constexpr std::uint32_t RGB_CURRENT_COLOR = 0xFE000000u;
    /// The marker of a colour that is none.
    static constexpr std::uint32_t RGB_INVALID = 0xFF000000u;

    /// The components of a CMYK colour, 0 to 1 each.
    struct Cmyk {
        float c;  ///< cyan
        float m;  ///< magenta
        float y;  ///< yellow
        float k;  ///< black
    };

    /// Black.
    LumColor() noexcept = default;
    /// The colour of an SVG 1.1 keyword, "currentColor" or "transparent", in any letter case; other names give the
    /// invalid colour.
    explicit LumColor(LumName name);
    /// The same of a name by its identifier.
    explicit LumColor(LumNameEnum name);
    /// Plain RGB from channels, each clamped to 0 to 255.
    LumColor(int r, int g, int b) noexcept;
    /// The colour that LumValue::getColorValue() gives.
    explicit LumColor(const LumValue& value);
    /// Grayscale; 1 is white.
    explicit LumColor(float gray) noexcept;
    /// Grayscale with the RGB value of `fallback`.
    LumColor(const LumColor& fallback, float gray) noexcept;
    /// CMYK.
    LumColor(float c, float m, float y, float k) noexcept;
    /// CMYK with the RGB value of `fallback`.
    LumColor(const LumColor& fallback, float c, float m, float y, float k) noexcept;
    /// A separation. An empty name means "All"; the alternative is all inks at full strength.
    LumColor(const UnicodeString& name, float tint);
    /// A separation with its alternative in CMYK.
    LumColor(const UnicodeString& name, float tint, float c, float m, float y, float k);
    /// A separation whose alternative is the fallback's RGB value converted to CMYK.
    LumColor(const LumColor& fallback, const UnicodeString& name, float tint);
    /// A separation with the RGB value of `fallback` and its alternative in CMYK.
    LumColor(const LumColor& fallback, const UnicodeString& name, float tint, float c, float m, float y, float k);
    /// A colour of the profile `name` in its own components.
    LumColor(const LumColor& fallback, const UnicodeString& name, float c0, float c1, float c2, float c3);

    /// Plain RGB from 00RRGGBB or a marker.
    static LumColor fromRGB(std::uint32_t rgb) noexcept;
    /// The RGB value of CMYK components, each clamped to 0 to 1; channels are rounded half up.
    static std::uint32_t cmyk2rgb(float c, float m, float y, float k) noexcept;
    /// The CMYK colour of an RGB value: black takes what the three inks share, and the rest is not scaled up again.
    static LumColor rgb2cmyk(std::uint32_t rgb) noexcept;

    /// The sRGB value 00RRGGBB, or a marker.
    std::uint32_t getRGB() const noexcept { return rgb_; }
    /// The name of the colour space; the null name for plain RGB.
    LumName getColorSpace() const noexcept { return colorSpace_; }
    /// The name of the separation or profile; empty for other colours.
    const UnicodeString& getName() const noexcept { return name_; }
    /// A component by its index. Grayscale: 0 is the gray level. CMYK and icc-color: 0 to 3. Separation: 0 is the tint,
    /// 1 to 4 the alternative. An index outside 0 to 4 gives 0.
    float getComponent(int index) const noexcept {
        return index >= 0 && index < 5 ? components_[static_cast<std::size_t>(index)] : 0;
    }
    /// Whether a separation was given an RGB value, a tint and an alternative, respectively.
    bool isRgbGiven() const noexcept { return isRgbGiven_; }
    /// Whether a separation was given a tint.
    bool isTintGiven() const noexcept { return isTintGiven_; }
    /// Whether a separation was given an alternative in CMYK.
    bool isCmykGiven() const noexcept { return isCmykGiven_; }

    /// The RGB value of a separation at its tint; for other colours getRGB().
    std::uint32_t getSeparationRGB() const noexcept;
    /// Plain RGB with each channel at two thirds; a marker stays as it is.
    LumColor getDark() const noexcept;
    /// Plain RGB half way to white; a marker stays as it is.
    LumColor getLight() const noexcept;
    /// Whether the RGB value is a marker other than the two known ones, or the colour is one of a profile named "#".
    bool isInvalid() const;
    /// Whether the name is "All", the registration colour's, in any letter case.
    bool isRegistrationName() const;
    /// The keyword for this colour's RGB value; the null name if no keyword has that value.
    LumName getColorName() const noexcept;

    /// Whether RGB, colour space, name and components are equal. The alternative of a separation counts only if it was
    /// given, and all spellings of the registration colour's name are the same.
    friend LUM_API bool operator==(const LumColor& a, const LumColor& b);

    /// The colour in the syntax of properties: "#RRGGBB" or "rgb-icc(...)".
    /// @param svgForm  true: a keyword where one exists, and "icc-color(...)" after the RGB colour.
    /// The invalid colour gives the empty string. A marker gives its keyword, even as the fallback of another colour.
    ///
    /// LumValue::parseColor() reads both forms back (the second with its flag) as an equal colour, with three
    /// exceptions: a colour whose RGB is a marker, a separation whose name contains a double quote, and a colour of a
    /// profile, which that syntax cannot express. Components are printed with six significant digits, which changes
    /// them by at most 0.0000005; the RGB of a separation without fallback is computed again from its tint.
    UnicodeString toString(bool svgForm = false) const;

private:
    friend class detail::ColorReader;  // sets the flags of what was given, resolves keywords

    /// The RGB value of a colour keyword in any letter case; RGB_INVALID for other texts.
    static std::uint32_t findKeyword(const UnicodeString& text);
    Cmyk getAlternative() const noexcept { return {components_[1], components_[2], components_[3], components_[4]}; }
    void setComponents(std::initializer_list<float> values) noexcept;
    void appendSeparation(UnicodeString& text) const;

    std::uint32_t rgb_ = 0;
    LumName colorSpace_;
    UnicodeString name_;
    std::array<float, 5> components_{};
    bool isRgbGiven_ = false;
    bool isTintGiven_ = false;
    bool isCmykGiven_ = false;
};

}  // namespace LumCommon
