// Any bytes may be a property set. The first byte chooses whether it is the summary information of its document or the
// document summary information; the rest is put into a sound compound file.
// Laws: no more than twice the input is read; asking twice gives the same; a failure leaves the value unchanged;
// strings are no longer than the input in UTF-16, and neither are all links together. The values of all types together
// hold no more than four times the input and no more elements than the limit; a value read by itself is the same unless
// a limit was reached; damaged values have no content.

#include <lumcommon/containers/OleCompFile.h>
#include <lumcommon/containers/OlePropertySet.h>
#include <lumcommon/containers/OleSummaryInformation.h>
#include <lumcommon/streams/JZIOobj.h>
#include <lumcommon/values/LumValue.h>

#include <algorithm>
#include <bit>
#include <sstream>
#include <string>
#include <variant>

#include "../tests/containers/OleBytes.h"
#include "FuzzSupport.h"

using namespace LumCommon;
using LumFuzz::Choices;
using LumFuzz::Digest;

namespace {

void checkSections(const OleSummaryInformation& information, std::size_t size) {
    std::size_t readBytes = 0;
    FUZZ_LAW(information.getSections().size() <= size / 20 &&
             information.getSections().size() <= information.getSectionCount());
    for (const OleSISection& section : information.getSections()) {
        FUZZ_LAW(section.properties.size() <= section.propertyCount);
        FUZZ_LAW(section.hasDictionary || section.dictionary.empty());
        readBytes += 12 * section.properties.size();
        for (const OleSIName& row : section.dictionary) readBytes += 8 + row.name.size();
    }
    FUZZ_LAW(readBytes <= 2 * size);
}

Digest readProperties(OleSummaryInformation& information, std::size_t size) {
    Digest digest;
    for (unsigned id = 0; id < 22; ++id) {
        LumValue value(4711);
        const int result = information.getProperty(id, value);
        FUZZ_LAW(result == 1 || (result == -1 && value == LumValue(4711)));
        FUZZ_LAW(information.getKind() == OleSummaryInformation::SUMMARY || result == -1);
        const UnicodeString text = value.toString();
        FUZZ_LAW(static_cast<std::size_t>(text.length()) <= std::max<std::size_t>(2 * size, 11));
        digest.add(text);
    }
    std::vector<UnicodeString> links;
    digest.add(static_cast<std::uint64_t>(information.getHyperLinks(links)));
    std::size_t units = 0;
    for (const UnicodeString& link : links) {
        FUZZ_LAW(!link.isEmpty());
        units += static_cast<std::size_t>(link.length());
        digest.add(link);
    }
    FUZZ_LAW(2 * units <= size);
    return digest;
}

/// Totals over all values: the least number of input bytes they hold, their elements, and a digest.
struct Held {
    std::size_t bytes = 0;
    std::size_t elements = 0;
    std::size_t damaged = 0;
    Digest digest;

    void add(const OlePropertyValue& value) {
        digest.add(value.type);
        digest.add(value.content.index());
        FUZZ_LAW(!value.isDamaged || value.content.index() == 0);
        damaged += value.isDamaged ? 1 : 0;
        std::visit([this](const auto& content) { addContent(content); }, value.content);
    }

private:
    void addContent(std::monostate) {}
    void addContent(bool flag) { addNumber(flag, 2); }
    void addContent(std::int64_t number) { addNumber(static_cast<std::uint64_t>(number), 1); }
    void addContent(std::uint64_t number) { addNumber(number, 1); }
    void addContent(double number) { addNumber(std::bit_cast<std::uint64_t>(number), 4); }
    void addContent(const OLE_CLSID& id) { addNumber(id.data1, 16); }
    void addContent(const UnicodeString& text) {
        digest.add(text);
        bytes += static_cast<std::size_t>(text.length()) / 2;  // a byte can be a character outside the BMP
    }
    void addContent(const OlePropertyBytes& content) {
        for (const unsigned char byte : content) digest.add(byte);
        bytes += content.size();
    }
    void addContent(const OlePropertyElements& content) {
        FUZZ_LAW(content.dimensions.size() <= 31);
        elements += content.values.size();
        for (const OlePropertyValue& value : content.values) {
            FUZZ_LAW(!value.isDamaged && !std::holds_alternative<OlePropertyElements>(value.content));
            add(value);
        }
    }
    void addNumber(std::uint64_t number, std::size_t size) {
        digest.add(number);
        bytes += size;
    }
};

Digest readValues(const OleSummaryInformation& information, std::size_t size) {
    const std::vector<OleProperty> properties = information.readProperties();
    std::size_t rows = 0;
    for (const OleSISection& section : information.getSections()) rows += section.properties.size();
    FUZZ_LAW(properties.size() <= rows);
    Held all;
    for (const OleProperty& property : properties) {
        FUZZ_LAW(property.id != 0 && (property.isNamed || property.name.isEmpty()));
        all.digest.add(property.name);
        all.add(property.value);
    }
    FUZZ_LAW(all.bytes <= 4 * size && all.elements <= std::size_t{1} << 20);
    for (std::size_t i = 0; i < properties.size() && i < 30; ++i) {
        const OleProperty& property = properties[i];
        Held first, again;
        if (property.isNamed && !property.name.isEmpty()) {
            FUZZ_LAW(information.readProperty(property.name).has_value());
        }
        if (property.isNamed) continue;
        const auto found = std::ranges::find_if(
            properties, [&property](const OleProperty& other) { return !other.isNamed && other.id == property.id; });
        const auto value = information.readProperty(property.id);
        FUZZ_LAW(value.has_value());
        first.add(found->value);
        again.add(*value);
        FUZZ_LAW(again.bytes <= 4 * size);
        FUZZ_LAW(found->value.isDamaged || first.digest == again.digest);
        all.digest.add(again.bytes);
    }
    return all.digest;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices input(data, size);
    const bool isSummary = (input.byte() & 1) == 0;
    const std::string bytes(reinterpret_cast<const char*>(input.data()), input.size());
    const LumTest::OleImage image({{isSummary ? u"\5SummaryInformation" : u"\5DocumentSummaryInformation", bytes}});
    std::istringstream in(image.bytes);
    JZStreamIOobj io(&in);
    OleCompFile file;
    FUZZ_LAW(file.OLEopen(&io));
    OleSummaryInformation information;
    const int result =
        isSummary ? information.initSummaryInformation(&file) : information.initDocumentSummaryInformation(&file);
    FUZZ_LAW(result == 1 || result == -1);
    checkSections(information, bytes.size());
    const Digest first = readProperties(information, bytes.size());
    FUZZ_LAW(readProperties(information, bytes.size()) == first);
    const Digest values = readValues(information, bytes.size());
    FUZZ_LAW(readValues(information, bytes.size()) == values);
    OlePropertySet properties;
    FUZZ_LAW(properties.init(&file) == (isSummary ? result : -1));
    return 0;
}
