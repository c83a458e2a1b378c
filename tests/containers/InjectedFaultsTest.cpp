// What becomes of archives, compound files and property sets when reading them fails at any place.

#include <lumcommon/lumcommon.h>

#include <filesystem>
#include <iterator>
#include <memory>
#include <sstream>

#include "OleBytes.h"
#include "support/FaultyStream.h"
#include "support/TempFolder.h"
#include "support/Utf8.h"
#include "support/ZipBytes.h"

using namespace LumCommon;
using LumTest::FaultyStream;
using LumTest::utf8;
using Found = std::map<std::string, std::string>;

namespace {

std::string contentOf(std::istream* in) {
    return in ? std::string{std::istreambuf_iterator<char>(*in), {}} : std::string();
}

Found membersOf(LumZipFile& zip) {
    Found found;
    for (unsigned i = 0; i < zip.getFileEntryCount(); ++i) {
        LumZipFileEntry* const entry = zip.getFileEntry(i);
        const std::string name = utf8(entry->getFileName());
        if (name.empty()) continue;  // its header is cut
        const std::unique_ptr<std::istream> fresh(entry->getUncompressedStream(true));
        found[name + " fresh"] = contentOf(fresh.get());
        found[name + " own"] = contentOf(entry->getUncompressedStream(false));
        const auto raw = entry->readCompressedData();
        found[name + " raw"] = std::string(raw.begin(), raw.end());
    }
    return found;
}

TEST(InjectedFaults, leaveAnArchiveWithTheBeginningsOfItsMembers) {
    const std::string text = LumTest::patternBytes(3000);
    const std::string walked =
        LumTest::ZipMember{.name = "a", .data = text}.bytes() + LumTest::deflatedMember("d/b", text).bytes();
    LumTest::ZipArchive archive;
    archive.add(LumTest::deflatedMember("a", text));
    archive.add({.name = "s", .data = text, .flags = 8, .claimedData = 0});  // only the directory tells its size
    archive.add({.name = "t", .data = text});
    for (const std::string& bytes :
         {walked, archive.bytes("comment"), LumTest::readFile(LUM_TEST_DATA "/office/latin.docx")}) {
        LumTest::forEveryFault(bytes, [](std::istream& in) {
            LumZipFile zip(&in, false);
            Found found = membersOf(zip);
            try {
                if (const int kind = zip.detectOOXDocument()) found["kind"] = std::to_string(kind);
            } catch (const LumError&) {  // a describing part that is cut is not well-formed
            }
            std::istringstream good(LumTest::ZipMember{.name = "again", .data = "x"}.bytes());
            zip.open(&good, false);
            EXPECT_EQ(membersOf(zip).at("again own"), "x") << "the object is of no more use";
            return found;
        });
    }
}

Found streamsOf(OleCompFile& file) {
    Found found;
    for (const char* const name : {"small", "large", "\005SummaryInformation"}) {
        const OleDirPath path{name};
        const std::unique_ptr<OleStream> stream(file.OLEopenStream(&path));
        if (!stream) continue;
        std::string& content = found[name];
        unsigned char piece[700];
        for (unsigned got = 0; (got = stream->OLEread(piece, sizeof piece)) != 0;) {
            content.append(reinterpret_cast<const char*>(piece), got);
        }
    }
    OleSummaryInformation information;
    information.initSummaryInformation(&file);
    LumValue title;
    if (information.getProperty(2, title) == 1) found["title"] = utf8(title.toString());
    for (const OleProperty& each : information.readProperties()) {
        if (!each.value.isDamaged)
            found["property " + std::to_string(each.id)] = std::to_string(each.value.content.index());
    }
    return found;
}

TEST(InjectedFaults, leaveACompoundFileWithTheBeginningsOfItsStreams) {
    const std::string bytes = LumTest::readFile(LUM_TEST_DATA "/office/codepage1252.ole");
    const LumTest::OleImage image({{u"small", LumTest::patternBytes(700)}, {u"large", LumTest::patternBytes(70000)}});
    for (const std::string& each : {image.bytes, bytes}) {
        LumTest::forEveryFault(each, [&](std::istream& in) {
            OleCompFile file;
            JZStreamIOobj io(&in);
            Found found;
            if (file.OLEopen(&io)) found = streamsOf(file);
            std::istringstream good(image.bytes);
            JZStreamIOobj again(&good);
            EXPECT_TRUE(file.OLEopen(&again));
            EXPECT_EQ(streamsOf(file).at("small").size(), 700u) << "the object is of no more use";
            return found;
        });
    }
}

TEST(InjectedFaults, aFileMayShrinkOrVanishWhileItIsRead) {
    const LumTest::TempFolder folder;
    const std::string path = folder.getPath() + "file";
    const std::string text = LumTest::patternBytes(100000);
    for (const bool vanishes : {false, true}) {
        const auto change = [&] {
            if (vanishes) {
                std::filesystem::remove(path);
            } else {
                std::filesystem::resize_file(path, 1000);
            }
        };
        SCOPED_TRACE(vanishes ? "vanishes: what is open stays whole" : "shrinks: its beginning is left");
        LumTest::writeFile(path, LumTest::ZipArchive().add({.name = "t", .data = text}).bytes());
        LumZipFile zip(path.c_str());
        change();
        const std::string member = contentOf(zip.getFileEntry(u"t")->getUncompressedStream(false));
        EXPECT_TRUE(text.starts_with(member) && (member.size() == text.size()) == vanishes);

        LumTest::writeFile(path, LumTest::OleImage({{u"large", text}}).bytes);
        JZFileIOobj io(path.c_str(), "rb");
        OleCompFile file;
        EXPECT_TRUE(file.OLEopen(&io));
        change();
        const std::string large = streamsOf(file)["large"];
        EXPECT_TRUE(text.starts_with(large) && (large.size() == text.size()) == vanishes);

        LumTest::writeFile(path, "<r>" + std::string(300000, ' ') + "<last/></r>");
        LumPtr<LumDocument> document(new LumDocument);
        document->setDeferredLoad(true);
        document->load(UnicodeString::fromUTF8(path));
        change();
        const auto loadAll = [&] {
            while (document->loadNextNode()) {
            }
        };
        if (vanishes) {
            loadAll();
        } else {
            EXPECT_THROW(loadAll(), LumError) << "a torso is taken for the document";
        }
    }
}

}  // namespace
