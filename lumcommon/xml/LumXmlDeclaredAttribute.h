#pragma once

#include <lumcommon/core/LumStrings.h>
#include <lumcommon/names/LumName.h>

#include <vector>

namespace LumCommon {

/// An attribute as the document type declares it (LumXmlParser::getDeclaredAttributes()).
struct LumXmlDeclaredAttribute {
    enum Type { CDATA, ID, IDREF, IDREFS, ENTITY, ENTITIES, NMTOKEN, NMTOKENS, NOTATION, ENUMERATION };
    enum Default {
        IMPLIED,   ///< it may be absent
        REQUIRED,  ///< it should be there; nobody checks that
        FIXED,     ///< it has this value where it is absent; that another is not given is not checked either
        VALUE,     ///< it has this value where it is absent
    };

    LumName prefix;  ///< null without one
    LumName localName;
    Type type = CDATA;
    Default defaultKind = IMPLIED;
    UnicodeString value;                 ///< of FIXED and VALUE, normalised as the type asks
    std::vector<UnicodeString> choices;  ///< the tokens of an ENUMERATION, the notations of a NOTATION

    bool hasDefault() const noexcept { return defaultKind == FIXED || defaultKind == VALUE; }
};

}  // namespace LumCommon
