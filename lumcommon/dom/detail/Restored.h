#pragma once

namespace LumCommon::detail {

/// Sets a variable to another value until the end of a scope, however the scope is left.
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
