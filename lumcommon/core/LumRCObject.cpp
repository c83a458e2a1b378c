#include <lumcommon/core/LumRCObject.h>

namespace LumCommon {

LumRCObject::~LumRCObject() = default;

bool LumRCObject::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumObjectBase::isA(typeId); }

}  // namespace LumCommon
