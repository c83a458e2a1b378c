#include <lumcommon/containers/office/OfficeKinds.h>
#include <lumcommon/containers/office/OlePropertySet.h>
#include <lumcommon/containers/office/OleSummaryInformation.h>
#include <lumcommon/values/LumValue.h>

#include <utility>

namespace LumCommon {

int OlePropertySet::init(OleCompFile* file) {
    OleSummaryInformation information;
    if (information.initSummaryInformation(file) != 1) return -1;
    const std::pair<SummaryProperty, UnicodeString*> rows[] = {
        {SummaryProperty::TITLE, &title_},
        {SummaryProperty::SUBJECT, &subject_},
        {SummaryProperty::AUTHOR, &author_},
        {SummaryProperty::KEYWORDS, &keywords_},
    };
    for (const auto& [id, string] : rows) {
        LumValue value;
        if (information.getProperty(id, value) == 1) *string = value.toString();
    }
    return 1;
}

}  // namespace LumCommon
