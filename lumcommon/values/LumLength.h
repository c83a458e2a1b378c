#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/values/LumValue.h>

#include <cmath>
#include <limits>

namespace LumCommon {

/// An absolute length in points (1/72 inch); NaN means that there is none. Threads: a value.
class LUM_API LumLength {
public:
    /// No length.
    LumLength() noexcept = default;
    /// `value` in `unit`. Units that are no absolute lengths (em, ex, px, jpt, percent, numbers, ...) give no length.
    LumLength(float value, LumValueUnitType unit) noexcept;
    /// LumValue::getLengthValue().
    explicit LumLength(const LumValue& value);

    float getPoints() const noexcept { return points_; }
    bool isValid() const noexcept { return !std::isnan(points_); }

    /// Points in one `unit`; NaN when it is not an absolute length.
    static float getFactor(LumValueUnitType unit) noexcept;

private:
    float points_ = std::numeric_limits<float>::quiet_NaN();
};

}  // namespace LumCommon
