// Any two values may meet in an operation. The first bytes make the values; each further triple changes a compound.
// Laws: sums, products and their kin are those of a plain table of units; nothing is equal to what it is below; equal
// values are so in both directions; rounding is that of the C library; a compound is a map that its copies share; a
// matrix times its inverse is the identity, a printed colour reads back.

#include <lumcommon/lumcommon.h>

#include <bit>
#include <cmath>
#include <map>

#include "FuzzSupport.h"

using namespace LumCommon;
using LumFuzz::Choices;

namespace {

/// A number as the rules of arithmetic see it.
struct Number {
    bool isReal = false;
    std::int32_t integer = 0;
    float real = 0;
    unsigned unit = UNIT_NUMBER;

    float value() const { return isReal ? real : static_cast<float>(integer); }
};
using Maybe = std::optional<Number>;

Number normal(Number n) {
    struct Row {
        unsigned from, to;
        double factor;  // rounded once, after multiplying
    };
    static constexpr Row rows[] = {
        {UNIT_CM, UNIT_PT, 28.346457}, {UNIT_MM, UNIT_PT, 2.8346457}, {UNIT_IN, UNIT_PT, 72},
        {UNIT_PC, UNIT_PT, 12},        {UNIT_Q, UNIT_PT, 0.70866144}, {UNIT_TWIP, UNIT_PT, 0.05},
        {UNIT_S, UNIT_MS, 1000},       {UNIT_KHZ, UNIT_HZ, 1000},     {UNIT_RAD, UNIT_DEG, 57.295776},
        {UNIT_GRAD, UNIT_DEG, 0.9},
    };
    for (const Row& row : rows) {
        if (n.unit == row.from)
            return {true, 0, static_cast<float>(static_cast<double>(n.value()) * row.factor), row.to};
    }
    return n;
}

Maybe sum(Number a, Number b, char operation) {
    if (a.isReal != b.isReal || a.unit != b.unit) {
        a = normal(a);
        b = normal(b);
        if (a.unit != b.unit) return {};
    }
    if (a.isReal || b.isReal) {
        const float x = a.value(), y = b.value();
        return Number{true, 0, operation == '+' ? x + y : operation == '-' ? x - y : std::fmod(x, y), a.unit};
    }
    const std::int64_t x = a.integer, y = b.integer;
    if (operation == '%' && y == 0) return {};
    const std::int64_t result = operation == '+' ? x + y : operation == '-' ? x - y : x % y;
    return Number{false, static_cast<std::int32_t>(static_cast<std::uint32_t>(result)), 0, a.unit};
}

Maybe product(Number a, Number b, char operation) {
    a = normal(a);
    b = normal(b);
    for (Number* n : {&a, &b}) {
        const bool isPercent = n->unit == UNIT_PERCENT;
        *n = {true, 0, isPercent ? n->value() / 100 : n->value(), isPercent ? unsigned{UNIT_NUMBER} : n->unit};
    }
    const auto are = [&](unsigned left, unsigned right) { return a.unit == left && b.unit == right; };
    unsigned unit = 0;
    if (operation == '*') {
        if (b.unit == UNIT_NUMBER)
            unit = a.unit;
        else if (a.unit == UNIT_NUMBER)
            unit = b.unit;
        else if (are(UNIT_PT, UNIT_PT))
            unit = UNIT_PT2;
        else if (are(UNIT_PT2, UNIT_PT) || are(UNIT_PT, UNIT_PT2))
            unit = UNIT_PT3;
        else
            return {};
        return Number{true, 0, a.real * b.real, unit};
    }
    if (b.unit == UNIT_NUMBER)
        unit = a.unit;
    else if (a.unit == b.unit)
        unit = UNIT_NUMBER;
    else if (are(UNIT_PT3, UNIT_PT))
        unit = UNIT_PT2;
    else if (are(UNIT_PT2, UNIT_PT) || are(UNIT_PT3, UNIT_PT2))
        unit = UNIT_PT;
    else
        return {};
    return Number{true, 0,
                  std::bit_cast<std::uint32_t>(b.real) << 1 == 0
                      ? a.real * (std::signbit(b.real) ? -INFINITY : INFINITY)
                      : a.real / b.real,
                  unit};
}

bool isSameFloat(float a, float b) {
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) == std::isnan(b);
    return a == b;
}

