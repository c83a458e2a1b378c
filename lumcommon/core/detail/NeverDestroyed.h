#pragma once

#include <utility>

namespace LumCommon::detail {

/// An object with static storage duration that is never destroyed, so that the destructors of other static objects can
/// still use it.
template <class T>
union NeverDestroyed {
public:
    template <class... Arguments>
    constexpr explicit NeverDestroyed(Arguments&&... arguments) noexcept(
        noexcept(T(std::forward<Arguments>(arguments)...)))
        : object_(std::forward<Arguments>(arguments)...) {}
    NeverDestroyed(const NeverDestroyed&) = delete;
    NeverDestroyed& operator=(const NeverDestroyed&) = delete;
    constexpr ~NeverDestroyed() {}

    constexpr T& operator*() noexcept { return object_; }
    constexpr T* operator->() noexcept { return &object_; }

private:
    T object_;
};

}  // namespace LumCommon::detail
