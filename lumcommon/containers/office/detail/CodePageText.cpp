#include <lumcommon/containers/office/detail/CodePageText.h>
#include <lumcommon/streams/cconv.h>

#include <climits>

namespace LumCommon::detail {
namespace {

struct Conversion {
    CConvContext context;
    ~Conversion() { cconvTermConvert(context); }
};

bool setUp(CConvContext& context, const std::string& charset) {
    if (cconvInitConvert(context, {}, "UTF-8") != 0) return false;
    // The PC and the Windows table of a number can differ, and property sets are a Windows format.
    const std::string windowsName = charset.starts_with("cp") ? "windows-" + charset.substr(2) : charset;
    return cconvChgCharset(context, {}, windowsName.c_str()) == 0 ||
           (windowsName != charset && cconvChgCharset(context, {}, charset.c_str()) == 0) ||
           cconvChgCharset(context, {}, "ISO-8859-1") == 0;
}

}  // namespace

std::string charsetOfCodePage(std::int64_t codePage) {
    constexpr std::int64_t utf8 = 65001;
    return codePage == utf8 ? "UTF-8" : "cp" + std::to_string(codePage);
}

UnicodeString fromCodePage(std::string_view bytes, const std::string& charset) {
    Conversion conversion;
    CConvContext& context = conversion.context;
    if (bytes.size() > INT_MAX || !setUp(context, charset)) return {};
    std::string utf8;
    char piece[4096];
    context.input = bytes.data();
    context.inputAvailable = static_cast<unsigned>(bytes.size());
    context.isLastInput = true;
    context.output = piece;
    context.outputCapacity = sizeof piece;
    while (cconvConvert(context) == 0 && context.status == 0) utf8.append(piece, context.outputProduced);
    const std::size_t end = utf8.find('\0');
    return UnicodeString::fromUTF8(end == std::string::npos ? utf8 : utf8.substr(0, end));
}

}  // namespace LumCommon::detail
