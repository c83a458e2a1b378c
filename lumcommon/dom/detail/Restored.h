#pragma once

namespace LumCommon::detail {

/// Gives a variable another value until the end of a scope, however that is left.
template <class T>
class Restored {
public:
    Restored(T& variable, T value) noexcept : variable_(variable), before_(variable) { variable = value; }
    ~Restored() { variable_ = before_; }
    Restored(const Restored&) = delete;
    Restored& operator=(const Restored&) = delete;

private:
    T& variable_;
    T before_;
};

}  // namespace LumCommon::detail
