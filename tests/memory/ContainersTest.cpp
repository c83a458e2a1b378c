// What containers/ does when memory runs out.

#include <containers/OleBytes.h>
#include <support/FailingMemory.h>

namespace {

using namespace LumCommon;
using LumTest::contentOrFailure;
using LumTest::insist;
using LumTest::utf8;

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
    const std::string path;
    LumTest::OleImage image{{{.name = u"Workbook", .data = std::string(100 * 512, 'w')}}};
    LumStrStream bytes{image.bytes.data(), image.bytes.size(), false};
    JZStreamIOobj io{&bytes};
    LumZipFile zip;
    OleCompFile ole;
    std::unique_ptr<OleStream> stream;

    explicit Opened(const char* file) : path(file ? LUM_TEST_DATA + std::string(file) : "") {
        zip.open(path.c_str());
        static_cast<void>(path.empty() ? ole.OLEopen(&io) : ole.OLEopen(path.c_str()));
        stream.reset(ole.OLEopenStream(&workbook));
    }
};

const LumTest::MemoryRow<Opened> rows[] = {
    {"an archive opens shorter",
     [](Opened& opened) {
         LumZipFile zip(opened.path.c_str());
         return tell(zip);
     },
     "/containers/infozip-streamed.zip"},
    {"an archive is no archive, or shorter where its directory is needed",
     [](Opened& opened) {
         insist(LumZipFile::isZipFile(opened.path.c_str()));
         auto in = std::make_unique<std::ifstream>(opened.path, std::ios_base::binary);
         insist(in->is_open());
         opened.zip.open(in.release(), true);
         return tell(opened.zip);
     },
     "/office/streamed-java.xlsx"},
    {"a member stays empty after a failure", [](Opened& opened) { return tell(opened.zip); },
     "/containers/infozip.zip"},
    {"a part of a package is not found", [](Opened& opened) { return tellPackage(opened.zip); }, "/office/latin.docx"},
    {"a kind of document is another",
     [](Opened& opened) {
         const int kind = LumZipFile::detectOOXDocument(opened.path.c_str());
         std::ifstream compound(LUM_TEST_DATA "/office/latin.xls", std::ios_base::binary);
         insist(compound.is_open());
         return std::to_string(kind) + std::to_string(OleCompFile::detectOLEDocument(compound));
     },
     "/office/cyrillic.xlsx"},
    {"a compound file or a stream in it is not found",
     [](Opened& opened) {
         OleCompFile file;
         insist(file.OLEopen(opened.path.c_str()));
         const std::unique_ptr<OleStream> stream(file.OLEopenStream(&workbook));
         return std::to_string(file.getDocumentKind()) + tell(*stream);
     },
     "/office/cyrillic.xls"},
    {"a stream ends where its chain found no memory", [](Opened& opened) { return tell(*opened.stream); }},
    {"a property is absent", [](Opened& opened) { return tellProperties(opened.ole); }, "/office/cyrillic.xls"},
};

TEST(ContainersMemory, failsAloud) { LumTest::forEveryFailure(rows); }

}  // namespace