void expect(const LumValue& value, const Maybe& expected) {
    FUZZ_LAW(value.isNull() == !expected);
    if (!expected) return;
    FUZZ_LAW(value.getKind() == (expected->isReal ? KIND_REAL : KIND_INTEGER));
    FUZZ_LAW(unsigned{value.getUnit()} == expected->unit);
    FUZZ_LAW(expected->isReal ? isSameFloat(value.getRealValue(UNIT_NONE), expected->real)
                              : value.getIntegerValue() == expected->integer);
}

void checkArithmetic(const LumValue& a, const Number& x, const LumValue& b, const Number& y) {
    expect(a + b, sum(x, y, '+'));
    expect(a - b, sum(x, y, '-'));
    expect(a % b, sum(x, y, '%'));
    expect(a * b, product(x, y, '*'));
    expect(a / b, product(x, y, '/'));
    expect(-a,
           Number{x.isReal, static_cast<std::int32_t>(0u - static_cast<std::uint32_t>(x.integer)), -x.real, x.unit});
    const bool isPlain = x.unit == UNIT_NUMBER;
    FUZZ_LAW(a.floor().isNull() != isPlain && a.round().isNull() != isPlain && a.ceiling().isNull() != isPlain);
    if (isPlain && x.isReal) {
        FUZZ_LAW(isSameFloat(a.floor().getRealValue(UNIT_NUMBER), std::floor(x.real)));
        FUZZ_LAW(isSameFloat(a.ceiling().getRealValue(UNIT_NUMBER), std::ceil(x.real)));
    }
    if (x.isReal && std::fabs(x.real) < 1e6f) {
        FUZZ_LAW(a.getIntegerValue() == static_cast<int>(std::floor(static_cast<double>(x.real) + 0.5)));
    }
    const LumLength length = a.getLengthValue();
    FUZZ_LAW(isSameFloat(length.getPoints(), a.getRealValue(UNIT_PT)));
}

void checkOrder(const LumValue& a, const LumValue& b) {
    FUZZ_LAW((a == b) == (b == a));
    FUZZ_LAW(!(a < a) && !(b < b) && !(a < b && b < a));
    FUZZ_LAW(!(a == b) || !(a < b) || (a.getKind() == KIND_COMPOUND && a.getUnit() == UNIT_COLOR));
    FUZZ_LAW((a > b) == (b < a) && (a <= b) == !(b < a));
    const LumValue copy(a);
    const bool isNan = a.getKind() == KIND_REAL && std::isnan(a.getRealValue(UNIT_NONE));
    FUZZ_LAW((copy == a) != isNan);
    LumValue named(a);
    named.setNameKey(NAME_page);
    FUZZ_LAW((named == a) != isNan && named.getNameKey() == NAME_page && named.toString() == a.toString());
}

Number numberOf(Choices& input) {
    Number n;
    const unsigned what = input.byte();
    const auto bits = static_cast<std::uint32_t>(input.number(4));
    n.unit = what & 31u;
    n.isReal = (what & 32u) != 0;
    n.integer = static_cast<std::int32_t>(bits) >> ((what >> 6) * 8);
    n.real =
        (what & 64u) != 0 ? static_cast<float>(static_cast<std::int32_t>(bits) >> 16) / 4 : std::bit_cast<float>(bits);
    return n;
}

LumValue valueOf(const Number& n) {
    LumValue value = n.isReal ? LumValue(n.real, LumValueUnitType(n.unit)) : LumValue(n.integer);
    value.setUnit(LumValueUnitType(n.unit));
    return value;
}

