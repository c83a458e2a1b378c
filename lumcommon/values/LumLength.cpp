#include <lumcommon/values/LumLength.h>
#include <lumcommon/values/detail/Units.h>

namespace LumCommon {

LumLength::LumLength(float value, LumValueUnitType unit) noexcept {
    if (const double factor = detail::pointsPerUnit(unit); factor > 0) {
        points_ = static_cast<float>(static_cast<double>(value) * factor);
    }
}

LumLength::LumLength(const LumValue& value) : LumLength(value.getLengthValue()) {}

float LumLength::getFactor(LumValueUnitType unit) noexcept {
    const double factor = detail::pointsPerUnit(unit);
    return factor > 0 ? static_cast<float>(factor) : std::numeric_limits<float>::quiet_NaN();
}

}  // namespace LumCommon
