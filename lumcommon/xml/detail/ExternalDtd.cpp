#include <lumcommon/core/LumMutex.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/xml/LumXmlParser.h>
#include <lumcommon/xml/detail/ExternalDtd.h>

#include <list>
#include <map>

namespace LumCommon::detail {

namespace {

using Dtd = std::shared_ptr<const ExternalDtd>;

std::size_t bytesOf(const ExternalDtd& dtd) {
    std::size_t bytes = sizeof dtd;
    for (const auto* definitions :
         {&dtd.generalEntities, &dtd.parameterEntities, &dtd.generalExternals, &dtd.parameterExternals}) {
        for (const auto& [name, value] : *definitions) {
            bytes +=
                sizeof(ExternalDtd::Definitions::value_type) +
                sizeof(char16_t) * (static_cast<std::size_t>(name.length()) + static_cast<std::size_t>(value.length()));
        }
    }
    return bytes;
}

struct Cache {
    struct Entry {
        UnicodeString key;
        Dtd dtd;
        std::size_t bytes;
    };
    using Entries = std::list<Entry>;

    /// Moves what is kept under the key to the front; null when nothing is.
    Dtd use(const UnicodeString& key) {
        const auto found = byKey.find(key);
        if (found == byKey.end()) return nullptr;
        entries.splice(entries.begin(), entries, found->second);
        return found->second->dtd;
    }
    void dropBeyond(std::size_t most) {
        while (bytes > most) {
            bytes -= entries.back().bytes;
            byKey.erase(entries.back().key);
            entries.pop_back();
        }
    }

    LumLock lock;
    Entries entries;  // the one used last comes first
    std::map<UnicodeString, Entries::iterator> byKey;
    std::size_t bytes = 0;
    std::size_t limitBytes = LumXmlParser::unlimitedDefinitions;
};

// Made on first use, so that the library has nothing to do when it is loaded.
Cache& cache() {
    static Cache instance;
    return instance;
}

}  // namespace

Dtd ExternalDtdCache::find(const UnicodeString& key) {
    LumMutex guard(&cache().lock);
    return cache().use(key);
}

Dtd ExternalDtdCache::add(const UnicodeString& key, Dtd dtd) {
    const std::size_t bytes = bytesOf(*dtd) + sizeof(char16_t) * static_cast<std::size_t>(key.length());
    Cache& all = cache();
    LumMutex guard(&all.lock);
    if (Dtd kept = all.use(key)) return kept;
    if (bytes > all.limitBytes) return dtd;
    Cache::Entries added;
    added.push_back({copyOf(key), dtd, bytes});
    all.byKey.emplace(key, added.begin());
    all.entries.splice(all.entries.begin(), added);
    all.bytes += bytes;
    all.dropBeyond(all.limitBytes);
    return dtd;
}

void ExternalDtdCache::clear() {
    LumMutex guard(&cache().lock);
    cache().dropBeyond(0);
}

std::size_t ExternalDtdCache::sizeBytes() {
    LumMutex guard(&cache().lock);
    return cache().bytes;
}

std::size_t ExternalDtdCache::limitBytes() {
    LumMutex guard(&cache().lock);
    return cache().limitBytes;
}

std::size_t ExternalDtdCache::setLimitBytes(std::size_t bytes) {
    LumMutex guard(&cache().lock);
    const std::size_t before = std::exchange(cache().limitBytes, bytes);
    cache().dropBeyond(bytes);
    return before;
}

}  // namespace LumCommon::detail
