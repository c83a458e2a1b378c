#include <lumcommon/lumcommon.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <map>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "OleBytes.h"
#include "support/Recipe.h"
#include "support/Sweeps.h"
#include "support/TempFolder.h"

using namespace LumCommon;
using LumTest::OleImage;
using LumTest::OleLayout;
using LumTest::OleNode;
using LumTest::patternBytes;
using LumTest::utf8;

namespace {

/// A compound file in memory, opened.
struct Opened {
    explicit Opened(const std::string& bytes) : in(bytes), io(&in), isOpen(file.OLEopen(&io)) {}
    explicit Opened(const OleImage& image) : Opened(image.bytes) {}

    using StreamPtr = std::unique_ptr<OleStream>;
    StreamPtr stream(const OleDirPath& path) { return StreamPtr(file.OLEopenStream(&path)); }
    long index(const OleDirPath& path) { return file.getDirIndex(&path); }
    std::string read(const OleDirPath& path) {
        const StreamPtr opened = stream(path);
        if (!opened) return "no stream";
        std::string result, piece(1000, '\0');
        unsigned got = 0;
        while ((got = opened->OLEread(reinterpret_cast<unsigned char*>(piece.data()), 1000)) != 0) {
            result.append(piece, 0, got);
        }
        return result;
    }

