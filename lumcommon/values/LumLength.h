#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/values/LumValue.h>

#include <cmath>
#include <limits>

namespace LumCommon {

/// An absolute length in points (1/72 inch), or no length, which is stored as NaN.
/// Threads: a plain value; separate objects are independent.
class LUM_API LumLength {
public:
    /// No length.
    LumLength() noexcept = default;
    /// `value` in `unit`. Units that are not absolute lengths (em, ex, px, jpt, percent, numbers, ...) give no length.
    LumLength(float value, LumValueUnitType unit) noexcept;
    /// The length that LumValue::getLengthValue() gives.
    explicit LumLength(const LumValue& value);

    /// NaN if there is no length.
    float getPoints() const noexcept { return points_; }
    /// Whether there is a length: it is not NaN.
    bool isValid() const noexcept { return !std::isnan(points_); }

    /// How many points one `unit` has; NaN if it is not an absolute length.
    static float getFactor(LumValueUnitType unit) noexcept;

private:
    float points_ = std::numeric_limits<float>::quiet_NaN();
};

}  // namespace LumCommon
