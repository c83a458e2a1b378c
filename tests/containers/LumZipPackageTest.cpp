#include <gtest/gtest.h>
#include <lumcommon/containers/LumZipFile.h>
#include <lumcommon/core/LumError.h>

#include <malloc.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <vector>

#include <support/ZipBytes.h>
#include "support/TempFolder.h"
#include "support/Utf8.h"

namespace LumCommon {
namespace {

using LumTest::deflatedMember;
using LumTest::utf8;
using LumTest::ZipArchive;
using LumTest::ZipMember;

using Parts = std::vector<std::pair<std::string, std::string>>;

const std::string officeDocumentType =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument";
const std::string wordType = "application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml";

/// @param prefix  with ":", or empty for the default namespace.
std::string relationshipsXml(const std::string& content, const std::string& prefix = "") {
    const std::string declared = prefix.empty() ? "xmlns" : "xmlns:" + prefix.substr(0, prefix.size() - 1);
    return "<?xml version='1.0'?><" + prefix + "Relationships " + declared +
           "='http://schemas.openxmlformats.org/package/2006/relationships'>" + content + "</" + prefix +
           "Relationships>";
}

std::string typesXml(const std::string& content) {
    return "<Types xmlns='http://schemas.openxmlformats.org/package/2006/content-types'>" + content + "</Types>";
}

std::string mainRelationship(const std::string& target) {
    return relationshipsXml("<Relationship Id='r1' Type='" + officeDocumentType + "' Target='" + target + "'/>");
}

std::string overrideOf(const std::string& name, const std::string& type) {
    return "<Override PartName='" + name + "' ContentType='" + type + "'/>";
}

std::string archiveOf(const Parts& parts) {
    ZipArchive archive;
    for (const auto& [name, data] : parts) archive.add(deflatedMember(name, data));
    return archive.bytes();
}

LumZipFile* open(const Parts& parts) { return new LumZipFile(new std::istringstream(archiveOf(parts)), true); }

Parts wordPackage(const std::string& type, const std::string& target = "word/document.xml") {
    return {{"[Content_Types].xml", typesXml(overrideOf("/word/document.xml", type))},
            {"_rels/.rels", mainRelationship(target)},
            {"word/document.xml", "<w/>"}};
}

TEST(LumZipPackage, tellsTheKindOfOfficeDocument) {
    struct KindCase {
        const char* fault;
        Parts parts;
        int kind;
    };
    const KindCase cases[] = {
        {"letters of either case", wordPackage("application/vnd.ms-word.Document.macroEnabled.main+xml"), 0},
        {"a type that goes on", wordPackage(wordType + "+xml"), 0},
        {"a target that climbs", wordPackage(wordType, "../../word/document.xml"), 1},
        {"a target that leads nowhere", wordPackage(wordType, "document.xml"), 0},
        {"no content types", {{"_rels/.rels", mainRelationship("a")}, {"a", ""}}, 0},
        {"no relationships",
         {{"[Content_Types].xml", typesXml(overrideOf("/a", wordType))}, {"a", ""}, {"_rels/a.rels", "<a/>"}},
         0},
        {"a default, and a prefix",
         {{"[Content_Types].xml", typesXml("<Default Extension='x' ContentType='" + wordType + "'/>")},
          {"_rels/.rels", relationshipsXml("<p:Relationship Type='" + officeDocumentType + "' Target='m.x'/>", "p:")},
          {"m.x", ""}},
         1},
    };
    for (const KindCase& c : cases) {
        SCOPED_TRACE(c.fault);
        const std::unique_ptr<LumZipFile> zip(open(c.parts));
        EXPECT_EQ(zip->detectOOXDocument(), c.kind);
        EXPECT_EQ(zip->detectOOXDocument(), c.kind) << "asked again";
        EXPECT_TRUE(c.kind == 0 || zip->getOfficeDocument());
        std::istringstream in(archiveOf(c.parts));
        EXPECT_EQ(LumZipFile::detectOOXDocument(&in), c.kind);
    }
    std::istringstream failed(archiveOf(wordPackage(wordType)));
    failed.setstate(std::ios::failbit);
    EXPECT_EQ(LumZipFile::detectOOXDocument(&failed), 0);
    EXPECT_EQ(LumZipFile::detectOOXDocument(static_cast<std::istream*>(nullptr)), 0);
    EXPECT_EQ(LumZipFile::detectOOXDocument("/no/such/file"), 0);
}

TEST(LumZipPackage, takesTheStrictFormOfRelationshipTypesWhenToldTo) {
    const std::string strict = "http://purl.oclc.org/ooxml/officeDocument/relationships/";
    const std::string transitional = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
    for (const bool isStrict : {true, false}) {
        const std::string& written = isStrict ? strict : transitional;
        const std::string& asked = isStrict ? transitional : strict;
        const std::string properties = isStrict ? "extendedProperties" : "extended-properties";
        const std::unique_ptr<LumZipFile> zip(
            open({{"[Content_Types].xml", typesXml(overrideOf("/m", wordType))},
                  {"_rels/.rels", relationshipsXml("<Relationship Type='" + written +
                                                   "officeDocument' Target='m'/><Relationship Type='" + written +
                                                   properties + "' Target='app.xml'/>")},
                  {"m", ""}}));
        const auto target = [&zip](const std::string& type) {
            return utf8(zip->getRelationshipTargetFromType(UnicodeString::fromUTF8(type)));
        };
        EXPECT_EQ(zip->detectOOXDocument(), isStrict ? 0 : 1);
        EXPECT_EQ(target(asked + "officeDocument"), "");
        zip->setAcceptsStrictPackages(true);
        EXPECT_EQ(zip->detectOOXDocument(), 1);
        EXPECT_EQ(target(asked + "officeDocument"), "m") << "one direction only";
        EXPECT_EQ(target(asked + (isStrict ? "extended-properties" : "extendedProperties")), "app.xml")
            << "a type whose end differs";
        EXPECT_EQ(target(asked + "none") + target("urn:officeDocument"), "");
    }
}

TEST(LumZipPackage, leadsTargetsToTheirEntries) {
    struct TargetCase {
        const char* fault;
        const char* source;  // null: the package
        const char* target;
        const char* mode;  // null: none
        const char* found;
    };
    const TargetCase cases[] = {
        {"from the root in a folder", "word/a.xml", "/word/b.xml", "Internal", "word/b.xml"},
        {"an empty mode is one of its own", "word/a.xml", "b.xml", "", "word/b.xml"},
        {"a sibling of a part in the root", "root.xml", "word/a.xml", nullptr, "word/a.xml"},
        {"up above the root", "word/a.xml", "../../../custom/i.xml", nullptr, "custom/i.xml"},
        {"up from the package", nullptr, "../custom/i.xml", nullptr, "custom/i.xml"},
        {"up and down in the middle", "word/a.xml", "x/./../../custom/i.xml", nullptr, "custom/i.xml"},
        {"a blank in the name", "word/a.xml", "my pic.png", nullptr, "word/my pic.png"},
        {"an escaped blank", "word/a.xml", "my%20pic.png", nullptr, "word/my pic.png"},
        {"an escape in the name itself", "word/a.xml", "p%41.png", nullptr, "word/p%41.png"},
        {"none is there", "word/a.xml", "../none.xml", nullptr, "none.xml"},
        {"a fragment", "word/a.xml", "#here", nullptr, "word/#here"},
        {"a file that claims to be inside", nullptr, "file:///word/a.xml", nullptr, "file:///word/a.xml"},
        {"outside", "word/a.xml", "../b .xml", "External", "../b .xml"},
        {"outside by a mode of its own", "word/a.xml", "/word/b.xml", "internal", "/word/b.xml"},
        {"no target", nullptr, "", nullptr, ""},
    };
    const Parts parts = {{"word/a.xml", ""},   {"word/b.xml", ""},      {"root.xml", ""},
                         {"custom/i.xml", ""}, {"word/my pic.png", ""}, {"word/p%41.png", ""}};
    for (const TargetCase& c : cases) {
        SCOPED_TRACE(c.fault);
        const std::string mode = c.mode ? std::string(" TargetMode='") + c.mode + "'" : "";
        const std::string source = c.source ? c.source : "";
        const std::size_t name = source.rfind('/') + 1;
        Parts all = parts;
        all.emplace_back(
            source.substr(0, name) + "_rels/" + source.substr(name) + ".rels",
            relationshipsXml("<Relationship Id='i' Type='t' Target='" + std::string(c.target) + "'" + mode + "/>"));
        const std::unique_ptr<LumZipFile> zip(open(all));
        LumZipFileEntry* const entry = c.source ? zip->getFileEntry(UnicodeString(c.source)) : nullptr;
        EXPECT_EQ(utf8(zip->getRelationshipTargetFromId(u"i", entry)), c.found);
        EXPECT_EQ(utf8(zip->getRelationshipTargetFromType(u"t", entry)), c.found);
        EXPECT_EQ(utf8(zip->getRelationshipTargetMode(u"i", entry)), c.mode && *c.mode ? c.mode : "Internal");
        EXPECT_EQ(
            utf8(zip->getRelationshipTargetFromId(u"i", zip->getFileEntry(c.source ? u"custom/i.xml" : u"root.xml"))),
            "")
            << "one source's relationships are another's";
    }
}

std::vector<std::string> splitAtTabs(const std::string& line) {
    std::vector<std::string> fields;
    std::istringstream in(line + "\t");
    for (std::string field; std::getline(in, field, '\t');) fields.push_back(field);
    return fields;
}

/// Compares with a row that another reader of packages wrote; rows of members are not for here.
void expectAsJudged(LumZipFile& zip, const std::vector<std::string>& row) {
    const auto text = [&row](std::size_t field) { return UnicodeString::fromUTF8(row.at(field)); };
    if (row[0] == "relationship") {
        LumZipFileEntry* const source = row[1].empty() ? nullptr : zip.getFileEntry(text(1));
        EXPECT_EQ(utf8(zip.getRelationshipTargetFromId(text(2), source)), row.at(5));
        EXPECT_EQ(utf8(zip.getRelationshipTargetMode(text(2), source)), row[4]);
        EXPECT_NE(utf8(zip.getRelationshipTargetFromType(text(3), source)), "");
    } else if (row[0] == "type") {
        EXPECT_EQ(utf8(zip.getContentType(zip.getFileEntry(text(1)))), row.at(2));
    } else if (row[0] == "main") {
        EXPECT_EQ(zip.getOfficeDocument(), zip.getFileEntry(text(1)));
    } else if (row[0] == "kind") {
        EXPECT_EQ(std::to_string(zip.detectOOXDocument()), row.at(1));
    }
}

TEST(LumZipPackage, agreesWithAnotherReaderOfTheDocumentsOfAnOfficeSuite) {
    const std::filesystem::path folder(LUM_TEST_DATA "/office");
    int relationships = 0;
    for (const auto& file : std::filesystem::directory_iterator(folder / "judge")) {
        const std::string document = folder / file.path().stem();  // without .tsv
        if (!LumZipFile::isZipFile(document.c_str())) continue;
        LumZipFile zip(document.c_str());
        std::ifstream judged(file.path());
        for (std::string line; std::getline(judged, line);) {
            SCOPED_TRACE(document + ": " + line);
            const std::vector<std::string> row = splitAtTabs(line);
            expectAsJudged(zip, row);
            if (row[0] == "relationship") ++relationships;
        }
    }
    EXPECT_GT(relationships, 200);
}

TEST(LumZipPackage, readsRelationshipsAsTheyCome) {
    const std::unique_ptr<LumZipFile> zip(
        open({{"_rels/.rels",
               relationshipsXml(
                   "<Relationship Id='a' Type='t' Target='1'/><Relationship Id='a' Type='t' Target='2' "
                   "TargetMode='External'/>"
                   "<Relationship Id='b' Type='t' Target='3' TargetMode='External'/><Relationship Id='c' Type='u'/>"
                   "<Relationship Type='only' Target='4'/><Relationship Id='only' Target='5'/>"
                   "<x><Relationship Id='deep' Target='6'/></x><Relationship xmlns='urn:x' Id='other' Target='7'/>"
                   "<Relationship xmlns:x='urn:x' x:Id='p' Id='q' Type='v' x:Target='8' Target='9'/>")}}));
    struct Row {
        const char* fault;
        const char16_t* id;
        const char* target;
    };
    const Row rows[] = {
        {"the first of an id", u"a", "1"},
        {"the second of a type", u"b", "3"},
        {"no target", u"c", ""},
        {"no type", u"only", "5"},
        {"an element deeper down", u"deep", ""},
        {"an element of another namespace", u"other", ""},
        {"an attribute with prefix", u"p", ""},
        {"attributes that differ in their prefix", u"q", "9"},
        {"letters of either case", u"A", ""},
    };
    for (const Row& row : rows) EXPECT_EQ(utf8(zip->getRelationshipTargetFromId(row.id)), row.target) << row.fault;
    EXPECT_EQ(utf8(zip->getRelationshipTargetFromType(u"t")), "1") << "the first of a type";
    EXPECT_EQ(utf8(zip->getRelationshipTargetFromType(u"only")), "4") << "no id";
    EXPECT_EQ(utf8(zip->getRelationshipTargetMode(u"a", nullptr)), "Internal");
    EXPECT_EQ(utf8(zip->getRelationshipTargetMode(u"b", nullptr)), "External");
    EXPECT_EQ(utf8(zip->getRelationshipTargetMode(u"none", nullptr)), "Internal");
    const std::string none = "<Relationships><Relationship Id='a' Target='1'/></Relationships>";
    const std::unique_ptr<LumZipFile> other(open({{"_rels/.rels", none}}));
    EXPECT_EQ(utf8(other->getRelationshipTargetFromId(u"a", nullptr)), "") << "a root of no namespace";
}

TEST(LumZipPackage, givesContentTypesByOverrideThenByExtension) {
    const std::string defaults =
        "<Default Extension='xml' ContentType='old'/><Default Extension='xml' ContentType='def'/>"
        "<Default ContentType='none'/><Default Extension='XML' ContentType='upper'/><Default Extension='' "
        "ContentType='dot'/>";
    const std::string overrides = overrideOf("/a.xml", "first") + overrideOf("/a.xml", "over") +
                                  overrideOf("b.xml", "bare") + overrideOf("//c.xml", "two") +
                                  overrideOf("/A.xml", "case") + overrideOf("/none.xml", "x") +
                                  overrideOf("/e.xml", "") + "<Override PartName='/g.xml'/>";
    const char* const expected[][2] = {{"a.xml", "over"},  {"b.xml", "bare"},      {"c.xml", "def"},
                                       {"d.XML", "upper"}, {"e.xml", "def"},       {"f.Xml", ""},
                                       {"g.xml", "def"},   {"noextension", ""},    {"a.b/name", ""},
                                       {"dot.", "dot"},    {"two.dots.xml", "def"}};
    for (const std::string& content : {defaults + overrides, overrides + defaults}) {
        Parts parts = {{"[Content_Types].xml", typesXml(content)}};
        for (const auto& [name, type] : expected) parts.emplace_back(name, "");
        const std::unique_ptr<LumZipFile> zip(open(parts));
        EXPECT_EQ(utf8(zip->getFileEntry(u"a.xml")->getContentType()), "") << "not asked for yet";
        EXPECT_EQ(utf8(zip->getContentType(nullptr)), "");
        for (const auto& [name, type] : expected) {
            LumZipFileEntry* const entry = zip->getFileEntry(UnicodeString(name));
            EXPECT_EQ(utf8(zip->getContentType(entry)), type) << name;
            EXPECT_EQ(utf8(entry->getContentType()), type) << name;
        }
        std::istringstream second(archiveOf({{"a.xml", ""}}));
        zip->open(&second, false);
        EXPECT_EQ(utf8(zip->getContentType(zip->getFileEntry(0u))), "") << "those of the archive before";
    }
}

unsigned errorOf(auto action) {
    try {
        action();
        return 0;
    } catch (const LumError& error) {
        return error.code;
    }
}

TEST(LumZipPackage, damagedPartsThrowEachTimeAndLeaveTheRest) {
    const std::string cut = mainRelationship("word/document.xml").substr(0, 150);
    for (const std::string& damaged : {std::string(), std::string("text"), cut, mainRelationship("a") + "<b/>"}) {
        SCOPED_TRACE(damaged);
        Parts parts = wordPackage(wordType);
        parts[1].second = damaged;
        std::unique_ptr<LumZipFile> zip(open(parts));
        const auto detect = [&] { zip->detectOOXDocument(); };
        const unsigned code = errorOf(detect);
        EXPECT_NE(code, 0u);
        EXPECT_EQ(errorOf(detect), code) << "what was read before the damage is believed the second time";
        EXPECT_EQ(errorOf([&] { zip->makeRelationships(nullptr); }), code);
        EXPECT_EQ(utf8(zip->getContentType(zip->getFileEntry(2u))), wordType);
        EXPECT_EQ(errorOf([&] { zip->makeRelationships(zip->getFileEntry(2u)); }), 0u);

        parts = wordPackage(wordType);
        parts[0].second = damaged;
        zip.reset(open(parts));
        EXPECT_EQ(zip->getOfficeDocument(), zip->getFileEntry(2u));
        EXPECT_EQ(errorOf([&] { zip->setContentType(); }), code);
        EXPECT_EQ(errorOf(detect), code);
        EXPECT_EQ(utf8(zip->getFileEntry(2u)->getContentType()), "");
    }
}

TEST(LumZipPackage, opensNothingOutsideTheArchive) {
    const LumTest::TempFolder folder;
    const std::string secret = folder.getPath() + "secret";
    LumTest::writeFile(secret, "<Relationship Id='s' Target='leaked'/>");
    LumTest::writeFile(folder.getPath() + "dtd", "<!ENTITY x 'leaked'>");
    const std::string start = "<?xml version='1.0'?><!DOCTYPE Relationships ";
    const std::string body = mainRelationship("a").substr(21);
    const std::string parameter = start + "[<!ENTITY % p SYSTEM '" + secret + "'>%p;]>" + body;
    const std::string general = start + "[<!ENTITY x SYSTEM '" + secret + "'>]>" +
                                body.substr(0, body.find("<Relationship ")) + "&x;</Relationships>";
    const std::string remote = start + "[<!ENTITY % p SYSTEM 'http://127.0.0.1:1/'>%p;]>" + body;
    const std::string dtd = start + "SYSTEM '" + folder.getPath() + "dtd'>" + body;
    const std::pair<std::string, unsigned> rows[] = {{parameter, 0x1003}, {general, 0x1003}, {remote, 0}, {dtd, 0}};
    for (const auto& [xml, code] : rows) {
        SCOPED_TRACE(xml);
        const std::unique_ptr<LumZipFile> zip(open({{"_rels/.rels", xml}}));
        EXPECT_EQ(errorOf([&] { zip->makeRelationships(nullptr); }), code);
        if (code != 0) continue;
        EXPECT_EQ(utf8(zip->getRelationshipTargetFromId(u"r1", nullptr)), "a");
    }
}

TEST(LumZipPackage, longNamesDoNotMultiplyRelationships) {
    // 20,000 relationships of a part whose name has 60,000 characters: 2.4 GB, were the targets resolved and kept.
    std::string content;
    for (int i = 0; i < 20000; ++i) content += "<Relationship Id='r" + std::to_string(i) + "' Type='t' Target='x'/>";
    const std::string folder(60000, 'f');
    const std::unique_ptr<LumZipFile> zip(
        open({{folder + "/a", ""}, {folder + "/x", ""}, {folder + "/_rels/a.rels", relationshipsXml(content)}}));
    const std::size_t before = ::mallinfo2().uordblks;  // also what does not come from operator new
    EXPECT_EQ(utf8(zip->getRelationshipTargetFromId(u"r19999", zip->getFileEntry(0u))), folder + "/x");
    EXPECT_LT(::mallinfo2().uordblks - before, std::size_t{100'000'000});
}

}  // namespace
}  // namespace LumCommon
