#pragma once

#include <lumcommon/uri/LumUri.h>

#include <map>
#include <mutex>
#include <sstream>
#include <string>

#include "support/Utf8.h"

namespace LumTest {

/// Resources in memory, opened through the library's resolver, with the number of times that each was opened. Each
/// library has a base URI of its own, as what was read under a URI is kept for the whole process. It is put in place
/// of the resolver before it for as long as it lives.
class ResourceLibrary : public LumCommon::LumUriReferenceResolver {
public:
    ResourceLibrary() : previous_(LumCommon::LumUri::setUriReferenceResolver(this)) {
        static int made = 0;
        base_ = "http://library.invalid/" + std::to_string(++made) + "/";
    }
    ~ResourceLibrary() override { LumCommon::LumUri::setUriReferenceResolver(previous_); }
    ResourceLibrary(const ResourceLibrary&) = delete;
    ResourceLibrary& operator=(const ResourceLibrary&) = delete;

    const std::string& getBase() const { return base_; }
    void add(const std::string& name, const std::string& bytes) { resources_[base_ + name] = bytes; }
    int countOpened() const {
        const std::lock_guard guard(mutex_);
        return opened_;
    }

    std::istream* getStream(const icu::UnicodeString& uri) override {
        const std::lock_guard guard(mutex_);
        ++opened_;
        const auto found = resources_.find(utf8(uri));
        return found == resources_.end() ? nullptr : new std::istringstream(found->second);
    }

private:
    LumCommon::LumUriReferenceResolver* previous_;
    std::string base_;
    std::map<std::string, std::string> resources_;
    mutable std::mutex mutex_;
    int opened_ = 0;
};

}  // namespace LumTest
