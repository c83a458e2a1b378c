#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>

namespace LumCommon {

/// Base class of every object that the library hands out.
///
/// Type tests do not use the compiler's run-time type information: each class has a fixed 32-bit identifier (its static
/// TYPE_ID), and isA() accepts those of the class and of all its base classes.
/// Threads: the operations of this class may be called from any thread.
class LUM_API LumObjectBase {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0xA4EBD8C4u;

    /// For derived classes alone.
    LumObjectBase() = default;
    LumObjectBase(const LumObjectBase&) = delete;
    LumObjectBase& operator=(const LumObjectBase&) = delete;
    /// Objects are deleted through this class.
    virtual ~LumObjectBase();

    /// The identifier of the object's own class.
    virtual unsigned int getTypeID() const = 0;
    /// True when `typeId` is that of the object's class or of one of its base classes.
    virtual bool isA(unsigned int typeId) const;
    /// The name of the object's own class, e.g. "LumTextNode".
    virtual UnicodeString getTypeName() const = 0;
};

}  // namespace LumCommon
