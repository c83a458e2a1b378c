#pragma once

#include <lumcommon/containers/office/OfficeKinds.h>

namespace LumCommon::detail {

/// Whether OleSummaryInformation::getProperty() gives it.
constexpr bool isSummaryId(unsigned id) noexcept {
    using enum SummaryProperty;
    const auto property = static_cast<SummaryProperty>(id);
    return (property >= CODE_PAGE && property <= REVISION_NUMBER) ||
           (property >= PAGE_COUNT && property <= CHARACTER_COUNT) || property == APPLICATION_NAME ||
           property == SECURITY;
}

}  // namespace LumCommon::detail
