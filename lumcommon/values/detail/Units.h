#pragma once

#include <lumcommon/values/LumValue.h>

#include <string_view>

namespace LumCommon::detail {

/// How many points one `unit` has; 0 if it is not an absolute length. The factors are doubles, so that converting from
/// one unit to another and back rounds only once, when the float is stored.
constexpr double pointsPerUnit(LumValueUnitType unit) noexcept {
    switch (unit) {
        case UNIT_CM:
            return 28.346457;
        case UNIT_MM:
            return 2.8346457;
        case UNIT_IN:
            return 72;
        case UNIT_PT:
            return 1;
        case UNIT_PC:
            return 12;
        case UNIT_Q:
            return 0.70866144;
        case UNIT_TWIP:
            return 0.05;
        default:
            return 0;
    }
}

inline constexpr double degreesPerRadian = 57.295776;
inline constexpr double radiansPerDegree = 0.017453292;
inline constexpr double degreesPerGrad = 0.9;
inline constexpr double radiansPerGrad = 0.015707964;
inline constexpr double gradsPerRadian = 63.661976;

/// The unit whose printed form is `text`, in any letter case; UNIT_NONE if there is no such unit.
LumValueUnitType findUnit(std::u16string_view text) noexcept;

}  // namespace LumCommon::detail
