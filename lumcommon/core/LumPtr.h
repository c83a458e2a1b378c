#pragma once

#include <lumcommon/core/LumRCObject.h>

#include <cstddef>
#include <type_traits>
#include <utility>

namespace LumCommon {

/// Smart pointer to a LumRCObject: while it is not null it owns exactly one count of the object.
///
///     LumPtr<LumElement> element = document->createElement(name);  // the result's count moves into `element`
///     parent->appendChild(element.get());                          // the parent takes a count for itself
///
/// Ownership: the LumPtr that gives back the last count deletes the object. Objects that hold each other by LumPtr are
/// never deleted. An object must have been created with new.
/// Failure: nothing here throws. A null LumPtr must not be dereferenced; that is not checked.
/// Cost: taking or giving back a count is one atomic instruction; moving changes no count.
/// Threads: one thread at a time for each LumPtr; several LumPtrs to one object are independent of each other. The
/// object is deleted on the thread that gives back its last count.
template <class T>
class LumPtr {
public:
    /// Null.
    LumPtr() noexcept = default;
    /// Null.
    LumPtr(std::nullptr_t) noexcept {}
    /// @param object  may be null.
    /// @param addRef  true: takes a count. false: adopts a count that the caller has already taken.
    explicit LumPtr(T* object, bool addRef = true) noexcept : object_(object) {
        if (object_ && addRef) object_->addRef();
    }
    /// Copying takes another count; moving takes over that of `other`, which becomes null. A LumPtr to a derived class
    /// converts.
    LumPtr(const LumPtr& other) noexcept : LumPtr(other.object_) {}
    /// Takes over the count of `other`, which becomes null.
    LumPtr(LumPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    /// Takes another count of an object of a derived class.
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    LumPtr(const LumPtr<U>& other) noexcept : LumPtr(other.get()) {}
    /// Takes over the count of an object of a derived class; `other` becomes null.
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    LumPtr(LumPtr<U>&& other) noexcept : object_(other.detach()) {}
    /// Gives the count back, which deletes the object if it was the last.
    ~LumPtr() {
        if (T* old = std::exchange(object_, nullptr)) old->releaseRef();
    }

    /// Takes a count of the new object, then gives back that of the old one: the old object may hold the last count of
    /// the new one. Assigning the object already held changes nothing.
    LumPtr& operator=(T* object) noexcept {
        if (object != object_) {
            if (object) object->addRef();
            if (T* old = std::exchange(object_, object)) old->releaseRef();
        }
        return *this;
    }
    /// Gives the count back and becomes null.
    LumPtr& operator=(std::nullptr_t) noexcept { return *this = static_cast<T*>(nullptr); }
    /// Takes a count of the other's object, then gives back that of the old one.
    LumPtr& operator=(const LumPtr& other) noexcept { return *this = other.object_; }
    /// Takes over the count of `other`, which becomes null.
    LumPtr& operator=(LumPtr&& other) noexcept {
        if (this != &other) {
            T* incoming = std::exchange(other.object_, nullptr);
            if (T* old = std::exchange(object_, incoming)) old->releaseRef();
        }
        return *this;
    }
    /// Checked down-cast: becomes null when the object's isA() does not accept T's type identifier. The object already
    /// held is kept without asking.
    template <class U, class = std::enable_if_t<std::is_base_of_v<LumObjectBase, U> && !std::is_convertible_v<U*, T*>>>
    LumPtr& operator=(U* object) noexcept {
        LumObjectBase* const base = object;
        if (base == static_cast<const LumObjectBase*>(object_)) return *this;
        return *this = base && base->isA(T::TYPE_ID) ? static_cast<T*>(base) : nullptr;
    }

    /// The object, borrowed; null when there is none.
    T* get() const noexcept { return object_; }
    /// A member of the object. Null is not checked for.
    T* operator->() const noexcept { return object_; }
    /// The object. Null is not checked for.
    T& operator*() const noexcept { return *object_; }
    /// Whether there is an object.
    explicit operator bool() const noexcept { return object_ != nullptr; }
    /// Whether there is no object.
    bool isNull() const noexcept { return object_ == nullptr; }
    /// Hands the object and its count over to the caller, who must release it; this LumPtr becomes null.
    [[nodiscard]] T* detach() noexcept { return std::exchange(object_, nullptr); }

    /// Compare addresses, not contents.
    friend bool operator==(const LumPtr& a, const LumPtr& b) noexcept { return a.object_ == b.object_; }
    /// Whether it points to that very object.
    friend bool operator==(const LumPtr& a, const T* b) noexcept { return a.object_ == b; }
    /// Whether it is null.
    friend bool operator==(const LumPtr& a, std::nullptr_t) noexcept { return a.object_ == nullptr; }

private:
    T* object_ = nullptr;
};

/// A new object in its first LumPtr, made with these arguments.
///
///     LumPtr<LumDocument> document = makeLum<LumDocument>();
///
/// Errors: those of the constructor; std::bad_alloc.
template <class T, class... Arguments>
[[nodiscard]] LumPtr<T> makeLum(Arguments&&... arguments) {
    return LumPtr<T>(new T(std::forward<Arguments>(arguments)...));
}

}  // namespace LumCommon
