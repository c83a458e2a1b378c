#include <lumcommon/containers/office/detail/CodePageText.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/streams/cconv.h>

#include <climits>
#include <new>

namespace LumCommon::detail {
namespace {

struct Conversion {
    CConvContext context;
    ~Conversion() { cconvTermConvert(context); }
};

/// True when a function of the conversion has succeeded.
bool isDone(int result) {
    if (result == cconvOutOfMemory) throw std::bad_alloc();
    return result == 0;
}

bool setUp(CConvContext& context, const std::string& charset) {
    if (!isDone(cconvInitConvert(context, {}, "UTF-8"))) return false;
    // The PC and the Windows table of a number can differ, and property sets are a Windows format.
    const std::string windowsName = charset.starts_with("cp") ? "windows-" + charset.substr(2) : charset;
    return isDone(cconvChgCharset(context, {}, windowsName.c_str())) ||
           (windowsName != charset && isDone(cconvChgCharset(context, {}, charset.c_str()))) ||
           isDone(cconvChgCharset(context, {}, "ISO-8859-1"));
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
    return fromUtf8(std::string_view(utf8).substr(0, end));
}

}  // namespace LumCommon::detail
