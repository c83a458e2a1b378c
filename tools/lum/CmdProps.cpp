#include <lumcommon/containers/LumZipFile.h>
#include <lumcommon/containers/OleCompFile.h>
#include <lumcommon/containers/office/OleSummaryInformation.h>
#include <lumcommon/streams/JZIOobj.h>

#include "Command.h"
#include "Input.h"
#include "Output.h"
#include "PackageProperties.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <set>

namespace LumTool {
namespace {

using namespace LumCommon;

constexpr unsigned editingTimeId = 10;

/// The time in ISO 8601 format; null for no time, and the stored number for a time after the year 9999.
Json timeOf(std::uint64_t ticks) {
    using namespace std::chrono;
    constexpr std::uint64_t ticksInSecond = 10'000'000, endTicks = 2'650'467'744'000'000'000;
    if (ticks == 0) return nullptr;
    if (ticks >= endTicks) return ticks;
    const sys_seconds time = sys_days(year(1601) / 1 / 1) + seconds(ticks / ticksInSecond);
    const sys_days day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(time - day);
    char text[40];
    std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02ld:%02ld:%02ld", int(date.year()), unsigned(date.month()),
                  unsigned(date.day()), long(clock.hours().count()), long(clock.minutes().count()),
                  long(clock.seconds().count()));
    std::string result = text;
    if (ticks % ticksInSecond != 0) {
        std::snprintf(text, sizeof text, ".%07u", unsigned(ticks % ticksInSecond));
        result += text;
    }
    return result + "Z";
}

std::string hexOf(const unsigned char* bytes, std::size_t size) {
    std::string text;
    char digits[3];
    for (std::size_t i = 0; i < size; ++i) {
        std::snprintf(digits, sizeof digits, "%02x", unsigned{bytes[i]});
        text += digits;
    }
    return text;
}

struct Shower {
    std::uint32_t type;

    Json operator()(std::monostate) const { return nullptr; }
    Json operator()(bool flag) const { return flag; }
    Json operator()(double number) const { return number; }
    Json operator()(std::int64_t number) const {
        constexpr double currencyUnit = 10000;
        if (type == OlePropertyValue::CURRENCY) return static_cast<double>(number) / currencyUnit;
        return number;
    }
    Json operator()(std::uint64_t number) const {
        return type == OlePropertyValue::FILE_TIME ? timeOf(number) : Json(number);
    }
    Json operator()(const UnicodeString& text) const { return toUtf8(text); }
    Json operator()(const OLE_CLSID& id) const {
        char text[24];
        std::snprintf(text, sizeof text, "%08x-%04x-%04x-", unsigned{id.data1}, unsigned{id.data2}, unsigned{id.data3});
        return text + hexOf(id.data4, 2) + "-" + hexOf(id.data4 + 2, 6);
    }
    Json operator()(const OlePropertyBytes& bytes) const {
        constexpr std::size_t shownBytes = 64;  // pictures can be large
        return Json{{"bytes", bytes.size()}, {"hex", hexOf(bytes.data(), std::min(bytes.size(), shownBytes))}};
    }
    Json operator()(const OlePropertyElements& elements) const {
        Json::Array values;
        for (const OlePropertyValue& value : elements.values) {
            values.push_back(std::visit(Shower{value.type}, value.content));
        }
        return values;
    }
};

Json valueOf(const OleProperty& property, bool isDuration) {
    constexpr double ticksInSecond = 1e7;
    const OlePropertyValue& value = property.value;
    if (value.isDamaged) return Json{{"type", value.type}, {"damaged", true}};
    const auto* const ticks = std::get_if<std::uint64_t>(&value.content);
    if (isDuration && ticks) return static_cast<double>(*ticks) / ticksInSecond;
    return std::visit(Shower{value.type}, value.content);
}

/// The named or the unnamed properties of a set, the first one for each key. Of a damaged set, shows what can be read.
Json propertiesOf(const OleSummaryInformation& information, bool areNamed) {
    constexpr std::uint32_t codePageId = 1;
    const UnicodeString hyperLinks(u"_PID_HLINKS");  // shown separately, as links
    Json properties = Json::Object{};
    std::set<std::string> keys;
    for (const OleProperty& property : information.readProperties()) {
        if (property.isNamed != areNamed || property.name == hyperLinks) continue;
        if (areNamed && property.id == codePageId) continue;
        const std::string key = property.name.isEmpty() ? std::to_string(property.id) : toUtf8(property.name);
        const bool isDuration = information.getKind() == OleSummaryInformation::SUMMARY && property.id == editingTimeId;
        if (keys.insert(key).second) properties.add(key, valueOf(property, isDuration));
    }
    return properties;
}

std::string textOf(const OleSummaryInformation& information, unsigned id) {
    const std::optional<OlePropertyValue> value = information.readProperty(id);
    const auto* const text = value ? std::get_if<UnicodeString>(&value->content) : nullptr;
    return text ? toUtf8(*text) : std::string();
}

Json hyperLinksOf(OleSummaryInformation& information) {
    Json::Array links;
    std::vector<UnicodeString> found;
    information.getHyperLinks(found);
    for (const UnicodeString& link : found) links.emplace_back(toUtf8(link));
    return links;
}

/// Whether it is an archive with what every package has. The stream is then at its start.
bool isOfficePackage(std::istream& in) {
    if (!LumZipFile::isZipFile(&in)) return false;
    const LumZipFile archive(&in, false);
    in.clear();
    in.seekg(0);
    return archive.getFileEntry(u"[Content_Types].xml") != nullptr;
}

void run(const std::string& path) {
    enum : unsigned { TITLE = 2, SUBJECT = 3, AUTHOR = 4, KEYWORDS = 5 };
    const std::unique_ptr<std::istream> in = openInput(path);
    if (isOfficePackage(*in)) return printJson(readPackageProperties(*in));
    JZStreamIOobj io(in.get());
    OleCompFile file;
    file.setAcceptsLooseFiles(true);
    if (!file.OLEopen(&io)) failBecause(path + " is no office document", whatElse(*in));
    OleSummaryInformation summary, document;
    summary.initSummaryInformation(&file);
    document.initDocumentSummaryInformation(&file);
    printJson({{"title", textOf(summary, TITLE)},
               {"subject", textOf(summary, SUBJECT)},
               {"author", textOf(summary, AUTHOR)},
               {"keywords", textOf(summary, KEYWORDS)},
               {"properties", propertiesOf(summary, false)},
               {"document", propertiesOf(document, false)},
               {"user", propertiesOf(document, true)},
               {"hyperlinks", hyperLinksOf(document)}});
}

}  // namespace

Command makePropsCommand() {
    return makeCommand("props", "Print the properties of an office document as JSON", "file", fileHelp, run);
}

}  // namespace LumTool
