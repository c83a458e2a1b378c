#include <lumcommon/format/xls/XlsFormat.h>
#include <lumcommon/format/xls/XlsFormatString.h>
#include <lumcommon/format/xls/detail/XlsCell.h>
#include <lumcommon/format/xls/detail/XlsCodeParser.h>

namespace LumCommon {

namespace {

const detail::XlsRules& rulesOf(XlsFormat::Rules rules) {
    return rules == XlsFormat::Rules::CONTRACT ? detail::XLS_CONTRACT_RULES : detail::XLS_SPREADSHEET_RULES;
}

}  // namespace

XlsFormat::XlsFormat() : XlsFormat(UnicodeString(u"General")) {}

XlsFormat::XlsFormat(const UnicodeString& code, bool is1904, Rules rules) : is1904_(is1904), rules_(rules) {
    detail::parseXlsCode(code, rulesOf(rules), code_);
    if (rulesOf(rules).translatesNames) names_ = detail::xlsNamesFor(code_);
}

XlsFormat::Result XlsFormat::format(double value) const {
    Result result;
    format(value, result);
    return result;
}

XlsFormat::Result XlsFormat::format(const UnicodeString& text) const {
    Result result;
    format(text, result);
    return result;
}

XlsFormat::Result XlsFormat::format(const CELLV& cell) const {
    return cell.kind == CELLV::TEXT ? format(cell.text) : format(cell.number);
}

void XlsFormat::format(double value, Result& result) const {
    detail::XlsNumberStyle style;
    style.rules = &rulesOf(rules_);
    style.is1904 = is1904_;
    detail::XlsFill fill;
    result.section = detail::showXlsNumber(code_, value, style, names_.get(), result.text, result.color, fill);
}

void XlsFormat::format(const UnicodeString& text, Result& result) const {
    result.section = detail::showXlsText(code_, text, result.text, result.color);
}

}  // namespace LumCommon
