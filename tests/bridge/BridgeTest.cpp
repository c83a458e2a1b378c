#include <gtest/gtest.h>
#include <lumcommon/bridge/LumException.h>
#include <lumcommon/bridge/LumPrint.h>
#include <lumcommon/bridge/LumText.h>
#include <lumcommon/lumcommon.h>

#include <iomanip>
#include <sstream>

#include "dom/CountedDocument.h"
#include "support/DataRows.h"
#include "support/TempFolder.h"

namespace {

using namespace LumCommon;

TEST(Texts, comeInAndGoOut) {
    const std::pair<UnicodeString, const char*> rows[] = {{toText("caf\xC3\xA9"), "caf\xC3\xA9"},
                                                          {toText(u8"\u00e9"), "\xC3\xA9"},
                                                          {toText(u"\xD800x"), "\xEF\xBF\xBDx"},
                                                          {toText("\xFFx"), "\xEF\xBF\xBDx"},
                                                          {toText(std::string("a\0b", 3)).remove(0, 2), "b"},
                                                          {LumBogusString::BOGUS_VALUE, ""}};
    for (const auto& [text, bytes] : rows) EXPECT_EQ(toUtf8(text), bytes);
    EXPECT_EQ(toUtf8(u"abc") + toUtf8(std::u16string(u"d")) + toUtf8(NAME_block), "abcdblock");
    EXPECT_TRUE(toName("block") == NAME_block && toName(u"block") == NAME_block);
}

TEST(Paths, nameFilesWhateverIsInThem) {
    const LumTest::TempFolder folder;
    const LumPtr<LumDocument> document = makeLum<LumDocument>();
    for (const char* const name : {"100%41.xml", "a b#c?d.xml", "caf\xC3\xA9.xml", "\xFF\xFE.xml", "url(x)"}) {
        SCOPED_TRACE(name);
        const std::filesystem::path path = std::filesystem::path(folder.getPath()) / name;
        document->loadXml(u"<first/>");
        document->save(path);
        EXPECT_EQ(uriToPath(lum::pathToUri(path)), path);
        ASSERT_TRUE(std::filesystem::exists(path));
        document->loadXml(u"<second/>");
        document->saveReplacing(path);
        document->load(path);
        const LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
        parser->setInput(path);
        EXPECT_EQ(parser->next(), LumXmlParser::START_TAG);
        EXPECT_EQ(parser->getName(), document->getDocumentElement()->getLocalName());
    }
    document->save(toText(folder.getPath()) + u"200%41.xml");  // a text is a URI, as ever
    EXPECT_TRUE(std::filesystem::exists(folder.getPath() + "200A.xml"));
    EXPECT_TRUE(uriToPath(u"http://host/a").empty());
    EXPECT_THROW(document->load(std::filesystem::path()), LumError);
}

TEST(Values, takeNumbersForWhatTheyAre) {
    static_assert(!std::is_constructible_v<LumValue, bool> && !std::is_convertible_v<bool, LumValue>);
    static_assert(std::is_convertible_v<short, LumValue> && std::is_convertible_v<unsigned, LumValue>);
    const std::pair<LumValue, const char*> rows[] = {{1.5, "2 1.5"},  // the kind, then the number
                                                     {7, "1 7"},
                                                     {std::int64_t{-7}, "1 -7"},
                                                     {std::uint64_t{1} << 31, "2 2.14748e+09"}};
    for (const auto& [value, told] : rows) EXPECT_EQ(std::to_string(value.getKind()) + ' ' + toUtf8(value), told);
    const LumPtr<LumDocument> document = LumTest::load("<a/>");
    LumElement* const root = document->getDocumentElement();
    root->setAttribute(NAME_id, u"x");
    root->setAttributeNS(LumName(), NAME_name, std::u16string(u"y"));
    root->setAttributeNS(toName("urn:n"), toName("n"), NAME_name, u"z");
    EXPECT_EQ(toUtf8(document->saveXml(root)), "<a id=\"x\" name=\"y\" n:name=\"z\" xmlns:n=\"urn:n\"/>");
}

TEST(Printing, writesWhatToStringSays) {
    std::ostringstream out;
    out << LumName(NAME_block) << ' ' << MathMLName(NAME_math) << ' ' << SVGName(NAME_svg) << ' '
        << LumValue(2.5f, UNIT_MM) << ' ' << LumNamedValue(NAME_width, LumValue(3)) << ' ' << LumColor(255, 0, 0) << ' '
        << LumLength(1, UNIT_IN) << LumLength() << ' ' << LumUri(u"file:///a b") << ' ' << LumXmlParser::START_TAG
        << ' ' << LumError(0x803, u"m", u"s", 3, -1, u"f") << ' ' << LumPosition{-1, 2, {}} << LumPosition() << ' '
        << std::setw(4) << std::left << std::setfill('.') << LumName(NAME_id) << '|';
    EXPECT_EQ(out.str(), "block math svg 2.5mm 3 #FF0000 72pt file:///a%20b START_TAG m\nLine 3, f 2 id..|");
#ifdef __cpp_lib_format
    EXPECT_EQ(std::format("{:.>5}|{}", LumName(NAME_id), LumValue(1)), "...id|1");
#endif
}

TEST(Positions, areThoseOfTheMessage) {
    const UnicodeString parser(u"LumCommon::XmlParserImpl");
    for (const LumTest::Fields& row : LumTest::readTextRows("bridge/positions.txt")) {
        const LumPosition position = positionOf(LumError(0x1801, row[0], parser, -1, -1, UnicodeString()));
        EXPECT_EQ(toUtf8(position), toUtf8(row[1])) << toUtf8(row[2]);
        EXPECT_EQ(static_cast<bool>(position), !row[1].isEmpty());
    }
    const UnicodeString message(u"no file 'x\nTEXT, Line 1, Col 2.");
    EXPECT_EQ(positionOf(LumError(0x1003, message, UnicodeString(), -1, -1, {})), LumPosition());
    EXPECT_EQ(toUtf8(positionOf(LumError(0x1801, message, parser, 9, -1, u"f"))), "f:9") << "the fields come first";
    const LumPtr<LumDocument> document = LumTest::load("<a>\n <b/></a>");
    EXPECT_EQ(positionOf(*document->getDocumentElement()->getLastChild()).line, 2);
    EXPECT_EQ(positionOf(*document->getParser()).line, 2);
}

TEST(StdExceptions, tellWhatTheErrorTold) {
    try {
        withStdExceptions([] { return LumTest::load("<a>\n<b></a>"); });
        FAIL() << "nothing is thrown";
    } catch (const std::exception& thrown) {
        const LumException copy = dynamic_cast<const LumException&>(thrown);
        EXPECT_STREQ(copy.what(), "End tag 'a' does not match the start tag 'b'.\nEND_TAG, Line 2, Col 7.");
        EXPECT_EQ(copy.getCode(), LumXmlErrorCode::EndTagMismatch);
        EXPECT_EQ(copy.getLine() * 10 + copy.getColumn(), 27);
        EXPECT_NE(copy.getError().code, LumErrorCodeIO::CannotOpen);
    }
    int kept = 5;
    EXPECT_EQ(&withStdExceptions([&]() -> int& { return kept; }), &kept);
    EXPECT_THROW(withStdExceptions([] { throw std::bad_alloc(); }), std::bad_alloc);
}

TEST(ImportedNodes, areCopiesThatTheNewDocumentMade) {
    class WithoutTitles : public LumDocument {
        LumPtr<LumElement> createElementNS(LumName uri, LumName prefix, LumName local) override {
            return local == NAME_title ? nullptr : LumDocument::createElementNS(uri, prefix, local);
        }
    };
    const LumPtr<LumDocument> from =
        LumTest::load("<p:a xmlns:p='urn:p'><p:b i='1' p:j='2'>x<title><c/></title></p:b><d/></p:a>");
    LumElement* const a = from->getDocumentElement();
    a->getFirstChild()->appendChild(from->createProcessingInstruction(u"y z").get());
    const LumPtr<LumDocument> to = makeLum<WithoutTitles>();
    const auto copied = [&](const LumNode& node, bool deep) {
        return toUtf8(to->saveXml(to->importNode(node, deep).get()));
    };
    EXPECT_EQ(copied(*a->getFirstChild(), true), "<p:b i=\"1\" p:j=\"2\" xmlns:p=\"urn:p\">x<?y z?></p:b>");
    EXPECT_EQ(copied(*a, true), "<p:a xmlns:p=\"urn:p\"><p:b i=\"1\" p:j=\"2\">x<?y z?></p:b><d/></p:a>");
    EXPECT_EQ(copied(*a, false), "<p:a xmlns:p=\"urn:p\"/>");
    a->setFlags(a->getFlags() | 0x100u);
    EXPECT_EQ(to->importNode(*a, false)->getFlags(), 0x100u) << "looks as if it were being loaded";
    EXPECT_EQ(to->importNode(*a, false)->getOwnerDocument(), to.get());
    EXPECT_EQ(toUtf8(to->importNode(*a->getAttributes()->item(0), false)->getText()), "urn:p");
    EXPECT_TRUE(to->importNode(*from, true).isNull());
}

TEST(OfficeKinds, nameTheNumbers) {
    OleCompFile file;
    ASSERT_TRUE(file.OLEopen(LUM_TEST_DATA "/office/cyrillic.doc"));
    EXPECT_EQ(static_cast<CompoundKind>(file.getDocumentKind()), CompoundKind::WORD_PROCESSOR);
    OleSummaryInformation summary, document;
    ASSERT_EQ(summary.initSummaryInformation(&file) + document.initDocumentSummaryInformation(&file), 2);
    EXPECT_EQ(summary.readProperty(SummaryProperty::TITLE), summary.readProperty(2u));
    EXPECT_EQ(document.readProperty(DocumentSummaryProperty::COMPANY), document.readProperty(15u));
    EXPECT_EQ(sectionOf(summary.getSections().at(0).formatId), PropertySection::SUMMARY);
    EXPECT_EQ(sectionOf(document.getSections().at(0).formatId), PropertySection::DOCUMENT_SUMMARY);
    EXPECT_EQ(sectionOf({}), PropertySection::OTHER);
}

}  // namespace
