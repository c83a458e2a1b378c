#include <lumcommon/core/detail/PlatformText.h>
#include <lumcommon/streams/LumKobStream.h>
#include <lumcommon/uri/LumUri.h>

#include <istream>
#include <memory>

namespace LumCommon {

// The only member of the class that opens a resource; its body is here because streams/ knows no URIs.
bool LumKobStream::detectEncoding(const char* uri, UnicodeString& name, bool& bom) {
    if (!uri) return false;
    const std::unique_ptr<std::istream> resource(LumUri(detail::fromPlatformText(uri)).getStream());
    return resource && detectEncoding(resource.get(), name, bom);
}

}  // namespace LumCommon
