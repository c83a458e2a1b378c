#include <lumcommon/containers/office/OlePropertySet.h>
#include <lumcommon/containers/office/OleSummaryInformation.h>
#include <lumcommon/values/LumValue.h>

namespace LumCommon {

int OlePropertySet::init(OleCompFile* file) {
    OleSummaryInformation information;
    if (information.initSummaryInformation(file) != 1) return -1;
    constexpr unsigned firstId = 2;
    UnicodeString* const strings[] = {&title_, &subject_, &author_, &keywords_};
    for (unsigned i = 0; i < std::size(strings); ++i) {
        LumValue value;
        if (information.getProperty(firstId + i, value) == 1) *strings[i] = value.toString();
    }
    return 1;
}

}  // namespace LumCommon
