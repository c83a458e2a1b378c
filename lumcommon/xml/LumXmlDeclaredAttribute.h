#pragma once

#include <lumcommon/core/LumStrings.h>
#include <lumcommon/names/LumName.h>

#include <vector>

namespace LumCommon {

/// An attribute as the document type declares it (LumXmlParser::getDeclaredAttributes()).
struct LumXmlDeclaredAttribute {
    /// The types of attributes in a document type declaration.
    enum Type {
        CDATA,        ///< any text
        ID,           ///< a name that no other element of the document has
        IDREF,        ///< the ID of an element
        IDREFS,       ///< several of them
        ENTITY,       ///< the name of an unparsed entity
        ENTITIES,     ///< several of them
        NMTOKEN,      ///< characters of names
        NMTOKENS,     ///< several of them
        NOTATION,     ///< one of the notations in `choices`
        ENUMERATION,  ///< one of the tokens in `choices`
    };
    /// What holds where an element does not have the attribute.
    enum Default {
        IMPLIED,   ///< it may be absent
        REQUIRED,  ///< it should be there; nobody checks that
        FIXED,     ///< it has this value where it is absent; that another is not given is not checked either
        VALUE,     ///< it has this value where it is absent
    };

    LumName prefix;                      ///< null without one
    LumName localName;                   ///< never null
    Type type = CDATA;                   ///< CDATA unless another was declared
    Default defaultKind = IMPLIED;       ///< which of the four forms the declaration has
    UnicodeString value;                 ///< of FIXED and VALUE, normalised as the type asks
    std::vector<UnicodeString> choices;  ///< the tokens of an ENUMERATION, the notations of a NOTATION

    /// Whether `value` is one.
    bool hasDefault() const noexcept { return defaultKind == FIXED || defaultKind == VALUE; }
};

}  // namespace LumCommon
