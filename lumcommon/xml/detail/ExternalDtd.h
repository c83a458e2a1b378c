#pragma once

#include <lumcommon/core/Text.h>

#include <cstddef>
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

/// The definitions read in this process that are kept, by a key for each resource. LumXmlParser has the public way to
/// the limit and to emptying it.
/// Threads: any; guarded by a lock, which is not held while a definition is read.
class ExternalDtdCache {
public:
    /// Null when nothing is kept under the key.
    static std::shared_ptr<const ExternalDtd> find(const UnicodeString& key);
    /// Keeps `dtd`, unless another thread was faster, and lets go of those that were not used for longest where all
    /// together are too many bytes; returns the one that is kept, or was too large to be.
    static std::shared_ptr<const ExternalDtd> add(const UnicodeString& key, std::shared_ptr<const ExternalDtd> dtd);
    static void clear();
    static std::size_t sizeBytes();
    static std::size_t limitBytes();
    static std::size_t setLimitBytes(std::size_t bytes);
};

}  // namespace LumCommon::detail
