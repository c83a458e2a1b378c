#pragma once

#include <lumcommon/core/LumMutex.h>
#include <lumcommon/core/LumObjectBase.h>

#include <atomic>

namespace LumCommon {

template <class T>
class LumPtr;

/// An object with an intrusive reference count.
///
/// An object starts at count 0 and goes straight into a LumPtr; the release that brings the count below 1 deletes
/// it. The count changes only through LumMutex::interlockedIncrement and interlockedDecrement, so LumPtrs to one
/// object may be copied and destroyed on several threads; nothing else about the object is protected.
class LUM_API LumRCObject : public LumObjectBase {
public:
    static constexpr unsigned int TYPE_ID = 0x90AF0240u;

    bool isA(unsigned int typeId) const override;

    /// The number of counted references now held. Threads: a snapshot; it may be out of date on return.
    int getRefCount() const noexcept { return std::atomic_ref<int>(refCount_).load(std::memory_order_relaxed); }

    /// Takes one reference. Use LumPtr; this is for classes that own counts without one.
    void addRef() const noexcept { LumMutex::interlockedIncrement(refCount_); }
    /// Gives one reference back and deletes the object when none is left.
    void releaseRef() const noexcept {
        if (LumMutex::interlockedDecrement(refCount_) < 1) delete this;
    }

    ~LumRCObject() override;

private:
    friend class LumNode;           // deleteAllChildNodes releases without atomic instructions
    friend class LumNamedValueMap;  // releases maps nested in maps without recursion
    mutable int refCount_ = 0;
};

}  // namespace LumCommon