    std::istringstream in;
    JZStreamIOobj io;
    OleCompFile file;
    bool isOpen;
};

OleLayout layoutOf(const std::string& text) {
    const std::map<std::string, std::uint32_t OleLayout::*> fields = {
        {"shift", &OleLayout::sectorShift},      {"mini", &OleLayout::miniSectorShift},
        {"version", &OleLayout::version},        {"cutoff", &OleLayout::cutoff},
        {"leading", &OleLayout::leadingSectors}, {"trailing", &OleLayout::trailingSectors}};
    OleLayout layout{.littleEndian = !text.starts_with("big")};
    for (const std::string& word : LumTest::splitAt(' ', text)) {
        const std::vector<std::string> sides = LumTest::splitAt('=', word);
        if (sides.size() > 1)
            layout.*fields.at(sides[0]) = static_cast<std::uint32_t>(std::stoul(sides[1], nullptr, 0));
    }
    return layout;
}

using Streams = std::map<std::string, std::string>;

/// The entries from `at` on, up to what closes them; the data of streams go to `streams` by their paths, in capitals.
std::vector<OleNode> treeOf(const std::string& text, std::size_t& at, const std::string& folder, Streams& streams) {
    std::vector<OleNode> nodes;
    while (at < text.size() && text[at] != '}') {
        const std::size_t end = text.find_first_of(":{", at);
        const UnicodeString units = UnicodeString::fromUTF8(text.substr(at, end - at));
        const std::string path = folder + utf8(UnicodeString(units).toUpper(""));
        nodes.push_back({.name = {units.getBuffer(), static_cast<std::size_t>(units.length())}});
        at = end + 1;
        if (text[end] == '{') {
            nodes.back().type = 1;
            nodes.back().children = treeOf(text, at, path + "/", streams);
            ++at;
        } else {
            const std::size_t size = std::stoul(text.substr(at));
            nodes.back().data = streams[path] = patternBytes(size, static_cast<unsigned>(size));
        }
        at = std::min(text.find_first_of(",}", at), text.size());
        if (text[at] == ',') at += 2;
    }
    return nodes;
}

void damage(OleImage& image, const std::string& damages) {
    const std::map<std::string, std::uint32_t> sectors = {{"directory", image.firstDirectory},
                                                          {"minifat", image.firstMiniFat},
                                                          {"difat", image.firstDifat},
                                                          {"root", image.startOf(0)},
                                                          {"large", image.startOf(2)}};
    const auto numberOf = [&sectors](const std::string& sum) {
        std::uint32_t number = 0;
        for (const std::string& term : LumTest::splitAt('+', sum)) {
            if (term.empty()) continue;
            const auto named = sectors.find(term);
            number += named != sectors.end() ? named->second : static_cast<std::uint32_t>(std::stoul(term, nullptr, 0));
        }
        return number;
    };
    const std::regex form(R"((?:(\w+)\((.+)\))?(.*)=([^:]+):?(.*))");  // table, place in it, offset, value, its width
    for (const std::string& change : LumTest::splitAt(' ', damages)) {
        std::smatch parts;
        ASSERT_TRUE(std::regex_match(change, parts, form)) << change;
        const std::uint32_t place = numberOf(parts[2]);
        std::size_t offset = numberOf(parts[3]);
        if (parts[1] == "fat") offset += image.fatOffset(place);
        if (parts[1] == "minifat") offset += image.miniFatOffset(place);
        if (parts[1] == "entry") offset += image.entryOffset(place);
        if (parts[1] == "sector") offset += image.sectorOffset(place);
        image.set(offset, numberOf(parts[4]), parts[5].length() != 0 ? numberOf(parts[5]) : 4);
    }
}

TEST(OleCompFile, readsWhatTheRowsSay) {
    const icu::Locale before = icu::Locale::getDefault();
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale::setDefault(icu::Locale("tr"), status);  // names are compared by no language
    for (auto row : LumTest::readTextRows("containers/compound.txt", 5)) {
        SCOPED_TRACE(row[0]);
        std::size_t at = 0;
        Streams streams;
        const OleLayout layout = layoutOf(row[1]);
        OleImage image(treeOf(row[2], at, "", streams), layout);
        damage(image, row[3]);
        Opened opened(image);
        const bool isClosed = row[4].starts_with("closed");
        EXPECT_EQ(opened.isOpen, !isClosed);
        EXPECT_TRUE(isClosed || opened.file.isLittleEndian() == layout.littleEndian);
        EXPECT_EQ(opened.index({"none"}), -1);
        for (const std::string& difference : LumTest::splitAt(',', row[4])) {
            const std::string name = difference.substr(0, difference.find('='));
            const std::string value = difference.substr(std::min(name.size() + 1, difference.size()));
            if (name == "closed") continue;
            if (name == "kind") {
                std::istringstream in(image.bytes);
                EXPECT_EQ(OleCompFile::detectOLEDocument(in), std::stoi(value));
                in.clear();
                in.seekg(0);
                EXPECT_TRUE(OleCompFile::isOLEUri(in));
            } else if (name == "loose") {
                EXPECT_EQ(opened.file.getDocumentKind(), 0);
                opened.file.setAcceptsLooseFiles(true);
                EXPECT_EQ(opened.file.OLEopen(&opened.io), value != "0");
                EXPECT_EQ(opened.file.getDocumentKind(), std::stoi(value));
            } else {
                std::string& data = streams.at(utf8(UnicodeString::fromUTF8(name).toUpper("")));
                data = value == "none" ? "no stream" : data.substr(0, std::stoul(value));
            }
        }
        for (const auto& [path, data] : streams) {
            EXPECT_TRUE(opened.read(LumTest::splitAt('/', path)) == (opened.file.isOpen() ? data : "no stream"))
                << path;
        }
    }
    icu::Locale::setDefault(before, status);
}

TEST(OleCompFile, givesTheFieldsOfEntries) {
    for (const bool littleEndian : {true, false}) {
        Opened opened(OleImage({{.name = u"\u65e5\u672c", .children = {{u"leaf", patternBytes(5000)}}, .type = 1}},
                               {.littleEndian = littleEndian}));
        EXPECT_EQ(opened.file.getVersion(), littleEndian ? "03 00" : "00 03");
        const OleDirInfo* const storage = opened.file.getDirInfo(1);
        const OleDirInfo* const leaf = opened.file.getDirInfo(2);
        EXPECT_EQ(storage->getName(), UnicodeString(u"\u65e5\u672c"));
        EXPECT_EQ(storage->getClassId()[0], 'c');
        EXPECT_EQ(storage->getStateBits(), 7u);
        EXPECT_EQ(storage->getCreationTime(), 0x0102030405060708u);
        EXPECT_EQ(storage->getStartSector(), -1);
        EXPECT_EQ(leaf->getSize(), 5000u);
        EXPECT_EQ(leaf->getClassId()[0], 0);
        EXPECT_EQ(opened.file.getNextBlock(leaf->getStartSector(), false), leaf->getStartSector() + 1);
        EXPECT_EQ(opened.file.getNextBlock(1 << 30, false), -1);
        EXPECT_EQ(opened.file.getNextBlock(-2, true), -1);
        EXPECT_TRUE(opened.file.readBlock(leaf->getStartSector()));
        EXPECT_EQ(std::string(opened.file.getBlock().data(), 512), patternBytes(5000).substr(0, 512));
        EXPECT_FALSE(opened.file.readBlock(-1));
        EXPECT_EQ(opened.file.getDirInfo(-1), nullptr);
        EXPECT_EQ(opened.file.getDirInfo(opened.file.getDirCount()), nullptr);
        EXPECT_EQ(opened.index({"\xE6\x97\xA5\xE6\x9C\xAC", "LEAF"}), 2);
        EXPECT_EQ(opened.index({"leaf"}), -1);
        EXPECT_EQ(opened.index({}), 0);
        EXPECT_EQ(opened.stream({"\xE6\x97\xA5\xE6\x9C\xAC"}), nullptr) << "a storage is no stream";
        EXPECT_EQ(opened.file.OLEopenStream(nullptr), nullptr);
        EXPECT_EQ(opened.file.findDirEntryByName(nullptr, "leaf"), -1);
    }
}

TEST(OleCompFile, opensFilesAndRefusesWhatIsNone) {
    const LumTest::TempFolder folder;
    const std::string path = folder.getPath() + "a.doc";
    LumTest::writeFile(path, OleImage({{u"Workbook", "x"}}).bytes);
    OleCompFile file;
    EXPECT_TRUE(file.OLEopen(path.c_str()));
    EXPECT_TRUE(file.isOpen());
    EXPECT_EQ(file.getDirCount(), 4);
    EXPECT_FALSE(file.OLEopen((path + "x").c_str()));
    EXPECT_EQ(file.getDirInfo(0), nullptr);
    EXPECT_FALSE(file.OLEopen(static_cast<const char*>(nullptr)));
    EXPECT_FALSE(file.OLEopen(static_cast<JZIOobj*>(nullptr)));
    file.OLEcloseStream(nullptr);
    const LumUri uri(UnicodeString::fromUTF8(path));
    EXPECT_TRUE(OleCompFile::isOLEUri(uri));
    EXPECT_EQ(OleCompFile::detectOLEDocument(uri), 2);
    EXPECT_FALSE(OleCompFile::isOLEUri(LumUri(u"no such file")));
    EXPECT_EQ(OleCompFile::detectOLEDocument(LumUri(u"no such file")), 0);
    std::istringstream zip("PK\3\4"), none("");
    EXPECT_FALSE(OleCompFile::isOLEUri(zip));
    EXPECT_EQ(OleCompFile::detectOLEDocument(none), 0);
}

TEST(OleCompFile, readsASectorOfTheFatOnce) {
    OleImage repeats({{u"last", patternBytes(5000)}}, {.sectorShift = 12, .trailingSectors = 5});
    repeats.set(44, 109 + 5 * 1023).set(68, repeats.firstTrailing);
    for (std::uint32_t i = 0; i < 109; ++i) repeats.set(76 + 4 * i, repeats.firstFat);
    for (std::uint32_t i = 0; i < 5 * 1024; ++i) {
        const bool isLink = i % 1024 == 1023;
        repeats.set(repeats.sectorOffset(repeats.firstTrailing) + 4 * i,
                    isLink ? repeats.firstTrailing + i / 1024 + 1 : repeats.firstFat);
    }
    Opened opened(repeats);
    EXPECT_TRUE(opened.read({"last"}) == patternBytes(5000));
    EXPECT_NE(opened.file.getNextBlock(0, false), -1);
    EXPECT_EQ(opened.file.getNextBlock(2 * 1024, false), -1) << "one FAT sector that is named 5224 times is read again";
}

TEST(OleCompFile, readsWhatATruncatedFileStillHas) {
    const std::string large = patternBytes(4097);
    const OleImage image({{u"large", large}, {u"small", "small"}}, {.sectorShift = 7});
    const auto refuses = [](const std::string& cut) {
        EXPECT_FALSE(Opened(cut).isOpen) << "the FAT is the last thing";
    };
    LumTest::forEachPrefix(image.bytes.substr(0, 520), refuses);
    LumTest::forEachPrefix(image.bytes, refuses, 127);
    // A file with its tables first: what is cut off is the stream.
    OleImage tail({{u"other", patternBytes(4097, 5)}, {u"large", large}});
    const std::uint32_t first = tail.startOf(2);
    const std::string sectors = tail.bytes.substr(tail.sectorOffset(first), 9 * 512);
    const auto moved = static_cast<std::uint32_t>((tail.bytes.size() - 512) / 512);
    tail.set(tail.entryOffset(2) + 116, moved);
    for (std::uint32_t i = 0; i < 9; ++i) tail.set(tail.fatOffset(moved + i), i == 8 ? OleImage::END : moved + i + 1);
    for (std::size_t kept = 0; kept <= large.size(); kept += 97) {
        EXPECT_TRUE(Opened(tail.bytes + sectors.substr(0, kept)).read({"large"}) == large.substr(0, kept));
    }
}

TEST(OleStream, seeks) {
    const auto rows = LumTest::readTextRows("containers/seeks.txt", 5);
    const std::string data = patternBytes(5000);
    for (const std::uint32_t cutoff : {4096u, 6000u}) {  // in sectors and in the mini stream
        const OleImage image({{u"other", patternBytes(4096)}, {u"s", data}}, {.cutoff = cutoff});
        for (const auto& row : rows) {
            SCOPED_TRACE(row[0]);
            Opened opened(image);
            const auto stream = opened.stream({"S"});
            ASSERT_GE(stream->OLEseek(100, SEEK_SET), 0);
            const long offset = stream->OLEseek(std::stoi(row[1]), std::stoi(row[2]));
            EXPECT_EQ(offset >= 0, row[3] == "yes");
            const std::size_t told = std::stoul(row[4]);
            const bool isTellable = told <= static_cast<std::size_t>(std::numeric_limits<long>::max());
            const std::size_t at = isTellable ? told : 100;  // where a long has 32 bits, it stays
            EXPECT_EQ(stream->OLEtell(), static_cast<long>(at));
            unsigned char byte = 0;
            EXPECT_EQ(stream->OLEread(&byte, 1), at < data.size() ? 1u : 0u);
            if (at >= data.size()) continue;
            EXPECT_EQ(static_cast<char>(byte), data[at]);
            EXPECT_TRUE(offset < 0 || image.bytes[static_cast<std::size_t>(offset)] == data[at]);
        }
    }
    Opened opened(OleImage({{u"whole", patternBytes(4096)}, {u"empty", ""}}));
    const auto whole = opened.stream({"whole"});
    EXPECT_GT(whole->OLEseek(0, SEEK_END), 0) << "the end is past the last sector";
    EXPECT_TRUE(whole->GetStreamChainIndex(7));
    EXPECT_FALSE(whole->GetStreamChainIndex(8));
    EXPECT_FALSE(whole->GetStreamChainIndex(-1));
    EXPECT_EQ(opened.stream({"empty"})->OLEseek(0, SEEK_SET), 0);
    EXPECT_FALSE(whole->GetStreamChain(0)) << "the root is no stream";
    EXPECT_EQ(whole->GetStreamSize(), 0u);
}

TEST(OleStream, copiesToAFile) {
    const LumTest::TempFolder folder;
    const std::string path = folder.getPath() + "copy";
    const std::string data = patternBytes(700000);
    OleImage image({{u"s", data}});
    Opened opened(image);
    const auto stream = opened.stream({"s"});
    stream->OLEseek(9, SEEK_SET);
    EXPECT_TRUE(stream->CopyToFile(path.c_str()));
    EXPECT_TRUE(LumTest::readFile(path) == data);
    EXPECT_EQ(stream->OLEtell(), 9);
    EXPECT_FALSE(stream->CopyToFile((folder.getPath() + "no/copy").c_str()));
    image.set(image.entryOffset(1) + 120, 800000);
    EXPECT_FALSE(Opened(image).stream({"s"})->CopyToFile(path.c_str())) << "shorter than it states";
}

TEST(LumOleStreamBuf, endsAtItsLimit) {
    Opened opened(OleImage({{u"s", patternBytes(4097)}}));
    for (const int limit : {-1, 0, 1, 4095, 4096, 4097, 20000}) {
        const auto stream = opened.stream({"s"});
        LumOleStreamBuf buffer(stream.get(), limit);
        const std::string all(std::istreambuf_iterator<char>(&buffer), {});
        EXPECT_TRUE(all == patternBytes(4097).substr(0, static_cast<unsigned>(limit))) << limit;
    }
    LumOleStreamBuf none(nullptr, -1);
    EXPECT_EQ(none.sgetc(), EOF);
}

}  // namespace
