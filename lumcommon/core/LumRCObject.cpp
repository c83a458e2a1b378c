#include <lumcommon/core/LumRCObject.h>
#include <lumcommon/core/detail/SlabPool.h>

namespace LumCommon {

LumRCObject::~LumRCObject() = default;

bool LumRCObject::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumObjectBase::isA(typeId); }

void* LumRCObject::operator new(std::size_t bytes) { return detail::allocateBlock(bytes); }

void LumRCObject::operator delete(void* block, std::size_t bytes) noexcept { detail::releaseBlock(block, bytes); }

}  // namespace LumCommon
