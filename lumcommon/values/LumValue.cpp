#include <lumcommon/values/LumLength.h>
#include <lumcommon/values/LumNamedValueMap.h>
#include <lumcommon/values/LumValue.h>
#include <lumcommon/values/detail/Units.h>
#include <lumcommon/values/detail/ValueText.h>

#include <cmath>
#include <limits>
#include <utility>

namespace LumCommon {

constinit const LumValue LumValue::NULL_VALUE;

namespace {

constexpr std::uint32_t makeTypeWord(LumValueKind kind, LumValueUnitType unit) noexcept {
    return kind | ((unit & 31u) << 3);
}

constexpr float noNumber = std::numeric_limits<float>::quiet_NaN();

/// The factor that converts a number from one unit to another; 0 where no conversion is defined.
double getConversionFactor(LumValueUnitType from, LumValueUnitType to) noexcept {
    switch (to) {
        case UNIT_NUMBER:
            return from == UNIT_PERCENT ? 1 / 100.0 : from == UNIT_DPI ? 1 : 0;
        case UNIT_PERCENT:
            return from == UNIT_NUMBER ? 100 : 0;
        case UNIT_DEG:
            return from == UNIT_RAD ? detail::degreesPerRadian : from == UNIT_GRAD ? detail::degreesPerGrad : 0;
        case UNIT_RAD:
            return from == UNIT_DEG ? detail::radiansPerDegree : from == UNIT_GRAD ? detail::radiansPerGrad : 0;
        case UNIT_GRAD:
            return from == UNIT_DEG ? 1 / detail::degreesPerGrad : from == UNIT_RAD ? detail::gradsPerRadian : 0;
        case UNIT_MS:
            return from == UNIT_S ? 1000 : 0;
        case UNIT_S:
            return from == UNIT_MS ? 1 / 1000.0 : 0;
        case UNIT_HZ:
            return from == UNIT_KHZ ? 1000 : 0;
        case UNIT_KHZ:
            return from == UNIT_HZ ? 1 / 1000.0 : 0;
        case UNIT_DPI:
            return from == UNIT_PERCENT ? 1 : 0;
        default:
            break;
    }
    const double points = detail::pointsPerUnit(to);
    return points > 0 ? detail::pointsPerUnit(from) / points : 0;
}

}  // namespace

LumValue::LumValue(int value) noexcept : LumValue() {
    payload_.integer = value;
    typeWord_ = makeTypeWord(KIND_INTEGER, UNIT_NUMBER);
}

LumValue::LumValue(float value, LumValueUnitType unit) noexcept : LumValue() {
    payload_.real = value;
    typeWord_ = makeTypeWord(KIND_REAL, unit);
}

LumValue::LumValue(LumName name) noexcept : LumValue() {
    payload_.name = name.getEnum();
    typeWord_ = KIND_NAME;
}

LumValue::LumValue(const UnicodeString& text) : LumValue() {
    payload_.text = detail::ValueText::make(text);
    typeWord_ = KIND_STRING;
}

LumValue::LumValue(LumRCObject* object) noexcept : LumValue() {
    if (!object) return;
    object->addRef();
    payload_.object = object;
    typeWord_ = KIND_OBJECT;
}

LumValue::LumValue(LumNamedValueMap* map) noexcept : LumValue(static_cast<LumRCObject*>(map)) {
    if (map) typeWord_ = KIND_COMPOUND;
}

// Release the old payload last: `other` may live inside the object that this value releases.
LumValue& LumValue::operator=(const LumValue& other) {
    if (this == &other) return *this;
    LumValue copy(other);
    std::swap(payload_, copy.payload_);
    std::swap(typeWord_, copy.typeWord_);
    return *this;
}

LumValue& LumValue::operator=(LumValue&& other) noexcept {
    LumValue taken(std::move(other));
    std::swap(payload_, taken.payload_);
    std::swap(typeWord_, taken.typeWord_);
    return *this;
}

void LumValue::share() {
    if (getKind() == KIND_STRING) {
        payload_.text = detail::ValueText::make(payload_.text->text());
    } else {
        payload_.object->addRef();
    }
}

void LumValue::release() noexcept {
    const Payload old = std::exchange(payload_, Payload{.pointer = nullptr});
    const LumValueKind kind = getKind();
    typeWord_ &= ~0xFFu;
    if (kind == KIND_STRING) {
        old.text->releaseRefs(1);
    } else {
        old.object->releaseRef();
    }
}

LumNamedValueMap* LumValue::detachMap() noexcept {
    if (LumRCObject* object = getRCObject(); object && object->isA(LumNamedValueMap::TYPE_ID)) {
        typeWord_ &= ~0xFFu;
        return static_cast<LumNamedValueMap*>(object);
    }
    return nullptr;
}

int LumValue::getIntegerValue() const noexcept {
    if (getKind() == KIND_INTEGER) return payload_.integer;
    if (getKind() != KIND_REAL) return 0;
    const double rounded = std::floor(static_cast<double>(payload_.real) + 0.5);
    if (!(rounded > std::numeric_limits<int>::min())) {
        return std::isnan(rounded) ? 0 : std::numeric_limits<int>::min();
    }
    if (rounded >= std::numeric_limits<int>::max()) return std::numeric_limits<int>::max();
    return static_cast<int>(rounded);
}

float LumValue::getRealValue(LumValueUnitType unit) const noexcept {
    if (!isNumeric()) return noNumber;
    const float value = getKind() == KIND_INTEGER ? static_cast<float>(payload_.integer) : payload_.real;
    const LumValueUnitType own = getUnit();
    if (unit == own || unit == UNIT_NONE) return value;
    const double factor = getConversionFactor(own, unit);
    return factor > 0 ? static_cast<float>(value * factor) : noNumber;
}

LumName LumValue::getNameValue() const noexcept { return getKind() == KIND_NAME ? LumName(payload_.name) : LumName(); }

LumLength LumValue::getLengthValue() const {
    // An item may itself be a compound. A cycle is detected by comparing with a map seen earlier, which is replaced by
    // the current one each time the number of steps has doubled.
    LumValue value(*this);
    const LumNamedValueMap* seen = nullptr;
    std::size_t steps = 0;
    std::size_t stepsToNextSeen = 1;
    while (const LumNamedValueMap* map = value.getNamedValueMap()) {
        if (map == seen) return LumLength();
        if (++steps == stepsToNextSeen) {
            seen = map;
            stepsToNextSeen *= 2;
        }
        LumValue item = map->getNamedItem(NAME_length);
        value = item.isNull() ? map->getNamedItem(NAME_NULL) : std::move(item);
    }
    return value.isNumeric() ? LumLength(value.getRealValue(UNIT_NONE), value.getUnit()) : LumLength();
}

LumRCObject* LumValue::getRCObject() const noexcept {
    return getKind() == KIND_OBJECT || getKind() == KIND_COMPOUND ? payload_.object : nullptr;
}

LumNamedValueMap* LumValue::getNamedValueMap() const noexcept {
    return getKind() == KIND_COMPOUND ? static_cast<LumNamedValueMap*>(payload_.object) : nullptr;
}

const UnicodeString* LumValue::getStringPointer() const noexcept {
    return getKind() == KIND_STRING ? &payload_.text->text() : nullptr;
}

void LumValue::makeCompound() {
    if (getKind() == KIND_COMPOUND) return;
    LumPtr<LumNamedValueMap> map(new LumNamedValueMap);
    if (!isNull()) map->setNamedItem(NAME_NULL, *this);
    const LumNameEnum name = getNameKey();
    *this = LumValue(map.get());
    setNameKey(name);
}

LumValue LumValue::getNamedItem(LumName name) const {
    if (const LumNamedValueMap* map = getNamedValueMap()) return map->getNamedItem(name);
    return name.isNull() ? *this : NULL_VALUE;
}

void LumValue::setNamedItem(LumName name, const LumValue& value) { setNamedItem(LumNamedValue(name, value)); }

void LumValue::setNamedItem(const LumNamedValue& value) {
    if (getKind() == KIND_COMPOUND) {
        getNamedValueMap()->setNamedItem(value);
        return;
    }
    // Copy the argument: it may be this value itself, which makeCompound() turns into the map.
    const LumNamedValue item = value;
    makeCompound();
    getNamedValueMap()->setNamedItem(item);
}

void LumValue::removeNamedItem(LumName name) {
    if (LumNamedValueMap* map = getNamedValueMap()) map->removeNamedItem(name);
}

}  // namespace LumCommon
