#include <lumcommon/values/LumColor.h>
#include <lumcommon/values/LumValue.h>
#include <lumcommon/values/detail/Units.h>
#include <lumcommon/values/detail/ValueText.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <optional>

namespace LumCommon {

namespace {

// Integers wrap in 32 bits, which is defined only for unsigned ones.
std::int32_t wrapAdd(std::int32_t a, std::int32_t b) noexcept {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
std::int32_t wrapNegate(std::int32_t a) noexcept {
    return static_cast<std::int32_t>(0u - static_cast<std::uint32_t>(a));
}
std::int32_t wrapSubtract(std::int32_t a, std::int32_t b) noexcept { return wrapAdd(a, wrapNegate(b)); }

/// A number as a factor of products and quotients: in its normal unit, a percentage as a fraction.
struct Factor {
    float value;
    LumValueUnitType unit;
};

Factor makeFactor(LumValue number) noexcept {
    number.normalizeUnit();
    const float value = number.getRealValue(UNIT_NONE);
    if (number.getUnit() == UNIT_PERCENT) return {value / 100, UNIT_NUMBER};
    return {value, number.getUnit()};
}

/// The unit of a product, which may be UNIT_NONE: numbers without a unit are multiplied like others.
std::optional<LumValueUnitType> getProductUnit(LumValueUnitType left, LumValueUnitType right) noexcept {
    if (left == UNIT_NUMBER) return right;
    if (right == UNIT_NUMBER) return left;
    if (left == UNIT_PT && right == UNIT_PT) return UNIT_PT2;
    if ((left == UNIT_PT2 && right == UNIT_PT) || (left == UNIT_PT && right == UNIT_PT2)) return UNIT_PT3;
    return std::nullopt;
}

/// The unit of a quotient.
std::optional<LumValueUnitType> getQuotientUnit(LumValueUnitType left, LumValueUnitType right) noexcept {
    if (right == UNIT_NUMBER) return left;
    if (left == right) return UNIT_NUMBER;
    if (left == UNIT_PT3 && right == UNIT_PT) return UNIT_PT2;
    if (left == UNIT_PT2 && right == UNIT_PT) return UNIT_PT;
    if (left == UNIT_PT3 && right == UNIT_PT2) return UNIT_PT;
    return std::nullopt;
}

bool isStringWithName(const LumValue& a, const LumValue& b) noexcept {
    return (a.getKind() == KIND_STRING && b.getKind() == KIND_NAME) ||
           (a.getKind() == KIND_NAME && b.getKind() == KIND_STRING);
}

/// The text of a string or a name.
const UnicodeString& getText(const LumValue& value) {
    const UnicodeString* string = value.getStringPointer();
    return string ? *string : value.getNameValue().getString();
}

}  // namespace

void LumValue::normalizeUnit() noexcept {
    if (!isNumeric()) return;
    LumValueUnitType normal = UNIT_NONE;
    switch (getUnit()) {
        case UNIT_CM:
        case UNIT_MM:
        case UNIT_IN:
        case UNIT_PC:
        case UNIT_Q:
        case UNIT_TWIP:
            normal = UNIT_PT;
            break;
        case UNIT_RAD:
        case UNIT_GRAD:
            normal = UNIT_DEG;
            break;
        case UNIT_S:
            normal = UNIT_MS;
            break;
        case UNIT_KHZ:
            normal = UNIT_HZ;
            break;
        default:
            return;
    }
    payload_.real = getRealValue(normal);
    typeWord_ = (typeWord_ & ~7u) | KIND_REAL;
    setUnit(normal);
}

LumValue LumValue::operator-() const {
    if (!isNumeric()) return NULL_VALUE;
    LumValue result(*this);
    if (getKind() == KIND_INTEGER) {
        result.payload_.integer = wrapNegate(payload_.integer);
    } else {
        result.payload_.real = -payload_.real;
    }
    return result;
}

LumValue LumValue::abs() const {
    if (!isNumeric()) return NULL_VALUE;
    const bool isNegative = getKind() == KIND_INTEGER ? payload_.integer < 0 : payload_.real < 0;
    return isNegative ? -*this : *this;
}

namespace {

/// What the rounding operations have in common: which values are rounded, and the kind of the result.
template <class Round>
LumValue roundNumber(const LumValue& value, Round round) {
    if (!value.isNumeric() || value.getUnit() != UNIT_NUMBER) return LumValue::NULL_VALUE;
    if (value.getKind() == KIND_INTEGER) return value;
    const LumNameEnum name = value.getNameKey();
    LumValue result(static_cast<float>(round(static_cast<double>(value.getRealValue(UNIT_NUMBER)))), UNIT_NUMBER);
    result.setNameKey(name);
    return result;
}

}  // namespace

LumValue LumValue::floor() const {
    return roundNumber(*this, [](double v) { return std::floor(v); });
}

LumValue LumValue::ceiling() const {
    return roundNumber(*this, [](double v) { return std::ceil(v); });
}

LumValue LumValue::round() const {
    return roundNumber(*this, [](double v) { return std::floor(v + 0.5); });
}

template <class OnIntegers, class OnReals>
LumValue& LumValue::combine(const LumValue& right, OnIntegers onIntegers, OnReals onReals) {
    if (!isNumeric() || !right.isNumeric()) return *this = NULL_VALUE;
    LumValue other(right);
    if (getKind() != other.getKind() || getUnit() != other.getUnit()) {
        normalizeUnit();
        other.normalizeUnit();
        if (getUnit() != other.getUnit()) return *this = NULL_VALUE;
    }
    if (getKind() == KIND_INTEGER && other.getKind() == KIND_INTEGER) {
        payload_.integer = onIntegers(payload_.integer, other.payload_.integer);
        return *this;
    }
    payload_.real = onReals(getRealValue(UNIT_NONE), other.getRealValue(UNIT_NONE));
    typeWord_ = (typeWord_ & ~7u) | KIND_REAL;
    return *this;
}

LumValue& LumValue::operator+=(const LumValue& right) {
    return combine(right, wrapAdd, [](float a, float b) { return a + b; });
}

LumValue& LumValue::operator-=(const LumValue& right) {
    return combine(right, wrapSubtract, [](float a, float b) { return a - b; });
}

LumValue& LumValue::operator%=(const LumValue& right) {
    if (getKind() == KIND_INTEGER && right.getKind() == KIND_INTEGER && getUnit() == right.getUnit()) {
        const std::int32_t divisor = right.payload_.integer;
        if (divisor == 0) return *this = NULL_VALUE;
    }
    // Every integer is a multiple of -1, but the processor traps when the smallest one is divided by it.
    return combine(
        right, [](std::int32_t a, std::int32_t b) { return b == -1 ? 0 : a % b; },
        [](float a, float b) { return std::fmod(a, b); });
}

LumValue& LumValue::operator*=(const LumValue& right) {
    if (!isNumeric() || !right.isNumeric()) return *this = NULL_VALUE;
    const Factor a = makeFactor(*this);
    const Factor b = makeFactor(right);
    return setQuantity(a.value * b.value, getProductUnit(a.unit, b.unit));
}

LumValue& LumValue::operator/=(const LumValue& right) {
    if (!isNumeric() || !right.isNumeric()) return *this = NULL_VALUE;
    const Factor a = makeFactor(*this);
    const Factor b = makeFactor(right);
    return setQuantity(a.value / b.value, getQuotientUnit(a.unit, b.unit));
}

LumValue& LumValue::setQuantity(float value, std::optional<LumValueUnitType> unit) noexcept {
    if (!unit) return *this = NULL_VALUE;
    payload_.real = value;
    typeWord_ = (typeWord_ & ~7u) | KIND_REAL;
    setUnit(*unit);
    return *this;
}

bool operator==(const LumValue& a, const LumValue& b) {
    const LumValueKind kind = a.getKind();
    if (kind == b.getKind() && a.getUnit() == b.getUnit()) {
        switch (kind) {
            case KIND_INTEGER:
                return a.payload_.integer == b.payload_.integer;
            case KIND_REAL:
                return a.payload_.real == b.payload_.real;
            case KIND_NAME:
                return a.payload_.name == b.payload_.name;
            case KIND_STRING:
                return a.payload_.text->text() == b.payload_.text->text();
            case KIND_COMPOUND:
                return a.payload_.object == b.payload_.object ||
                       (a.getUnit() == UNIT_COLOR && a.getColorValue() == b.getColorValue());
            case KIND_OBJECT:
                return a.payload_.object == b.payload_.object;
            case KIND_NULL:
                break;
        }
        return true;
    }
    if (a.isNumeric() && b.isNumeric()) {
        LumValue left(a);
        LumValue right(b);
        left.normalizeUnit();
        right.normalizeUnit();
        return left.getUnit() == right.getUnit() && left.getRealValue(UNIT_NONE) == right.getRealValue(UNIT_NONE);
    }
    return isStringWithName(a, b) && getText(a) == getText(b);
}

bool operator<(const LumValue& a, const LumValue& b) {
    const LumValueKind kind = a.getKind();
    if (kind == b.getKind() && a.getUnit() == b.getUnit()) {
        switch (kind) {
            case KIND_INTEGER:
                return a.payload_.integer < b.payload_.integer;
            case KIND_REAL:
                return a.payload_.real < b.payload_.real;
            case KIND_NAME:
                return a.payload_.name < b.payload_.name;
            case KIND_STRING:
                return a.payload_.text->text() < b.payload_.text->text();
            case KIND_OBJECT:
            case KIND_COMPOUND:
                return std::less<>()(a.payload_.object, b.payload_.object);
            case KIND_NULL:
                break;
        }
        return false;
    }
    if (a.isNumeric() && b.isNumeric()) {
        LumValue left(a);
        LumValue right(b);
        left.normalizeUnit();
        right.normalizeUnit();
        if (left.getUnit() != right.getUnit()) return left.getUnit() < right.getUnit();
        return left.getRealValue(UNIT_NONE) < right.getRealValue(UNIT_NONE);
    }
    if (isStringWithName(a, b)) return getText(a) < getText(b);
    return kind != b.getKind() ? kind < b.getKind() : a.getUnit() < b.getUnit();
}

}  // namespace LumCommon
