#pragma once

#include <lumcommon/core/Api.h>

#include <memory>
#include <utility>

namespace LumCommon {

/// A pointer to an object that it either owns and deletes in the end, or only borrows. Moving transfers the object and
/// its ownership.
/// Threads: one at a time.
template <class T>
class MaybeOwned {
public:
    /// Null.
    MaybeOwned() noexcept = default;
    /// @param object  may be null.   @param isOwned  true: this pointer deletes it.
    MaybeOwned(T* object, bool isOwned) noexcept : object_(object, Deleter{isOwned}) {}
    /// Owns the object, which may be null.
    MaybeOwned(std::unique_ptr<T> object) noexcept : MaybeOwned(object.release(), true) {}

    /// The object, borrowed; null when there is none.
    T* get() const noexcept { return object_.get(); }
    /// A member of the object. Null is not checked for.
    T* operator->() const noexcept { return get(); }
    /// The object. Null is not checked for.
    T& operator*() const noexcept { return *get(); }
    /// Whether there is an object.
    explicit operator bool() const noexcept { return get() != nullptr; }

    /// Whether the object will be deleted; false for null.
    bool isOwned() const noexcept { return object_ && object_.get_deleter().isOwner; }
    /// Gives up ownership: the object is only borrowed afterwards.
    void disown() noexcept { object_.get_deleter().isOwner = false; }
    /// Becomes null. Hands the object to the caller if it was owned; returns null if it was borrowed.
    [[nodiscard]] std::unique_ptr<T> release() noexcept {
        const bool wasOwned = isOwned();
        T* const object = object_.release();
        return std::unique_ptr<T>(wasOwned ? object : nullptr);
    }

private:
    struct Deleter {
        bool isOwner = false;
        void operator()(T* object) const noexcept {
            if (isOwner) std::default_delete<T>()(object);
        }
    };

    std::unique_ptr<T, Deleter> object_;
};

}  // namespace LumCommon
