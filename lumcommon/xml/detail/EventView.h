#pragma once

#include <lumcommon/names/LumName.h>

#include <string_view>

/// What the current event of a parser holds, as it lies there: for callers in this library that take it over without
/// a string of their own in between. Everything is valid until the parser is asked for the next event.
namespace LumCommon::detail {

/// The names of an element that begins or ends.
struct TagView {
    LumName prefix;
    LumName localName;
    LumName namespaceUri;
};

/// One attribute of a start tag; declarations of namespaces are attributes too.
struct AttributeView {
    LumName prefix;
    LumName localName;
    LumName namespaceUri;
    std::u16string_view value;
};

}  // namespace LumCommon::detail
