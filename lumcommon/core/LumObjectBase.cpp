#include <lumcommon/core/LumObjectBase.h>

namespace LumCommon {

LumObjectBase::~LumObjectBase() = default;

bool LumObjectBase::isA(unsigned int typeId) const { return typeId == TYPE_ID; }

}  // namespace LumCommon
