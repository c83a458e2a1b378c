#include <lumcommon/lumcommon.h>

#include <gtest/gtest.h>

#include <malloc.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "support/Recipe.h"
#include "support/TempFolder.h"
#include "support/Utf8.h"
#include "support/ZipBytes.h"

namespace LumCommon {
namespace {

using LumTest::deflatedMember;
using LumTest::utf8;
using Words = std::vector<std::string>;

/// The answer to a question: its kind, and what it is about.
std::string askedOnce(LumZipFile& zip, const Words& question) {
    const std::string& kind = question[0];
    LumZipFileEntry* const entry =
        question.size() > 1 && !question[1].empty() ? zip.getFileEntry(UnicodeString::fromUTF8(question[1])) : nullptr;
    const UnicodeString key = question.size() > 2 ? UnicodeString::fromUTF8(question[2]) : UnicodeString();
    if (kind == "kind") return std::to_string(zip.detectOOXDocument());
    if (kind == "main") return zip.getOfficeDocument() ? utf8(zip.getOfficeDocument()->getFileName()) : "";
    if (kind == "target") return utf8(zip.getRelationshipTargetFromId(key, entry));
    if (kind == "first") return utf8(zip.getRelationshipTargetFromType(key, entry));
    if (kind == "mode") return utf8(zip.getRelationshipTargetMode(key, entry));
    if (kind == "type") return utf8(zip.getContentType(entry));
    if (kind == "known") return utf8(entry->getContentType());
    if (kind == "strict") zip.setAcceptsStrictPackages(true);
    if (kind == "rels") zip.makeRelationships(entry);
    if (kind == "types") zip.setContentType();
    return "read";
}

void expectAnswer(LumZipFile& zip, const Words& question, const std::string& expected) {
    for (const char* const when : {"asked", "asked again"}) {
        std::string answer;
        try {
            answer = askedOnce(zip, question);
        } catch (const LumError& error) {
            std::ostringstream code;
            code << "error " << std::hex << error.code;
            answer = code.str();
        }
        EXPECT_EQ(answer, expected == "(none)" ? "" : expected) << when << ": " << testing::PrintToString(question);
    }
}

TEST(LumZipPackage, answersAsTheRowsSay) {
    const LumTest::TempFolder folder;
    LumTest::writeFile(folder.getPath() + "secret", "<Relationship Id='s' Target='leaked'/>");
    LumTest::writeFile(folder.getPath() + "dtd", "<!ENTITY x 'leaked'>");
    std::map<std::string, std::string> values = {{"folder", folder.getPath()}};
    std::string fault;
    LumTest::ZipArchive archive;
    std::unique_ptr<LumZipFile> zip;
    for (Words row : LumTest::readTextRows("containers/packages.txt", 0)) {
        for (std::string& field : row) field = LumTest::fillIn(field, values);
        SCOPED_TRACE(fault);
        if (row[0].starts_with("= ")) {
            values[row[0].substr(2)] = row[1];
            continue;
        }
        if (row[0] == "package") {
            fault = row[1];
            archive = {};
            zip.reset();
            continue;
        }
        if (row[0] == "part") {
            archive.add(deflatedMember(row[1], row.size() > 2 ? row[2] : ""));
            continue;
        }
        if (!zip) zip = std::make_unique<LumZipFile>(new std::istringstream(archive.bytes()), true);
        const std::string expected = row.size() > 1 ? row.back() : "read";
        row.resize(std::max<std::size_t>(row.size(), 2) - 1);
        expectAnswer(*zip, row, expected);
    }
}

TEST(LumZipPackage, opensDocumentsAndForgetsTheOneBefore) {
    const std::string document = LUM_TEST_DATA "/office/latin.docx";
    EXPECT_EQ(LumZipFile::detectOOXDocument(document.c_str()), 1);
    std::ifstream in(document, std::ios::binary);
    EXPECT_EQ(LumZipFile::detectOOXDocument(&in), 1);
    LumZipFile zip(document.c_str());
    EXPECT_NE(utf8(zip.getContentType(zip.getFileEntry(u"word/document.xml"))), "");
    EXPECT_EQ(utf8(zip.getContentType(nullptr)), "");
    std::istringstream second(deflatedMember("word/document.xml", "").bytes());
    zip.open(&second, false);
    EXPECT_EQ(utf8(zip.getContentType(zip.getFileEntry(0u))), "") << "those of the archive before";
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
            const Words row = LumTest::splitAt('\t', line + "\t");
            if (row[0] == "relationship") {  // source, id, type, mode, target
                expectAnswer(zip, {"target", row[1], row[2]}, row.at(5));
                expectAnswer(zip, {"mode", row[1], row[2]}, row[4]);
                EXPECT_NE(askedOnce(zip, {"first", row[1], row[3]}), "");
                ++relationships;
            } else if (row[0] == "type" || row[0] == "main" || row[0] == "kind") {
                expectAnswer(zip, {row[0], row.size() > 2 ? row[1] : ""}, row.back());
            }
        }
    }
    EXPECT_GT(relationships, 200);
}

TEST(LumZipPackage, longNamesDoNotMultiplyRelationships) {
    // 20,000 relationships of a part whose name has 60,000 characters: 2.4 GB, were the targets resolved and kept.
    std::string content = "<Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'>";
    for (int i = 0; i < 20000; ++i) content += "<Relationship Id='r" + std::to_string(i) + "' Type='t' Target='x'/>";
    const std::string folder(60000, 'f');
    LumZipFile zip(
        new std::istringstream(deflatedMember(folder + "/a", "").bytes() + deflatedMember(folder + "/x", "").bytes() +
                               deflatedMember(folder + "/_rels/a.rels", content + "</Relationships>").bytes()),
        true);
    const std::size_t before = ::mallinfo2().uordblks;  // also what does not come from operator new
    EXPECT_EQ(utf8(zip.getRelationshipTargetFromId(u"r19999", zip.getFileEntry(0u))), folder + "/x");
    EXPECT_LT(::mallinfo2().uordblks - before, std::size_t{100'000'000});
}

}  // namespace
}  // namespace LumCommon
