#include <lumcommon/core/LumMutex.h>
#include <lumcommon/xml/detail/ExternalDtd.h>

#include <map>

namespace LumCommon::detail {

namespace {

struct Cache {
    LumLock lock;
    std::map<UnicodeString, std::shared_ptr<const ExternalDtd>> dtds;
};

// Made on first use, so that the library has nothing to do when it is loaded.
Cache& cache() {
    static Cache instance;
    return instance;
}

}  // namespace

std::shared_ptr<const ExternalDtd> ExternalDtdCache::find(const UnicodeString& uri) {
    LumMutex guard(&cache().lock);
    const auto found = cache().dtds.find(uri);
    return found == cache().dtds.end() ? nullptr : found->second;
}

std::shared_ptr<const ExternalDtd> ExternalDtdCache::add(const UnicodeString& uri,
                                                         std::shared_ptr<const ExternalDtd> dtd) {
    LumMutex guard(&cache().lock);
    return cache().dtds.emplace(uri, std::move(dtd)).first->second;
}

}  // namespace LumCommon::detail
