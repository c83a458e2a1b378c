#pragma once

#include <lumcommon/core/Text.h>

#include <memory>
#include <utility>
#include <vector>

namespace LumCommon::detail {

/// The entity definitions of one external document type definition, by the strings of their names, as names may die
/// with the documents that use them.
struct ExternalDtd {
    using Definitions = std::vector<std::pair<UnicodeString, UnicodeString>>;
    Definitions generalEntities;
    Definitions parameterEntities;
    Definitions generalExternals;  // name to system identifier
    Definitions parameterExternals;
};

/// The definitions read in this process, by the resolved URI of the definition. It is only added to.
/// Threads: any; guarded by a lock, which is not held while a definition is read.
class ExternalDtdCache {
public:
    /// Null when the URI has not been read.
    static std::shared_ptr<const ExternalDtd> find(const UnicodeString& uri);
    /// Keeps `dtd`, unless another thread was faster; returns the one that is kept.
    static std::shared_ptr<const ExternalDtd> add(const UnicodeString& uri, std::shared_ptr<const ExternalDtd> dtd);
};

}  // namespace LumCommon::detail
