#pragma once

#include <lumcommon/xml/detail/ExternalDtd.h>

#include <memory>

namespace LumCommon {
class LumUri;
}

namespace LumCommon::detail {

/// The definitions of an external document type definition, from the cache of the process where it has them. They are
/// read by parts of their own, so that errors are thrown with the position in the definition.
/// @param baseUri        what references in the definition are resolved against; empty for its own place.
/// @param forgivesErrors  an error ends the definition, and what came before it is returned.
/// Threads: any, but one that holds the shared names (a NamespaceManager, say) until it has taken the definitions.
std::shared_ptr<const ExternalDtd> readExternalDtd(const LumUri& resource, const UnicodeString& baseUri,
                                                   bool forgivesErrors);

}  // namespace LumCommon::detail
