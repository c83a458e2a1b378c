#include <lumcommon/dom/LumXmlSerializer.h>

namespace LumCommon {

bool LumXmlSerializer::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumRCObject::isA(typeId); }

void LumXmlSerializer::setChecked(bool) {}

bool LumXmlSerializer::isChecked() const { return false; }

}  // namespace LumCommon
