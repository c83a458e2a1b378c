// Any bytes may be a property set. The first byte chooses whether it is the summary information of its document or the
// document summary information; the rest is laid into a sound compound file.
// Laws: what is read is no more than twice the input; asking twice gives the same; a failure leaves the value alone;
// strings are no longer than the input in UTF-16, links no longer in all.

#include <lumcommon/lumcommon.h>

#include <sstream>
#include <string>

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
    OlePropertySet properties;
    FUZZ_LAW(properties.init(&file) == (isSummary ? result : -1));
    return 0;
}
