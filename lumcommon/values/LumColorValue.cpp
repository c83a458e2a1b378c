// Colours as values: what a LumValue holds for a colour, how it is read back, and how property text becomes one.

#include <lumcommon/core/detail/CaseMapping.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/values/LumColor.h>
#include <lumcommon/values/LumNamedValueMap.h>
#include <lumcommon/values/LumTokenizer.h>
#include <lumcommon/values/LumValue.h>
#include <lumcommon/values/detail/TokenScan.h>

#include <array>
#include <cstddef>
#include <optional>

namespace LumCommon {

namespace {

constexpr std::array<LumNameEnum, 4> inkNames = {NAME_cyan, NAME_magenta, NAME_yellow, NAME_black};

void setInks(LumValue& value, const LumColor& color, int firstComponent) {
    for (LumNameEnum ink : inkNames) {
        value.setNamedItem(ink, LumValue(color.getComponent(firstComponent++), UNIT_NUMBER));
    }
}

bool hasInks(const LumValue& value) {
    for (LumNameEnum ink : inkNames) {
        if (!value.getNamedItem(ink).isNumeric()) return false;
    }
    return true;
}

float getInk(const LumValue& value, std::size_t index) {
    const LumValue ink = value.getNamedItem(inkNames[index]);
    return ink.isNumeric() ? ink.getRealValue(UNIT_NUMBER) : 0;
}

LumValue makeRGBValue(std::uint32_t rgb) {
    LumValue value(static_cast<int>(rgb));
    value.setUnit(UNIT_COLOR);
    return value;
}

/// Only what was given becomes an item: "value" is the tint, the inks are the alternative, "rgb" the fallback.
LumValue makeSeparationValue(const LumColor& color) {
    LumValue value;
    value.setNamedItem(NAME_name, LumValue(color.getName()));
    if (color.isTintGiven()) value.setNamedItem(NAME_value, LumValue(color.getComponent(0), UNIT_NUMBER));
    if (color.isCmykGiven()) setInks(value, color, 1);
    if (color.isRgbGiven()) value.setNamedItem(NAME_rgb, makeRGBValue(color.getRGB()));
    return value;
}

LumValue makeIccValue(const LumColor& color) {
    LumValue name(LumName(color.getName()));
    name.setUnit(UNIT_IDENT);
    LumValue value;
    value.setNamedItem(NAME_name, name);
    setInks(value, color, 0);
    return value;
}

}  // namespace

namespace detail {

/// Reads colours from values and from property text, and notes which parts of a separation were given.
class ColorReader {
public:
    static LumColor readCompound(const LumValue& value);

    ColorReader(const UnicodeString& text, bool isIccAllowed) : tokenizer_(text), isIccAllowed_(isIccAllowed) {}

    /// The value of a text of more than one token; nothing if it is not a colour.
    std::optional<LumValue> read();

private:
    static LumColor readSeparation(const LumValue& separation, const LumColor& fallback);

    bool isAtEnd() { return tokenizer_.nextToken() == LumTokenizer::TOKEN_END; }
    /// Reads the three channels of rgb(...), with optional commas between them. False if a token cannot be an argument.
    /// `areNumbers` tells whether all three are numbers; others count as 0.
    bool readChannels(LumColor& color, bool& areNumbers);
    std::optional<LumValue> readRgb();
    std::optional<LumValue> readRgbIcc();
    /// The icc-color(...) that follows `fallback`; the plain colour if the text ends there.
    std::optional<LumValue> readIccPart(const LumColor& fallback);
    /// Reads from after the opening parenthesis to the end of the text. `fallback` may be null.
    std::optional<LumValue> readIccList(const LumColor* fallback);
    bool readIccArguments();
    std::optional<LumColor> makeIccColor(LumNameEnum space, const LumColor* fallback) const;
    std::optional<LumColor> makeSeparation(const UnicodeString& name, int first, const LumColor* fallback) const;
    /// Whether the arguments from `first` onwards are all numbers.
    bool areNumbers(int first) const;
    float getNumber(int index) const { return arguments_[static_cast<std::size_t>(index)].getRealValue(UNIT_NUMBER); }