void checkCompound(Choices& input, const LumValue& first) {
    std::map<unsigned, UnicodeString> model;
    LumValue value = first;
    if (value.getKind() != KIND_COMPOUND && !value.isNull()) model[0] = value.toString();
    value.makeCompound();
    const LumValue copy = value;
    while (input.size() > 2) {
        const unsigned what = input.byte(), key = input.byte() % 40;
        const LumName name(static_cast<LumNameEnum>(key));
        const LumValue item = what % 2 != 0 ? LumValue(static_cast<int>(input.byte()))
                                            : LumValue(UnicodeString(what, u'x', static_cast<int>(what)));
        if (what % 5 == 0) {
            value.removeNamedItem(name);
            model.erase(key);
        } else {
            value.setNamedItem(name, item);
            model[key] = item.toString();
        }
    }
    for (unsigned key = 0; key < 40; ++key) {
        const LumValue item = copy.getNamedItem(LumName(static_cast<LumNameEnum>(key)));
        FUZZ_LAW(item.isNull() ? !model.contains(key) : model.contains(key) && item.toString() == model[key]);
    }
    FUZZ_LAW(copy == value && copy.toString() == value.toString());
}

void checkMatrixAndColor(const Number& x, const Number& y) {
    const auto small = [](float f) { return std::isfinite(f) ? std::fmod(f, 100.0f) : 0.0f; };
    const float p = small(x.real), q = small(y.real);
    const TransMatrix matrix(p, q, -q, p + 1, 3, static_cast<float>(x.integer % 100));
    TransMatrix inverse = matrix;
    const double determinant = static_cast<double>(p) * (static_cast<double>(p) + 1) + static_cast<double>(q) * q;
    if (inverse.reverse() && std::fabs(determinant) > 0.1) {
        const TransMatrix::Point there = matrix * TransMatrix::Point{1, 2}, back = inverse * there;
        const float scale = 1e-3f * (1 + std::fabs(p) + std::fabs(q)) * 10;
        FUZZ_LAW(std::fabs(back.x - 1) < scale && std::fabs(back.y - 2) < scale);
    }
    const LumColor rgb = LumColor::fromRGB(static_cast<std::uint32_t>(x.integer) & LumColor::RGB_LARGEST);
    FUZZ_LAW(LumValue::parseColor(rgb.toString()).getColorValue() == rgb);
    FUZZ_LAW(LumValue::parseColor(rgb.toString(true), true).getColorValue() == rgb);
    const LumColor cmyk(small(p) / 100, small(q) / 100, small(x.real) / 50, 0.25f);
    const LumColor read = LumValue::parseColor(cmyk.toString()).getColorValue();
    for (int i = 0; i < 4; ++i) FUZZ_LAW(std::fabs(read.getComponent(i) - cmyk.getComponent(i)) < 1e-6f);
    FUZZ_LAW(LumValue(cmyk).getColorValue() == cmyk);
    FUZZ_LAW(LumColor(LumValue(rgb)) == rgb && !rgb.isInvalid());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices input(data, size);
    const Number x = numberOf(input), y = numberOf(input);
    const LumValue a = valueOf(x), b = valueOf(y);
    checkArithmetic(a, x, b, y);
    checkArithmetic(b, y, a, x);
    checkMatrixAndColor(x, y);
    const UnicodeString text = LumFuzz::textOf(input.data(), input.size(), (x.unit & 1u) != 0);
    const LumValue parsed = LumValue::parse(text);
    const LumValue others[] = {
        a, b, parsed, LumValue(text), LumValue(NAME_page), LumValue(), LumValue::parseColor(text)};
    for (const LumValue& left : others) {
        for (const LumValue& right : others) checkOrder(left, right);
        if (!left.isNumeric()) FUZZ_LAW((left + a).isNull() && (a * left).isNull());
    }
    checkCompound(input, parsed);
    return 0;
}
