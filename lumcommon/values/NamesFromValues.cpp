// Constructors that make names from values. They are defined here because names/ must not include values/.
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/names/MathMLName.h>
#include <lumcommon/names/SVGName.h>
#include <lumcommon/values/LumValue.h>

namespace LumCommon {

LumName::LumName(const LumValue& value)
    : id_(value.getKind() == KIND_NAME ? value.getNameValue().getEnum()
                                       : LumNameTable::getSharedNameEnum(value.toString())) {}

MathMLName::MathMLName(const LumValue& value) : MathMLName(find(value.toString())) {}

SVGName::SVGName(const LumValue& value) : SVGName(find(value.toString())) {}

}  // namespace LumCommon
