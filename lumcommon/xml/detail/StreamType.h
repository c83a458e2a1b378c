#pragma once

#include <lumcommon/names/LumName.h>

namespace LumCommon::detail {

/// What the surroundings of a stream say about its kind, and what that and its root element make of it.
class StreamType {
public:
    void set(const UnicodeString& mediaType, const UnicodeString& extension);
    bool isXhtml(LumName rootName, LumName rootNamespace) const;
    bool isHtml(LumName rootName, LumName rootNamespace) const;

private:
    UnicodeString mediaType_;  // in lower case, as the extension
    UnicodeString extension_;
};

}  // namespace LumCommon::detail
