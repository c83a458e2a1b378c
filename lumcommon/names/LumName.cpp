#include <lumcommon/names/LumName.h>
#include <lumcommon/names/LumNameTable.h>

namespace LumCommon {

LumName::LumName(const UnicodeString& text) : id_(LumNameTable::getSharedNameEnum(text)) {}

const UnicodeString& LumName::getString() const { return LumNameTable::getSharedNameString(id_); }

LumName LumName::generateID(const UnicodeString& prefix) {
    return LumNameTable::internNumbered(prefix.isEmpty() ? UnicodeString(u"N") : prefix);
}

}  // namespace LumCommon
