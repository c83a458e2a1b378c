#pragma once

#include <cstdint>

namespace LumCommon::detail {

/// The properties of the summary information that can be asked for, by their numbers in the file.
enum SummaryId : std::uint32_t {
    CODE_PAGE = 1,
    TITLE = 2,
    SUBJECT = 3,
    AUTHOR = 4,
    KEYWORDS = 5,
    COMMENTS = 6,
    TEMPLATE = 7,
    LAST_AUTHOR = 8,
    REVISION_NUMBER = 9,
    PAGE_COUNT = 14,
    WORD_COUNT = 15,
    CHARACTER_COUNT = 16,
    APPLICATION_NAME = 18,
    SECURITY = 19,
};

constexpr bool isSummaryId(unsigned id) noexcept {
    return (id >= CODE_PAGE && id <= REVISION_NUMBER) || (id >= PAGE_COUNT && id <= CHARACTER_COUNT) ||
           id == APPLICATION_NAME || id == SECURITY;
}

}  // namespace LumCommon::detail
