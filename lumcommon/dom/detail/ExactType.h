#pragma once

#include <lumcommon/dom/LumNode.h>

#include <typeinfo>

namespace LumCommon::detail {

/// Whether a node is of class T, one of the library's own, and not of a class derived from it, so that no virtual
/// operation is overridden and the fields can be read directly. Comparing the addresses of the type information can
/// only err by returning false, which costs nothing but time.
template <class T>
bool isExactly(const LumNode& node) noexcept {
    return &typeid(node) == &typeid(T);
}

/// The node as a T; null unless that is its exact class.
template <class T>
const T* asExactly(const LumNode& node) noexcept {
    return isExactly<T>(node) ? static_cast<const T*>(&node) : nullptr;
}

}  // namespace LumCommon::detail
