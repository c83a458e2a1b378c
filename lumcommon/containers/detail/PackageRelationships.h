#pragma once

#include <lumcommon/core/Text.h>

#include <map>

namespace LumCommon::detail {

/// The relationships of one source of an office package: of a part, or of the package itself.
struct PackageRelationships {
    struct Relationship {
        UnicodeString target;  ///< as written
        UnicodeString mode;    ///< as written; "Internal" if there is none
    };

    std::map<UnicodeString, Relationship> byId;
    std::map<UnicodeString, Relationship> byType;
};

}  // namespace LumCommon::detail
