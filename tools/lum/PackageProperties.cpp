#include "PackageProperties.h"

#include <lumcommon/bridge/LumRanges.h>
#include <lumcommon/containers/LumZipFile.h>
#include <lumcommon/core/LumError.h>
#include <lumcommon/dom/LumDocument.h>
#include <lumcommon/dom/LumElement.h>

#include <charconv>
#include <set>

#include "Output.h"

namespace LumTool {

using namespace LumCommon;

namespace {

struct Part {
    const char16_t *type, *usualName;
};

constexpr Part corePart = {u"http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties",
                           u"docProps/core.xml"};
constexpr Part appPart = {u"http://schemas.openxmlformats.org/officeDocument/2006/relationships/extended-properties",
                          u"docProps/app.xml"};
constexpr Part customPart = {u"http://schemas.openxmlformats.org/officeDocument/2006/relationships/custom-properties",
                             u"docProps/custom.xml"};

LumZipFileEntry* findEntry(LumZipFile& package, const Part& part) {
    try {
        const UnicodeString name = package.getRelationshipTargetFromType(part.type);
        if (LumZipFileEntry* const entry = package.getFileEntry(name)) return entry;
    } catch (const LumError&) {
        // Relationships that cannot be read: the parts are looked for where they usually are.
    }
    return package.getFileEntry(UnicodeString(part.usualName));
}

/// The part as a document, empty if there is none. It is a stranger's: it is short, and names nothing that is opened.
LumPtr<LumDocument> loadPart(LumZipFile& package, const Part& part) {
    LumPtr<LumDocument> document(new LumDocument);
    LumZipFileEntry* const entry = findEntry(package, part);
    if (!entry) return document;
    document->setUntrusted();
    LumXmlLimits limits = document->getLimits();
    limits.totalBytes = 16 << 20;
    document->setLimits(limits);
    std::istream* const in = entry->getUncompressedStream(false);
    if (!in) throw std::bad_alloc();
    document->load(*in);
    return document;
}

std::string textOf(const LumNode& node) { return toUtf8(node.getInnerText()); }

Json numberOr(const std::string& text) {
    const char* const end = text.data() + text.size();
    std::int64_t integer = 0;
    if (const auto read = std::from_chars(text.data(), end, integer); read.ec == std::errc() && read.ptr == end) {
        return integer;
    }
    double number = 0;
    const auto read = std::from_chars(text.data(), end, number);
    if (read.ec == std::errc() && read.ptr == end) return number;
    return text;
}

/// What the element of a variant holds, by its name: "i4", "bool", "lpwstr". A vector gives its texts.
Json variantOf(const LumElement& element) {
    static const std::set<std::string> numbers{"i1",  "i2",  "i4",   "i8", "int", "ui1",    "ui2",
                                               "ui4", "ui8", "uint", "r4", "r8",  "decimal"};
    const std::string kind = toUtf8(element.getLocalName()), text = textOf(element);
    if (kind == "bool") return text == "true" || text == "1";
    if (numbers.contains(kind)) return numberOr(text);
    if (kind != "vector" && kind != "array") return text;
    Json::Array values;
    for (const LumElement* const value : children<LumElement>(&element)) values.emplace_back(textOf(*value));
    return values;
}

/// A property that has its value as text, or in an element of a variant.
Json valueOf(const LumElement& property) {
    Json value = textOf(property);
    for (const LumElement* const variant : children<LumElement>(&property)) value = variantOf(*variant);
    return value;
}

/// The targets and places of the hyperlinks: the fifth and the sixth of each six variants.
void addHyperLinks(const LumElement& property, Json::Array& links) {
    constexpr int variantsOfLink = 6, target = 4, place = 5;
    int index = 0;
    for (const LumElement* const vector : children<LumElement>(&property)) {
        for (const LumElement* const variant : children<LumElement>(vector)) {
            const int which = index++ % variantsOfLink;
            if (which != target && which != place) continue;
            if (std::string text = textOf(*variant); !text.empty()) links.emplace_back(std::move(text));
        }
    }
}

struct Properties {
    Json all = Json::Object{};
    std::map<std::string, std::string> texts;

    void add(const std::string& name, Json value) {
        const auto* const text = std::get_if<std::string>(&value.get());
        if (texts.emplace(name, text ? *text : "").second) all.add(name, std::move(value));  // the first one counts
    }
};

}  // namespace

Json readPackageProperties(std::istream& in) {
    LumZipFile package(&in, false);
    package.setAcceptsStrictPackages(true);
    const LumPtr<LumDocument> core = loadPart(package, corePart), app = loadPart(package, appPart),
                              custom = loadPart(package, customPart);
    Properties properties, document, user;
    Json::Array links;
    for (const LumElement* const property : children<LumElement>(core->getDocumentElement())) {
        properties.add(toUtf8(property->getLocalName()), valueOf(*property));
    }
    for (const LumElement* const property : children<LumElement>(app->getDocumentElement())) {
        const std::string name = toUtf8(property->getLocalName());
        name == "HLinks" ? addHyperLinks(*property, links) : document.add(name, valueOf(*property));
    }
    for (const LumElement* const property : children<LumElement>(custom->getDocumentElement())) {
        user.add(toUtf8(property->getAttribute(NAME_name)), valueOf(*property));
    }
    return {{"title", properties.texts["title"]},
            {"subject", properties.texts["subject"]},
            {"author", properties.texts["creator"]},
            {"keywords", properties.texts["keywords"]},
            {"properties", properties.all},
            {"document", document.all},
            {"user", user.all},
            {"hyperlinks", links}};
}

}  // namespace LumTool
