#pragma once

#include <lumcommon/core/LumObjectBase.h>

#include <typeinfo>

namespace LumCommon::detail {

/// Whether an object is of class T, one of the library's own, and not of a class derived from it, so that no virtual
/// operation is overridden and the fields can be read directly. Comparing the addresses of the type information can
/// only err by returning false, which costs nothing but time.
template <class T>
bool isExactly(const LumObjectBase& object) noexcept {
    return &typeid(object) == &typeid(T);
}

/// The object as a T; null unless that is its exact class.
template <class T>
const T* asExactly(const LumObjectBase& object) noexcept {
    return isExactly<T>(object) ? static_cast<const T*>(&object) : nullptr;
}
template <class T>
T* asExactly(LumObjectBase& object) noexcept {
    return isExactly<T>(object) ? static_cast<T*>(&object) : nullptr;
}

}  // namespace LumCommon::detail
