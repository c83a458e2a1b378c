#include <lumcommon/xml/LumXmlErrorCode.h>

#include <algorithm>
#include <iterator>

namespace LumCommon::LumXmlErrorCode {

namespace {

struct CauseRow {
    unsigned code;
    const char *name, *cause;
};

constexpr CauseRow causeRows[] = {
#define XML_ERROR_CAUSE(code, name, cause) {code, name, cause},
#include <lumcommon/xml/XmlErrorCauses.inc>
#undef XML_ERROR_CAUSE
};
static_assert(std::ranges::adjacent_find(causeRows, std::ranges::greater_equal{}, &CauseRow::code) ==
              std::end(causeRows));

const CauseRow* findRow(unsigned code) noexcept {
    constexpr unsigned heard = 0x0600;
    if (code == (UndefinedEntity | heard) || code == (UndefinedParameterEntity | heard)) code &= ~heard;
    const auto* const row = std::ranges::lower_bound(causeRows, code, {}, &CauseRow::code);
    return row != std::end(causeRows) && row->code == code ? row : nullptr;
}

}  // namespace

const char* getName(unsigned code) noexcept {
    const CauseRow* const row = findRow(code);
    return row ? row->name : nullptr;
}

const char* getCause(unsigned code) noexcept {
    const CauseRow* const row = findRow(code);
    return row ? row->cause : nullptr;
}

}  // namespace LumCommon::LumXmlErrorCode
