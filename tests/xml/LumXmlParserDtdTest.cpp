// Document type declarations: what they declare, and where external parts come from.

#include <gtest/gtest.h>

#include "support/ExpectError.h"
#include "support/ResourceLibrary.h"
#include "support/XmlEvents.h"

namespace {

using namespace LumTest;

TEST(LumXmlParserDtd, declaresWhatTheRowsTell) {
    ResourceLibrary library;
    int made = 0;
    for (const std::vector<std::string>& row : readEscapedRows("xml/declarations.txt", 6)) {
        const std::string &kind = row[0], &given = row[1], &content = row[2];
        SCOPED_TRACE(row[4]);
        ParserSetup setup = readSetup(row[5]);
        setup.baseUri = library.getBase();
        std::string expected = row[3];
        const auto expectTold = [&](const std::string& document) {
            EXPECT_EQ(tell(document, setup), expected);
            EXPECT_EQ(tell(document, setup, 1), expected) << "in pieces, or from what is kept";
        };
        const std::string number = std::to_string(++made);
        if (kind == "resource") {
            library.add(given, content);
        } else if (kind == "inside") {
            expected = "<a>" + expected + (expected.starts_with("!") ? "" : "</a>");
            const std::string element = "<a>" + content + "</a>";
            expectTold("<!DOCTYPE a [" + given + "]>" + element);
            library.add(number, given);
            const int opened = library.countOpened();
            expectTold("<!DOCTYPE a SYSTEM '" + library.getBase() + number + "'>" + element);
            EXPECT_LE(library.countOpened(), opened + 1) << "the second time it is read again";
        } else if (kind == "definition") {
            expectTold("<!DOCTYPE a SYSTEM '" + given + "'><a>[&e;]</a>");
        } else {
            library.add("sub/" + number + ".ent", given);
            expectTold("<!DOCTYPE a [<!ENTITY x SYSTEM '" + library.getBase() + "sub/" + number +
                       ".ent'><!ENTITY y PUBLIC 'p' 'y.ent'>]><a>[&x;]&y;</a>");
        }
    }
    const ParserSetup ignoring{.features = {LumXmlParser::FEATURE_IGNORE_UNDEFINED_ENTITIES},
                               .baseUri = library.getBase()};
    EXPECT_EQ(tell("<!DOCTYPE a [<!ENTITY % m SYSTEM 'bad.dtd'>%m;<!ENTITY e 'yes'>]><a>&f;&e;</a>", ignoring),
              "<a>xyes</a>")
        << "the declaration that an ignored error broke off stays open";
    PieceStream in("<!DOCTYPE a SYSTEM '" + library.getBase() + "bad.dtd'><a/>");
    expectParserError(0x1816, "Missing whitespace after '<!ENTITY e'.",
                      "START_DOCUMENT, '" + library.getBase() + "bad.dtd', Line 2, Col 11.",
                      [&] { openParser(in)->next(); });
}

TEST(LumXmlParserDtd, internalSubsetComesBeforeTheExternalDefinition) {
    ResourceLibrary library;
    library.add("x.dtd", "<!ENTITY e 'outside'><!ENTITY f 'outside'><!ENTITY g SYSTEM 'missing:x'>");
    EXPECT_EQ(tell("<!DOCTYPE a SYSTEM 'x.dtd' [<!ENTITY e 'inside'><!ENTITY g 'inside'>]><a>&e;&f;&g;</a>",
                   {.baseUri = library.getBase()}),
              "<a>insideoutsideinside</a>");
}

TEST(LumXmlParserDtd, mathMLDefinitionIsNeverOpened) {
    ResourceLibrary library;
    const std::string document =
        "<!DOCTYPE a PUBLIC 'p' 'http://www.w3.org/Math/DTD/mathml2/mathml2.dtd' [<!ENTITY beta 'own'>]>"
        "<a>&alpha;&beta;&Afr;&nvlt;</a>";
    EXPECT_EQ(tell(document), "<a>\xCE\xB1own%plane1D;504;<\xE2\x83\x92</a>");
    EXPECT_EQ(library.countOpened(), 0);
    EXPECT_EQ(tell("<a>&alpha;</a>"), "<a>!181E") << "of the document before";
    EXPECT_EQ(utf8(LumXmlParser::getMathMLEntity(u"Afr")), "%plane1D;504;");
    EXPECT_EQ(utf8(LumXmlParser::getMathMLEntity(u"no-such-entity")), "");
}

TEST(LumXmlParserDtd, kindOfTheDocument) {
    for (const std::vector<std::string>& row : readEscapedRows("xml/kinds.txt", 4)) {
        SCOPED_TRACE(row[0] + " " + row[1] + " " + row[2]);
        PieceStream in(row[0]);
        const LumPtr<LumXmlParser> parser = openParser(in);
        parser->setStreamType(fromUtf8(row[1]), fromUtf8(row[2]));
        parser->next();
        EXPECT_EQ(std::string(parser->isXhtmlType() ? "xhtml" : "") + (parser->isHtmlType() ? "html" : ""), row[3]);
    }
}

}  // namespace
