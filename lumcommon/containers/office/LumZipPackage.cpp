#include <lumcommon/containers/LumZipFile.h>
#include <lumcommon/containers/detail/PackageRelationships.h>
#include <lumcommon/containers/office/OfficeKinds.h>
#include <lumcommon/containers/office/detail/PackagePartReader.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/uri/LumUriSub.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <new>
#include <string_view>
#include <utility>

// The archive as an office package: its relationships and content types.

namespace LumCommon {

using detail::joined;
using detail::PackagePartReader;
using detail::PackageRelationships;
using View = std::u16string_view;

namespace {

struct PackageType {
    PackageKind kind;
    View contentType;
};
constexpr PackageType packageTypes[] = {
#include "OfficeDocumentTypes.inc"
};
static_assert(std::size(packageTypes) == static_cast<std::size_t>(PackageKind::THEME));
static_assert(std::ranges::adjacent_find(packageTypes, std::ranges::greater_equal{}, &PackageType::kind) ==
                  std::end(packageTypes),
              "each kind has one type, in their order");

PackageKind kindOf(View contentType) {
    const auto* const found = std::ranges::find(packageTypes, contentType, &PackageType::contentType);
    return found == std::end(packageTypes) ? PackageKind::NONE : found->kind;
}

constexpr char16_t officeDocumentRelationship[] =
    u"http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument";
/// The beginnings of relationship types, and those ends that differ, in the Transitional and in the Strict form.
struct TypeForms {
    View transitional;
    View strict;
};
constexpr TypeForms typeBeginnings = {u"http://schemas.openxmlformats.org/officeDocument/2006/relationships/",
                                      u"http://purl.oclc.org/ooxml/officeDocument/relationships/"};
constexpr TypeForms typeEnds[] = {
    {u"extended-properties", u"extendedProperties"},
    {u"custom-properties", u"customProperties"},
};
constexpr char16_t relationshipsNamespace[] = u"http://schemas.openxmlformats.org/package/2006/relationships";
constexpr char16_t contentTypesNamespace[] = u"http://schemas.openxmlformats.org/package/2006/content-types";
constexpr char16_t contentTypesPart[] = u"[Content_Types].xml";
constexpr char16_t internalMode[] = u"Internal";
/// The package's root as a URI, so that "/" and "../" in a target end there. The scheme is for resolving only.
constexpr View packageRoot = u"part:///";

std::istream& openPart(LumZipFileEntry& part) {
    std::istream* const in = part.getUncompressedStream(false);
    if (!in) throw std::bad_alloc();
    return *in;
}

UnicodeString relationshipPartName(const LumZipFileEntry* source) {
    const View name = source ? detail::viewOf(source->getFileName()) : View();
    const std::size_t slash = name.rfind(u'/');
    const std::size_t fileName = slash == View::npos ? 0 : slash + 1;
    return joined(name.substr(0, fileName), u"_rels/", name.substr(fileName), u".rels");
}

/// The name without "." and "..": resolving a reference removes only those at its front.
UnicodeString withoutDotSegments(View name) {
    std::u16string result;
    result.reserve(name.size());
    while (!name.empty()) {
        const std::size_t slash = name.find(u'/');
        const View segment = name.substr(0, slash);
        if (segment == u"..") {
            const std::size_t parent = result.size() < 2 ? View::npos : result.rfind(u'/', result.size() - 2);
            result.resize(parent == View::npos ? 0 : parent + 1);
        } else if (segment != u".") {
            result.append(segment);
            if (slash != View::npos) result += u'/';
        }
        name.remove_prefix(slash == View::npos ? name.size() : slash + 1);
    }
    return detail::textOf(result);
}

/// Resolves a target against the name of its source; true if that gives the name of a part.
bool resolveTarget(const UnicodeString& sourceName, UnicodeString& target) {
    LumUriSub::URISPECTYPE specType;
    const UnicodeString unquoted = LumUriSub::unquoteUri(target, specType, LumUri::URISTR_3);
    if (LumUriSub::checkScheme(LumUriSub::makeUriSub(unquoted)) >= 0) {
        target = LumUri(LumUri(sourceName), target).toString();
        return false;
    }
    View source = detail::viewOf(sourceName);
    source.remove_prefix(std::min(source.find_first_not_of(u'/'), source.size()));
    const LumUri base(joined(packageRoot, source));
    target = LumUri(base, target).toString();
    if (!detail::viewOf(target).starts_with(packageRoot)) return false;
    target = detail::textOf(detail::viewOf(target).substr(packageRoot.size()));
    return true;
}

UnicodeString targetOf(const LumZipFile& zip, const LumZipFileEntry* source,
                       const PackageRelationships::Relationship& relationship) {
    UnicodeString target = relationship.target;
    if (relationship.mode != internalMode) return target;
    if (!resolveTarget(source ? source->getFileName() : UnicodeString(), target)) return target;
    if (zip.getFileEntry(target)) return target;
    const UnicodeString direct = withoutDotSegments(detail::viewOf(target));
    for (const UnicodeString& name : {direct, LumUri::unescape(direct)}) {
        if (zip.getFileEntry(name)) return name;
    }
    return target;
}

/// The target of the relationship with that key, empty if there is none.
template <class Map>
UnicodeString findTarget(const LumZipFile& zip, const LumZipFileEntry* source, const Map& map,
                         const UnicodeString& key) {
    const auto found = map.find(key);
    return found == map.end() ? UnicodeString() : targetOf(zip, source, found->second);
}

/// The relationship type in its other form; the type itself if it is in neither.
UnicodeString inOtherForm(const UnicodeString& type) {
    View end = detail::viewOf(type);
    const bool isStrict = end.starts_with(typeBeginnings.strict);
    const View TypeForms::*const from = isStrict ? &TypeForms::strict : &TypeForms::transitional;
    const View TypeForms::*const to = isStrict ? &TypeForms::transitional : &TypeForms::strict;
    if (!end.starts_with(typeBeginnings.*from)) return detail::copyOf(type);
    end.remove_prefix((typeBeginnings.*from).size());
    const auto* const row = std::ranges::find(typeEnds, end, from);
    return joined(typeBeginnings.*to, row == std::end(typeEnds) ? end : row->*to);
}

void addRelationship(const PackagePartReader& reader, PackageRelationships& relationships) {
    PackageRelationships::Relationship relationship{reader.getAttribute(u"Target"), reader.getAttribute(u"TargetMode")};
    if (relationship.target.isBogus()) return;
    if (relationship.mode.isEmpty()) relationship.mode = internalMode;
    const UnicodeString id = reader.getAttribute(u"Id");
    const UnicodeString type = reader.getAttribute(u"Type");
    if (!id.isBogus()) relationships.byId.try_emplace(id, relationship);
    if (!type.isBogus()) relationships.byType.try_emplace(type, std::move(relationship));
}

}  // namespace

int LumZipFile::detectOOXDocument() {
    LumZipFileEntry* const entry = getOfficeDocument();
    return static_cast<int>(entry ? kindOf(detail::viewOf(getContentType(entry))) : PackageKind::NONE);
}

int LumZipFile::detectOOXDocument(const char* path) { return LumZipFile(path).detectOOXDocument(); }

int LumZipFile::detectOOXDocument(std::istream* s) {
    return s && !s->fail() ? LumZipFile(s, false).detectOOXDocument() : static_cast<int>(PackageKind::NONE);
}

LumZipFileEntry* LumZipFile::getOfficeDocument() {
    return getFileEntry(getRelationshipTargetFromType(detail::textOf(officeDocumentRelationship), nullptr));
}

UnicodeString LumZipFile::getContentType(LumZipFileEntry* entry) {
    if (!entry) return UnicodeString();
    setContentType();
    return entry->contentType_;
}

UnicodeString LumZipFile::getRelationshipTargetFromId(const UnicodeString& id, LumZipFileEntry* source) {
    return findTarget(*this, source, relationshipsOf(source).byId, id);
}

UnicodeString LumZipFile::getRelationshipTargetFromType(const UnicodeString& type, LumZipFileEntry* source) {
    const auto& byType = relationshipsOf(source).byType;
    const bool isOther = acceptsStrictPackages_ && byType.find(type) == byType.end();
    return findTarget(*this, source, byType, isOther ? inOtherForm(type) : type);
}

UnicodeString LumZipFile::getRelationshipTargetMode(const UnicodeString& id, LumZipFileEntry* source) {
    const auto& byId = relationshipsOf(source).byId;
    const auto found = byId.find(id);
    return found == byId.end() ? UnicodeString(internalMode) : found->second.mode;
}

void LumZipFile::makeRelationships(LumZipFileEntry* source) { relationshipsOf(source); }

const PackageRelationships& LumZipFile::relationshipsOf(LumZipFileEntry* source) {
    std::unique_ptr<PackageRelationships>& kept = source ? source->relationships_ : relationships_;
    if (kept) return *kept;
    auto relationships = std::make_unique<PackageRelationships>();
    if (LumZipFileEntry* const part = getFileEntry(relationshipPartName(source))) {
        PackagePartReader reader(openPart(*part), detail::textOf(relationshipsNamespace), u"Relationships");
        while (reader.next()) {
            if (reader.isAt(u"Relationship")) addRelationship(reader, *relationships);
        }
    }
    kept = std::move(relationships);
    return *kept;
}

void LumZipFile::setContentType() {
    if (hasContentTypes_) return;
    std::map<UnicodeString, UnicodeString> defaults;
    std::map<LumZipFileEntry*, UnicodeString> overrides;
    if (LumZipFileEntry* const part = getFileEntry(contentTypesPart)) {
        PackagePartReader reader(openPart(*part), detail::textOf(contentTypesNamespace), u"Types");
        while (reader.next()) {
            UnicodeString contentType = reader.getAttribute(u"ContentType");
            if (contentType.isBogus()) continue;
            const UnicodeString extension = reader.getAttribute(u"Extension");
            UnicodeString name = reader.getAttribute(u"PartName");
            if (reader.isAt(u"Default") && !extension.isBogus()) {
                defaults[joined(u'.', extension)] = std::move(contentType);
            } else if (reader.isAt(u"Override") && !name.isBogus()) {
                if (name.startsWith(u'/')) name = detail::textOf(detail::viewOf(name).substr(1));
                if (LumZipFileEntry* const entry = getFileEntry(name)) overrides[entry] = std::move(contentType);
            }
        }
    }
    for (const auto& [entry, contentType] : overrides) entry->contentType_ = contentType;
    for (const LumPtr<LumZipFileEntry>& entry : entries_) {
        const View name = detail::viewOf(entry->fileName_);
        const std::size_t dot = name.rfind(u'.');
        if (!entry->contentType_.isEmpty() || dot == View::npos) continue;
        const auto found = defaults.find(detail::textOf(name.substr(dot)));
        if (found != defaults.end()) entry->contentType_ = found->second;
    }
    hasContentTypes_ = true;
}

}  // namespace LumCommon
