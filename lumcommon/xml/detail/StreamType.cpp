#include <lumcommon/core/detail/CaseMapping.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/xml/detail/StreamType.h>

namespace LumCommon::detail {

void StreamType::set(const UnicodeString& mediaType, const UnicodeString& extension) {
    mediaType_ = toLowerCase(mediaType);
    extension_ = toLowerCase(extension);
}

bool StreamType::isXhtml(LumName rootName, LumName rootNamespace) const {
    if (rootName == NAME_html && viewOf(rootNamespace.getString()) == u"http://www.w3.org/1999/xhtml") {
        return true;
    }
    if (!mediaType_.isEmpty()) return mediaType_ == UnicodeString(u"application/xhtml+xml");
    return extension_ == UnicodeString(u".xht") || extension_ == UnicodeString(u".xhtml");
}

bool StreamType::isHtml(LumName rootName, LumName rootNamespace) const {
    if (!mediaType_.isEmpty()) return mediaType_ == UnicodeString(u"text/html");
    if (!extension_.isEmpty()) return extension_ == UnicodeString(u".html") || extension_ == UnicodeString(u".htm");
    return rootName == NAME_html && rootNamespace.isNull();
}

}  // namespace LumCommon::detail
