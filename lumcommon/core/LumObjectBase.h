#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>

namespace LumCommon {

/// Root of every object that the library hands out.
///
/// Type tests do without the compiler's run-time type information: a class carries a fixed 32-bit identifier
/// (its static TYPE_ID), and isA() answers for the class and for every class above it.
/// Threads: the operations of this class may be called from any thread.
class LUM_API LumObjectBase {
public:
    static constexpr unsigned int TYPE_ID = 0xA4EBD8C4u;

    LumObjectBase() = default;
    LumObjectBase(const LumObjectBase&) = delete;
    LumObjectBase& operator=(const LumObjectBase&) = delete;
    virtual ~LumObjectBase();

    /// The identifier of the object's own class.
    virtual unsigned int getTypeID() const = 0;
    /// True when `typeId` is that of the object's class or of a class above it.
    virtual bool isA(unsigned int typeId) const;
    /// The name of the object's own class, e.g. "LumTextNode".
    virtual UnicodeString getTypeName() const = 0;
};

}  // namespace LumCommon