    static constexpr int mostArguments = 6;  // name, tint and four inks

    LumTokenizer tokenizer_;
    bool isIccAllowed_;
    std::array<LumValue, mostArguments> arguments_;
    int argumentCount_ = 0;
};

namespace {

bool isArgumentNumber(const LumValue& value) {
    return value.isNumeric() && (value.getUnit() == UNIT_NUMBER || value.getUnit() == UNIT_PERCENT);
}

bool isText(const LumValue& value) { return value.getKind() == KIND_NAME || value.getKind() == KIND_STRING; }

/// A channel as an integer, from a number or a percentage of 255; not yet clamped.
int getChannelValue(const LumValue& value) {
    if (value.getUnit() != UNIT_PERCENT) return value.getIntegerValue();
    return LumValue(value.getRealValue(UNIT_PERCENT) / 100 * 255, UNIT_NUMBER).getIntegerValue();
}

}  // namespace

LumColor ColorReader::readSeparation(const LumValue& separation, const LumColor& fallback) {
    const LumValue tintItem = separation.getNamedItem(NAME_value);
    const float tint = tintItem.isNumeric() ? tintItem.getRealValue(UNIT_NUMBER) : 1;
    const UnicodeString name = separation.getNamedItem(NAME_name).toString();
    const bool isRgbGiven = !separation.getNamedItem(NAME_rgb).isNull();
    LumColor color;
    if (hasInks(separation)) {
        color = LumColor(fallback, name, tint, getInk(separation, 0), getInk(separation, 1), getInk(separation, 2),
                         getInk(separation, 3));
    } else if (isRgbGiven) {
        color = LumColor(fallback, name, tint);
    } else {
        color = LumColor(name, tint);
    }
    color.rgb_ = fallback.getRGB();
    color.isRgbGiven_ = isRgbGiven;
    // An alternative is written only after a tint.
    color.isTintGiven_ = tintItem.isNumeric() || color.isCmykGiven_;
    return color;
}

LumColor ColorReader::readCompound(const LumValue& value) {
    const LumValue base = value.getNamedItem(NAME_NULL);
    // A compound inside a compound is not an RGB colour, and looking into it would recurse to any depth.
    const LumColor fallback =
        base.getKind() == KIND_COMPOUND ? LumColor::fromRGB(LumColor::RGB_INVALID) : base.getColorValue();
    if (const LumValue gray = value.getNamedItem(NAME_HASH_GRAYSCALE); gray.isNumeric()) {
        return LumColor(fallback, gray.getRealValue(UNIT_NUMBER));
    }
    if (const LumValue cmyk = value.getNamedItem(NAME_HASH_CMYK); cmyk.getKind() == KIND_COMPOUND) {
        return LumColor(fallback, getInk(cmyk, 0), getInk(cmyk, 1), getInk(cmyk, 2), getInk(cmyk, 3));
    }
    if (const LumValue ink = value.getNamedItem(NAME_HASH_SEPARATION); ink.getKind() == KIND_COMPOUND) {
        return readSeparation(ink, fallback);
    }
    if (const LumValue icc = value.getNamedItem(NAME_icc_color); icc.getKind() == KIND_COMPOUND) {
        return LumColor(fallback, icc.getNamedItem(NAME_name).toString(), getInk(icc, 0), getInk(icc, 1),
                        getInk(icc, 2), getInk(icc, 3));
    }
    return fallback;
}

std::optional<LumValue> ColorReader::read() {
    const int kind = tokenizer_.nextToken();
    if (kind == LumTokenizer::TOKEN_HASH) {
        return readIccPart(LumColor::fromRGB(static_cast<std::uint32_t>(tokenizer_.getNumber())));
    }
    if (kind != LumTokenizer::TOKEN_NAME) return std::nullopt;
    const UnicodeString name = tokenizer_.getText();
    if (tokenizer_.nextToken() == u'(') {
        if (name == UnicodeString(u"rgb")) return readRgb();
        if (name == UnicodeString(u"rgb-icc")) return readRgbIcc();
        return std::nullopt;
    }
    if (!isIccAllowed_) return std::nullopt;
    const LumColor color = LumColor::fromRGB(LumColor::findKeyword(name));
    if (color.isInvalid()) return std::nullopt;
    tokenizer_.pushBack();
    return readIccPart(color);
}

bool ColorReader::readChannels(LumColor& color, bool& areNumbers) {
    std::array<int, 3> channels{};
    areNumbers = true;
    for (std::size_t i = 0; i < channels.size(); ++i) {
        if (i > 0) tokenizer_.skipSeparator(u',');
        const LumValue value = tokenizer_.nextTokenValueSigned();
        if (isArgumentNumber(value)) {
            channels[i] = getChannelValue(value);
        } else if (isText(value)) {
            areNumbers = false;
        } else {
            return false;
        }
    }
    color = LumColor(channels[0], channels[1], channels[2]);
    return true;
}

std::optional<LumValue> ColorReader::readRgb() {
    LumColor color;
    bool areAllNumbers = false;
    if (!readChannels(color, areAllNumbers) || !areAllNumbers || tokenizer_.nextToken() != u')') return std::nullopt;
    return readIccPart(color);
}

std::optional<LumValue> ColorReader::readRgbIcc() {
    if (tokenizer_.scanSeparator(u'#')) return readIccList(nullptr);
    LumColor fallback;
    bool areAllNumbers = false;
    if (!readChannels(fallback, areAllNumbers)) return std::nullopt;
    return readIccList(areAllNumbers ? &fallback : nullptr);
}

std::optional<LumValue> ColorReader::readIccPart(const LumColor& fallback) {
    const int kind = tokenizer_.nextToken();
    if (kind == LumTokenizer::TOKEN_END) return LumValue(fallback);
    const bool isIccColor = kind == LumTokenizer::TOKEN_NAME && tokenizer_.getText() == UnicodeString(u"icc-color");
    if (!isIccAllowed_ || !isIccColor || tokenizer_.nextToken() != u'(') return std::nullopt;
    return readIccList(&fallback);
}

std::optional<LumValue> ColorReader::readIccList(const LumColor* fallback) {
    tokenizer_.skipSeparator(u',');
    // Skip "#" first: the tokenizer would read "#C" of "#CMYK" as a colour.
    const bool hasHash = tokenizer_.skipSeparator(u'#');
    if (tokenizer_.nextToken() != LumTokenizer::TOKEN_NAME || !hasHash) return std::nullopt;
    UnicodeString name(u'#');
    append(name, tokenizer_.getText());
    const LumNameEnum space = LumNameTable::getBuiltinNameEnum(detail::toUpperCase(name));
    if (!readIccArguments() || !isAtEnd()) return std::nullopt;
    std::optional<LumColor> color = makeIccColor(space, fallback);
    if (!color) return std::nullopt;
    return LumValue(*color);
}

bool ColorReader::readIccArguments() {
    for (;;) {
        tokenizer_.skipSeparator(u',');
        const LumValue value = tokenizer_.nextTokenValueExp();  // small components are printed with an exponent
        if (tokenizer_.getKind() == u')') return true;
        if (argumentCount_ == mostArguments || !(isArgumentNumber(value) || isText(value))) return false;
        arguments_[static_cast<std::size_t>(argumentCount_++)] = value;
    }
}

bool ColorReader::areNumbers(int first) const {
    for (int i = first; i < argumentCount_; ++i) {
        if (!isArgumentNumber(arguments_[static_cast<std::size_t>(i)])) return false;
    }
    return true;
}

std::optional<LumColor> ColorReader::makeIccColor(LumNameEnum space, const LumColor* fallback) const {
    switch (space) {
        case NAME_HASH_CMYK: {
            if (argumentCount_ != 4 || !areNumbers(0)) return std::nullopt;
            const LumColor color(getNumber(0), getNumber(1), getNumber(2), getNumber(3));
            return fallback ? LumColor(*fallback, getNumber(0), getNumber(1), getNumber(2), getNumber(3)) : color;
        }
        case NAME_HASH_GRAYSCALE:
            if (argumentCount_ != 1 || !areNumbers(0)) return std::nullopt;
            return fallback ? LumColor(*fallback, getNumber(0)) : LumColor(getNumber(0));
        case NAME_HASH_SEPARATION:
            if (argumentCount_ == 0) return std::nullopt;
            return makeSeparation(arguments_[0].toString(), 1, fallback);
        case NAME_HASH_REGISTRATION:
            return makeSeparation(UnicodeString(), 0, fallback);
        default:
            return std::nullopt;
    }
}

std::optional<LumColor> ColorReader::makeSeparation(const UnicodeString& name, int first,
                                                    const LumColor* fallback) const {
    const int count = argumentCount_ - first;  // a tint, or a tint and the alternative
    if ((count != 0 && count != 1 && count != 5) || !areNumbers(first)) return std::nullopt;
    const float tint = count > 0 ? getNumber(first) : 1;
    LumColor color;
    if (count == 5) {
        const std::array<float, 4> inks = {getNumber(first + 1), getNumber(first + 2), getNumber(first + 3),
                                           getNumber(first + 4)};
        color = fallback ? LumColor(*fallback, name, tint, inks[0], inks[1], inks[2], inks[3])
                         : LumColor(name, tint, inks[0], inks[1], inks[2], inks[3]);
    } else {
        color = fallback ? LumColor(*fallback, name, tint) : LumColor(name, tint);
    }
    color.isTintGiven_ = count > 0;
    return color;
}

}  // namespace detail

LumValue::LumValue(const LumColor& color) : LumValue(makeRGBValue(color.getRGB())) {
    const LumName space = color.getColorSpace();
    if (space.isNull()) return;
    LumValue definition;
    switch (space.getEnum()) {
        case NAME_HASH_GRAYSCALE:
            definition = LumValue(color.getComponent(0), UNIT_NUMBER);
            break;
        case NAME_HASH_CMYK:
            setInks(definition, color, 0);
            break;
        case NAME_HASH_SEPARATION:
            definition = makeSeparationValue(color);
            break;
        default:
            definition = makeIccValue(color);
            break;
    }
    setNamedItem(space, definition);  // the RGB value becomes the item under the null name
    setUnit(UNIT_COLOR);
}

LumColor LumValue::getColorValue() const {
    if (getUnit() == UNIT_COLOR) {
        if (getKind() == KIND_INTEGER) return LumColor::fromRGB(static_cast<std::uint32_t>(payload_.integer));
        if (getKind() == KIND_COMPOUND) return detail::ColorReader::readCompound(*this);
    }
    if (getKind() == KIND_NAME && getUnit() == UNIT_IDENT) return LumColor(getNameValue());
    if (getKind() != KIND_NAME && getKind() != KIND_STRING) return LumColor::fromRGB(LumColor::RGB_INVALID);
    const LumValue parsed = parseColor(toString(), false);
    if (parsed.getKind() == KIND_NAME) return LumColor(parsed.getNameValue());
    return parsed.getUnit() == UNIT_COLOR ? parsed.getColorValue() : LumColor::fromRGB(LumColor::RGB_INVALID);
}

LumValue LumValue::parseColor(const UnicodeString& text, bool iccAllowed) {
    int kind = 0;
    LumValue single = detail::parseSingleToken(text, true, kind);
    if (kind != LumTokenizer::TOKEN_NONE) return single;
    detail::ColorReader reader(text, iccAllowed);
    if (std::optional<LumValue> value = reader.read()) return *std::move(value);
    return LumValue(text);
}

}  // namespace LumCommon
