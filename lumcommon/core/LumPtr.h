#pragma once

#include <lumcommon/core/LumRCObject.h>

#include <cstddef>
#include <type_traits>
#include <utility>

namespace LumCommon {

/// Smart pointer to a LumRCObject: while it is not null it owns exactly one count of the object.
///
/// Threads: one thread at a time for each LumPtr; several LumPtrs to one object are independent of each other.
template <class T>
class LumPtr {
public:
    LumPtr() noexcept = default;
    LumPtr(std::nullptr_t) noexcept {}
    /// @param addRef  false: adopts a count that the caller has already taken.
    explicit LumPtr(T* object, bool addRef = true) noexcept : object_(object) {
        if (object_ && addRef) object_->addRef();
    }
    LumPtr(const LumPtr& other) noexcept : LumPtr(other.object_) {}
    LumPtr(LumPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    LumPtr(const LumPtr<U>& other) noexcept : LumPtr(other.get()) {}
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    LumPtr(LumPtr<U>&& other) noexcept : object_(other.detach()) {}
    ~LumPtr() {
        if (T* old = std::exchange(object_, nullptr)) old->releaseRef();
    }

    /// Assigning the object already held changes nothing. The new reference is taken before the old one is given
    /// back, so the old object may hold the last reference to the new one.
    LumPtr& operator=(T* object) noexcept {
        if (object != object_) {
            if (object) object->addRef();
            if (T* old = std::exchange(object_, object)) old->releaseRef();
        }
        return *this;
    }
    LumPtr& operator=(std::nullptr_t) noexcept { return *this = static_cast<T*>(nullptr); }
    LumPtr& operator=(const LumPtr& other) noexcept { return *this = other.object_; }
    LumPtr& operator=(LumPtr&& other) noexcept {
        if (this != &other) {
            T* incoming = std::exchange(other.object_, nullptr);
            if (T* old = std::exchange(object_, incoming)) old->releaseRef();
        }
        return *this;
    }
    /// Checked down-cast: null unless the object's isA() accepts T's type identifier or it is the object already held.
    template <class U, class = std::enable_if_t<std::is_base_of_v<LumObjectBase, U> && !std::is_convertible_v<U*, T*>>>
    LumPtr& operator=(U* object) noexcept {
        LumObjectBase* const base = object;
        if (base == static_cast<const LumObjectBase*>(object_)) return *this;
        return *this = base && base->isA(T::TYPE_ID) ? static_cast<T*>(base) : nullptr;
    }

    T* get() const noexcept { return object_; }
    T* operator->() const noexcept { return object_; }
    T& operator*() const noexcept { return *object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }
    bool isNull() const noexcept { return object_ == nullptr; }
    /// Gives the held pointer and its count to the caller; this becomes null.
    [[nodiscard]] T* detach() noexcept { return std::exchange(object_, nullptr); }

    friend bool operator==(const LumPtr& a, const LumPtr& b) noexcept { return a.object_ == b.object_; }
    friend bool operator==(const LumPtr& a, const T* b) noexcept { return a.object_ == b; }
    friend bool operator==(const LumPtr& a, std::nullptr_t) noexcept { return a.object_ == nullptr; }

private:
    T* object_ = nullptr;
};

}  // namespace LumCommon
