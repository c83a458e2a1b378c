#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/PlatformText.h>
#include <lumcommon/dom/detail/LocalFile.h>
#include <lumcommon/uri/LumUri.h>

#include <sys/stat.h>

#include <iterator>

namespace LumCommon::detail {

std::optional<std::string> findLocalFile(const UnicodeString& uri) {
    const LumUri resource(uri);
    if (!resource.isFile()) return std::nullopt;
    return toPlatformPath(resource.findLocalPath());
}

FileIdentity FileIdentity::ofResource(const UnicodeString& uri) {
    constexpr char16_t jarScheme[] = u"jar:";
    constexpr char16_t memberMark[] = u"!/";
    UnicodeString file = copyOf(uri);
    if (LumUri(uri).isJarScheme()) {
        checked(file.remove(0, static_cast<int32_t>(std::size(jarScheme)) - 1));
        if (const int32_t end = file.indexOf(memberMark); end >= 0) file.truncate(end);
    }
    FileIdentity identity;
    const std::optional<std::string> path = findLocalFile(file);
    struct stat status = {};
    if (path && ::stat(path->c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
        identity.device_ = status.st_dev;
        identity.inode_ = status.st_ino;
    }
    return identity;
}

}  // namespace LumCommon::detail
