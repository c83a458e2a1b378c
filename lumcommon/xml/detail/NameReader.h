#pragma once

#include <lumcommon/names/LumName.h>
#include <lumcommon/xml/detail/InputStack.h>
#include <lumcommon/xml/detail/NameCache.h>
#include <lumcommon/xml/detail/UnitBuffer.h>

namespace LumCommon::detail {

struct QName {
    LumName prefix;
    LumName localName;

    UnicodeString toString() const;
};

/// Reads names, and knows those that it has read.
class NameReader {
public:
    explicit NameReader(InputStack& inputs) : inputs_(inputs) {}

    /// A name without a colon; null, and nothing read, when the input does not continue with one.
    LumName readNCName();
    /// The same as text.
    UnicodeString readNCNameText();
    /// False when a part of the name is missing.
    bool readQName(QName& name);
    /// A name that lies in the window as a whole; null, and nothing read, when it takes more than a look at the window.
    const CachedName* readQNameFast();

private:
    void scanNCName();
    const CachedName* findQName();

    InputStack& inputs_;
    NameCache cache_;
    const CachedName* last_ = nullptr;
    UnitBuffer buffer_;
};

}  // namespace LumCommon::detail
