#include <lumcommon/bridge/LumText.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/PlatformText.h>
#include <lumcommon/uri/LumUri.h>

namespace LumCommon {

UnicodeString toText(std::string_view utf8) { return detail::fromUtf8(utf8); }

UnicodeString toText(std::u8string_view utf8) {
    return detail::fromUtf8({reinterpret_cast<const char*>(utf8.data()), utf8.size()});
}

UnicodeString toText(std::u16string_view text) { return detail::textOf(text); }

std::string toUtf8(std::u16string_view text) {
    // An alias of the units: no memory is needed for it.
    return detail::utf8Of(UnicodeString(false, text.data(), detail::checkedLength(text.size())));
}

UnicodeString pathToUri(const std::filesystem::path& path) {
    return detail::copyOf(LumUri::fromLocalPath(path.native()).toString());
}

std::filesystem::path uriToPath(const UnicodeString& uri) {
    const LumUri resource(uri);
    if (!resource.isFile()) return {};
    return detail::toPlatformPath(resource.findLocalPath()).value_or(std::string());
}

}  // namespace LumCommon
