#include <lumcommon/containers/office/OlePropertySet.h>
#include <lumcommon/containers/office/OleSummaryInformation.h>
#include <lumcommon/containers/office/detail/SummaryId.h>
#include <lumcommon/values/LumValue.h>

#include <utility>

namespace LumCommon {

int OlePropertySet::init(OleCompFile* file) {
    OleSummaryInformation information;
    if (information.initSummaryInformation(file) != 1) return -1;
    const std::pair<detail::SummaryId, UnicodeString*> rows[] = {
        {detail::TITLE, &title_},
        {detail::SUBJECT, &subject_},
        {detail::AUTHOR, &author_},
        {detail::KEYWORDS, &keywords_},
    };
    for (const auto& [id, string] : rows) {
        LumValue value;
        if (information.getProperty(id, value) == 1) *string = value.toString();
    }
    return 1;
}

}  // namespace LumCommon
