// What containers/ does when memory runs out.

#include <containers/OleBytes.h>
#include <lumcommon/containers/LumOleStreamBuf.h>
#include <lumcommon/containers/LumZipFile.h>
#include <lumcommon/containers/OleCompFile.h>
#include <lumcommon/containers/OleStream.h>
#include <lumcommon/containers/office/OlePropertySet.h>
#include <lumcommon/containers/office/OleSummaryInformation.h>
#include <lumcommon/streams/JZIOobj.h>
#include <lumcommon/streams/LumStrStream.h>
#include <lumcommon/values/LumValue.h>
#include <support/FailingMemory.h>
#include <support/Utf8.h>

#include <fstream>
#include <memory>

namespace {

using namespace LumCommon;
using LumTest::contentOrFailure;
using LumTest::utf8;

void insist(bool isDone) {
    if (!isDone) throw std::bad_alloc();
}

std::string tell(LumZipFile& zip) {
    std::string told;
    for (unsigned i = 0; i < zip.getFileEntryCount(); ++i) {
        LumZipFileEntry& entry = *zip.getFileEntry(i);
        const auto raw = entry.readCompressedData();
        const std::unique_ptr<std::istream> own(entry.getCompressedStream(true));
        told += utf8(entry.getFileName()) + std::to_string(raw.size()) + contentOrFailure(own.get()).substr(0, 9) +
                contentOrFailure(entry.getUncompressedStream(false));
    }
    return told;
}

std::string tellPackage(LumZipFile& zip) {
    std::string told = std::to_string(zip.detectOOXDocument());
    LumZipFileEntry* const part = zip.getOfficeDocument();
    told += part ? utf8(part->getFileName()) + utf8(zip.getContentType(part)) : "no part";
    for (const char16_t* const id : {u"rId1", u"rId2", u"rId3"}) {
        told += utf8(zip.getRelationshipTargetFromId(id, part)) + utf8(zip.getRelationshipTargetMode(id, part));
    }
    return told;
}

std::string tell(OleStream& stream) {
    insist(stream.OLEseek(0, SEEK_SET) >= 0);
    LumOleStreamBuf buffer(&stream, -1);
    std::istream in(&buffer);
    return contentOrFailure(&in);
}

std::string tellProperties(OleCompFile& file) {
    std::string told;
    OlePropertySet set;
    insist(set.init(&file) == 1);
    told += utf8(set.getTitle()) + utf8(set.getSubject()) + utf8(set.getAuthor()) + utf8(set.getKeywords());
    OleSummaryInformation summary, more;
    insist(summary.initSummaryInformation(&file) == 1 && more.initDocumentSummaryInformation(&file) == 1);
    LumValue title;
    insist(summary.getProperty(2, title) == 1);
    told += utf8(title.toString());
    for (const OleSummaryInformation* const each : {&summary, &more}) {
        for (const OleProperty& property : each->readProperties()) {
            const auto* const text = std::get_if<UnicodeString>(&property.value.content);
            told += std::to_string(property.id) + utf8(property.name) + (text ? utf8(*text) : "-");
        }
    }
    std::vector<UnicodeString> links;
    more.getHyperLinks(links);
    for (const UnicodeString& link : links) told += utf8(link);
    const auto named = more.readProperty(UnicodeString(u"CHECKED BY"));
    return told + (named ? "named" : "not named");
}

const OleDirPath workbook({"workBOOK"});

/// Opened with memory enough: a file, or a compound file in memory with a stream of a hundred sectors.
struct Opened {
    LumTest::OleImage image{{{.name = u"Workbook", .data = std::string(100 * 512, 'w')}}};
    LumStrStream bytes{image.bytes.data(), image.bytes.size(), false};
    JZStreamIOobj io{&bytes};
    LumZipFile zip;
    OleCompFile ole;
    std::unique_ptr<OleStream> stream;

    explicit Opened(const std::string& path) {
        zip.open(path.c_str());
        static_cast<void>(path.empty() ? ole.OLEopen(&io) : ole.OLEopen(path.c_str()));
        stream.reset(ole.OLEopenStream(&workbook));
    }
};

struct Row {
    const char* fault;
    const char* file;
    std::string (*operation)(Opened& opened, const std::string& path);
};
const Row rows[] = {
    {"an archive opens shorter", "containers/infozip-streamed.zip",
     [](Opened&, const std::string& path) {
         LumZipFile zip(path.c_str());
         return tell(zip);
     }},
    {"an archive is no archive, or shorter where its directory is needed", "office/streamed-java.xlsx",
     [](Opened&, const std::string& path) {
         insist(LumZipFile::isZipFile(path.c_str()));
         auto in = std::make_unique<std::ifstream>(path, std::ios_base::binary);
         insist(in->is_open());
         LumZipFile zip;
         zip.open(in.release(), true);
         return tell(zip);
     }},
    {"a member stays empty after a failure", "containers/infozip.zip",
     [](Opened& opened, const std::string&) { return tell(opened.zip); }},
    {"a part of a package is not found", "office/latin.docx",
     [](Opened& opened, const std::string&) { return tellPackage(opened.zip); }},
    {"a kind of document is another", "office/cyrillic.xlsx",
     [](Opened&, const std::string& path) {
         const int kind = LumZipFile::detectOOXDocument(path.c_str());
         std::ifstream compound(LUM_TEST_DATA "/office/latin.xls", std::ios_base::binary);
         insist(compound.is_open());
         return std::to_string(kind) + std::to_string(OleCompFile::detectOLEDocument(compound));
     }},
    {"a compound file or a stream in it is not found", "office/cyrillic.xls",
     [](Opened&, const std::string& path) {
         OleCompFile file;
         insist(file.OLEopen(path.c_str()));
         const std::unique_ptr<OleStream> stream(file.OLEopenStream(&workbook));
         return std::to_string(file.getDocumentKind()) + tell(*stream);
     }},
    {"a stream ends where its chain found no memory", "",
     [](Opened& opened, const std::string&) { return tell(*opened.stream); }},
    {"a property is absent", "office/cyrillic.xls",
     [](Opened& opened, const std::string&) { return tellProperties(opened.ole); }},
};

TEST(ContainersMemory, failsAloud) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const std::string path = *row.file ? LUM_TEST_DATA "/" + std::string(row.file) : "";
        const auto make = [&] { return std::make_unique<Opened>(path); };
        LumTest::forEveryFailure(make, [&](std::unique_ptr<Opened>& opened) { return row.operation(*opened, path); });
    }
}

}  // namespace
