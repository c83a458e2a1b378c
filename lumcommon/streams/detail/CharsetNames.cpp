#include <lumcommon/core/detail/AsciiText.h>
#include <lumcommon/streams/detail/CharsetNames.h>

#include <algorithm>
#include <span>

namespace LumCommon::detail {

namespace {

struct NameRow {
    std::string_view name;
    const char* meaning;
};

// The library's own names.
constexpr const char* big5 = "ChineseBIG5";
constexpr const char* gbk = "ChineseGBK";
constexpr const char* korean = "KoreanKSC";
constexpr const char* shiftJis = "WINDOWS31J";

constexpr NameRow givenRows[] = {
    {"BIG5", big5},
    {"CHINESEBIG5", big5},
    {"CHINESEGBK", gbk},
    {"GB2312", gbk},
    {"GBK", gbk},
    {"ISO-IR-149", korean},
    {"KOREAN", korean},
    {"KOREANKSC", korean},
    {"KS_C_5601-1987", korean},
    {"SHIFT-JIS", shiftJis},
    {"SHIFT_JIS", shiftJis},
    {"WINDOWS-31J", shiftJis},
    {"WINDOWS31J", shiftJis},
    {"EUC-JP", "EUC-JP"},
    {"ISO-2022-JP", "ISO-2022-JP"},
};

constexpr NameRow detectedRows[] = {
    {"Big5", big5},
    {"EUC-KR", korean},
    {"Shift_JIS", shiftJis},
    {"ISO-8859-1", "windows-1252"},
    {"ISO-8859-9", "windows-1254"},
    // The detector knows these in two directions, the converters only one.
    {"IBM420_ltr", "IBM420"},
    {"IBM420_rtl", "IBM420"},
    {"IBM424_ltr", "IBM424"},
    {"IBM424_rtl", "IBM424"},
};

constexpr NameRow icuRows[] = {
    {big5, "Big5"},
    {gbk, "GBK"},
    {korean, "windows-949"},
    {shiftJis, "windows-31j"},
};

template <class IsName>
const char* findMeaning(std::span<const NameRow> rows, IsName isName) noexcept {
    const auto row = std::ranges::find_if(rows, isName, &NameRow::name);
    return row != rows.end() ? row->meaning : nullptr;
}

}  // namespace

const char* findLibraryCharset(std::string_view given) noexcept {
    return findMeaning(givenRows, [given](std::string_view name) { return equalsIgnoringAsciiCase(name, given); });
}

const char* findLibraryCharsetOfDetected(std::string_view detected) noexcept {
    return findMeaning(detectedRows, [detected](std::string_view name) { return name == detected; });
}

const char* findIcuCharset(std::string_view libraryName) noexcept {
    return findMeaning(icuRows, [libraryName](std::string_view name) { return name == libraryName; });
}

}  // namespace LumCommon::detail
