#pragma once

#include <lumcommon/dom/LumNode.h>

#include <typeinfo>

namespace LumCommon::detail {

/// Whether a node is of one of the library's own classes and of none derived from it, so that no virtual operation is
/// overridden and the fields can be read directly. Comparing the addresses of the type information can only err by
/// giving false, which costs time and nothing else.
template <class T>
bool isExactly(const LumNode& node) noexcept {
    return &typeid(node) == &typeid(T);
}

/// The node as what it exactly is; null when it is something else.
template <class T>
const T* asExactly(const LumNode& node) noexcept {
    return isExactly<T>(node) ? static_cast<const T*>(&node) : nullptr;
}

}  // namespace LumCommon::detail
