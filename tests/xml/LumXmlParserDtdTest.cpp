// Document type declarations: what they declare, where external parts come from, and what hostile ones do.

#include <gtest/gtest.h>

#include "support/ExpectError.h"
#include "support/ResourceLibrary.h"
#include "support/XmlEvents.h"

namespace {

using namespace LumTest;
using Features = std::vector<LumXmlParser::Feature>;
constexpr auto skipDtd = LumXmlParser::FEATURE_SKIP_EXTERNAL_DTD;
constexpr auto ignoreUndefined = LumXmlParser::FEATURE_IGNORE_UNDEFINED_ENTITIES;
constexpr auto ignoreDtdErrors = LumXmlParser::FEATURE_IGNORE_EXTERNAL_DTD_ERRORS;

/// Tags and text as they are read, an error by its code.
std::string tell(const std::string& document, const Features& features = {}, const std::string& baseUri = {},
                 std::size_t pieceBytes = wholeInput) {
    std::string told;
    PieceStream in(document, pieceBytes);
    try {
        const LumPtr<LumXmlParser> parser = openParser(in, {.features = features, .baseUri = baseUri});
        for (LumXmlParser::EventType type; (type = parser->next()) != LumXmlParser::END_DOCUMENT;) {
            const std::string name = toUtf8(parser->getName().getString());
            if (type == LumXmlParser::TEXT) told += toUtf8(parser->getText());
            if (type == LumXmlParser::END_TAG) told += "</" + name + ">";
            if (type != LumXmlParser::START_TAG) continue;
            told += "<" + name;
            for (int i = 0; i < parser->getAttributeCount(); ++i)
                told += " " + toUtf8(parser->getAttributeName(i).getString()) + "='" +
                        toUtf8(parser->getAttributeValue(i)) + "'";
            told += ">";
        }
    } catch (const LumError& error) {
        char code[16];
        std::snprintf(code, sizeof code, "!%04X", static_cast<unsigned>(error.code));
        told += code;
    }
    return told;
}

struct SubsetRow {
    const char* fault;
    const char* subset;
    const char* content;
    const char* told;  // between the tags of the root
};
constexpr SubsetRow subsetRows[] = {
    {"a later declaration wins", "<!ENTITY e '1'><!ENTITY e '2'>", "&e;", "1"},
    {"a later external one wins", "<!ENTITY e '1'><!ENTITY e SYSTEM 'missing:x'>", "&e;", "1"},
    {"a predefined entity is replaced", "<!ENTITY lt 'x'><!ENTITY amp 'y'>", "&lt;&amp;", "<&"},
    {"the kinds of entities share their names", "<!ENTITY % e 'p'><!ENTITY e 'g'>", "&e;", "g"},
    {"references are expanded where the entity is declared", "<!ENTITY a '&b;'><!ENTITY b 'x'>", "&a;", "x"},
    {"character references wait", "<!ENTITY e '&#38;#60;&#x41;'>", "&e;", "<A"},
    {"markup in an entity is text", "<!ENTITY e '<b c=\"1\">t</b>'>", "x&e;y", "x<b c='1'>t</b>y"},
    {"an element cannot begin inside and end outside", "<!ENTITY e '<b>t'>", "&e;</b>", "<b>t</b>"},
    {"a value ends at > or the other quote", "<!ENTITY e \"]>'%\">", "&e;", "]>'%"},
    {"white space in a value is kept as it is", "<!ENTITY e 'a\tb\r\nc'>", "&e;", "a b c"},
    {"a declaration in a comment counts", "<!-- it's <!ENTITY e 'no'> ]> --><!ENTITY e 'yes'>", "&e;", "yes"},
    {"a declaration in an instruction counts", "<?p it's <!ENTITY e 'no'> ]> ?><!ENTITY e 'yes'>", "&e;", "yes"},
    {"a quoted > ends a declaration", "<!ATTLIST a b CDATA \"]>'<\"><!ENTITY e 'yes'>", "&e;", "yes"},
    {"other declarations are not passed over",
     "<!ELEMENT a (#PCDATA)*><!NOTATION n PUBLIC '-//x'><!ENTITY u SYSTEM 'u' NDATA n ><!ENTITY e 'yes' >", "&e;",
     "yes"},
    {"a parameter entity declares nothing", "<!ENTITY % p \"<!ENTITY e 'yes'>\">\n%p;\n", "&e;", "yes"},
    {"character references do not make markup in a parameter entity", "<!ENTITY % p '&#60;!ENTITY e \"yes\">'>%p;",
     "&e;", "yes"},
    {"a parameter entity is not read inside another",
     "<!ENTITY % q \"<!ENTITY e 'yes'>\"><!ENTITY % p '<!-- -->%q; '>%p;", "&e;", "yes"},
    {"the first parameter entity does not win",
     "<!ENTITY % p ''><!ENTITY % p \"<!ENTITY e 'no'>\">%p;<!ENTITY e 'yes'>", "&e;", "yes"},
    {"a % in a value is a reference", "<!ENTITY % p 'x'><!ENTITY e '%p;'>", "&e;", "%p;"},
    {"a % in a quoted string or a comment is a reference", "<!ATTLIST a b CDATA '%x;'><!-- %x; --><!ENTITY e 'yes'>",
     "&e;", "yes"},
    {"a section that is included is skipped", "<![INCLUDE[<!ENTITY e 'yes'>]]>", "&e;", "yes"},
    {"a section that is ignored is read", "<![ IGNORE [<!ENTITY e 'no'> ' ]]><!ENTITY e 'yes'>", "&e;", "yes"},
    {"an ignored section ends with the first inside it",
     "<![IGNORE[<![INCLUDE[<!ENTITY e '1'>]]><![IGNORE[ ]]><!ENTITY e '2'>]]><!ENTITY e 'yes'>", "&e;", "yes"},
    {"a keyword by reference is not seen", "<!ENTITY % k 'IGNORE'><![%k;[<!ENTITY e 'no'>]]><!ENTITY e 'yes'>", "&e;",
     "yes"},
    {"a value is not expanded in an attribute", "<!ENTITY e '&f;\t'><!ENTITY f '&#60;'>", "<b c='&e;'/>", "!1830"},
    {"a name outside ASCII is refused", "<!ENTITY \xC3\xA9 '\xF0\x9F\x98\x80'>", "&\xC3\xA9;", "\xF0\x9F\x98\x80"},
    {"an entity that names itself by another is expanded", "<!ENTITY e '&f;'><!ENTITY f ' &g;'><!ENTITY g '&e;'>",
     "&e;", "!1837"},
    {"an entity may not be used twice", "<!ENTITY e '&f;&f;'><!ENTITY f 'x'>", "&e;&e;&f;", "xxxxx"},
};

TEST(LumXmlParserDtd, internalSubset) {
    for (const SubsetRow& row : subsetRows) {
        SCOPED_TRACE(row.fault);
        const std::string told = std::string("<a>") + row.told;
        const std::string expected = told.find('!') == std::string::npos ? told + "</a>" : told;
        const std::string document = std::string("<!DOCTYPE a [") + row.subset + "]><a>" + row.content + "</a>";
        EXPECT_EQ(tell(document), expected);
        EXPECT_EQ(tell(document, {}, {}, 1), expected);
        // The same declarations in an external definition.
        ResourceLibrary library;
        library.add("x.dtd", row.subset);
        const std::string outside = "<!DOCTYPE a SYSTEM '" + library.getBase() + "x.dtd'><a>" + row.content + "</a>";
        EXPECT_EQ(tell(outside), expected);
        EXPECT_EQ(tell(outside), expected) << "the second time, from what is kept";
        EXPECT_LE(library.countOpened(), 1);
    }
}

struct TextRow {
    const char* document;
    const char* text;
};
constexpr TextRow textRows[] = {
    {"<!DOCTYPE a><a/>", " a"},
    {"<!DOCTYPE \n p:a  SYSTEM 's' [ ] ><a/>", " \\u000A p:a  SYSTEM 's' [ ] "},
    {"<!DOCTYPE a PUBLIC \"p\"  's'><a/>", " a PUBLIC \"p\"  's'"},
    {"<!DOCTYPE a [<!-- > --><?p > ?><!ELEMENT b (c)>]><a/>", " a [<!-- > --><?p > ?><!ELEMENT b (c)>]"},
    {"<!DOCTYPE a [<!ENTITY % p '<!--c-->'>%p;]><a/>", " a [<!ENTITY % p '<!--c-->'><!--c-->]"},
    {"<!DOCTYPE a [<!ENTITY e '&#65;\"'><!ENTITY f SYSTEM 's' NDATA n>]><a/>",
     " a [<!ENTITY e '&#65;\\u0022'><!ENTITY f SYSTEM 's' NDATA n>]"},
};

TEST(LumXmlParserDtd, textOfTheDeclaration) {
    const LumTest::Setup setup{.features = {skipDtd}};
    for (const TextRow& row : textRows) {
        std::string expected = row.text;
        if (const std::size_t at = expected.find("\\u0022"); at != std::string::npos) expected.replace(at, 6, "\"");
        EXPECT_EQ(recordEvents(row.document, Pull::tokens, setup).front().event, "DOCDECL 0 \"" + expected + "\"");
    }
}

TEST(LumXmlParserDtd, publicIdentifierBindsTheNamespacesOfSvg) {
    const char* bound = "START_TAG 1 {http://www.w3.org/2000/svg}g {http://www.w3.org/1999/xlink}xlink:href=\"x\" /";
    const std::pair<const char*, const char*> rows[] = {
        {"<!DOCTYPE g PUBLIC '-//W3C//DTD SVG 1.1//EN' 's'><g xlink:href='x'/>", bound},
        {"<!DOCTYPE g PUBLIC '-//W3C//DTD XHTML 1.1//EN' 's'><g/>", "START_TAG 1 g /"},
    };
    const LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();  // one for both: bindings end with a document
    parser->setFeature(skipDtd, true);
    for (const auto& [document, event] : rows) {
        PieceStream in(document);
        parser->setInput(in, UnicodeString(), UnicodeString());
        parser->next();
        EXPECT_EQ(describe(*parser), event);
    }
}

struct FeatureRow {
    const char* fault;
    Features features;
    const char* systemId;  // behind the library's base when it is relative
    const char* told;      // of <a>[&e;]</a>
};
const FeatureRow featureRows[] = {
    {"a relative identifier is not resolved against the base", {}, "x.dtd", "<a>[yes]</a>"},
    {"the definition is read although it is to be skipped", {skipDtd}, "x.dtd", "<a>!181E"},
    {"a skipped entity is an error although it is to be ignored", {skipDtd, ignoreUndefined}, "x.dtd", "<a>[]</a>"},
    {"a resource that is no file has to be there", {}, "missing:x", "<a>!181E"},
    {"a file may be absent", {}, "file:///no-such-folder/x.dtd", "!1003"},
    {"an absent file is not ignored", {ignoreDtdErrors}, "file:///no-such-folder/x.dtd", "<a>!181E"},
    {"an error in the definition is lost", {}, "bad.dtd", "!1816"},
    {"an error in the definition is not ignored", {ignoreDtdErrors, ignoreUndefined}, "bad.dtd", "<a>[]</a>"},
    {"what stands before an ignored error is lost", {ignoreDtdErrors}, "late.dtd", "<a>[yes]</a>"},
    {"an error that one document ignored is ignored in the next", {}, "late.dtd", "!1816"},
    {"a text declaration without version is taken for an XML declaration", {}, "text.dtd", "!1822"},
    {"the XML declaration's encoding is not used", {}, "latin.dtd", "<a>[\xC3\xA9]</a>"},
    {"an undefined parameter entity is an error outside declarations", {}, "undefined.dtd", "<a>[yes]</a>"},
    {"a % that begins no reference is an error", {}, "percent.dtd", "<a>[yes]</a>"},
    {"an external parameter entity is not read, or not against the base", {}, "module.dtd", "<a>[yes]</a>"},
    {"definitions that name each other are read for ever", {}, "first.dtd", "!1838"},
};

TEST(LumXmlParserDtd, externalDefinition) {
    ResourceLibrary library;
    library.add("x.dtd", "<!ENTITY e 'yes'>");
    library.add("bad.dtd", "<!ENTITY f 'x'>\n<!ENTITY e>");
    library.add("late.dtd", "<!ENTITY e 'yes'><!ENTITY>");
    library.add("text.dtd", "<?xml encoding='UTF-8'?><!ENTITY e 'yes'>");
    library.add("latin.dtd", "<?xml version='1.0' encoding='ISO-8859-1'?><!ENTITY e '\xE9'>");
    library.add("undefined.dtd", "%nothing; text <?p ?><!ENTITY e 'yes'>");
    library.add("percent.dtd", "<!ENTITY % p ''>100% x % %; %p %p<!ENTITY % m SYSTEM 'percent.mod'>%m;");
    library.add("percent.mod", "100% x %; %<!ENTITY % q \"<!ENTITY e 'yes'>\">%%p%q; %");
    library.add("module.dtd", "<!ENTITY % m SYSTEM 'x.mod'>%m;");
    library.add("x.mod", "<?xml encoding='UTF-8'?><![INCLUDE[<!ENTITY e 'yes'>]]>");
    library.add("first.dtd", "<!ENTITY % m SYSTEM 'first.dtd'><!ENTITY % n SYSTEM 'second.dtd'>%n;");
    library.add("second.dtd", "%m; %n;");
    for (const FeatureRow& row : featureRows) {
        SCOPED_TRACE(row.fault);
        const std::string document = std::string("<!DOCTYPE a SYSTEM '") + row.systemId + "'><a>[&e;]</a>";
        EXPECT_EQ(tell(document, row.features, library.getBase()), row.told);
    }
    EXPECT_EQ(tell("<!DOCTYPE a [<!ENTITY % m SYSTEM 'bad.dtd'>%m;<!ENTITY e 'yes'>]><a>&f;&e;</a>", {ignoreUndefined},
                   library.getBase()),
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
    const std::string document =
        "<!DOCTYPE a SYSTEM 'x.dtd' [<!ENTITY e 'inside'><!ENTITY g 'inside'>]><a>&e;&f;&g;</a>";
    EXPECT_EQ(tell(document, {}, library.getBase()), "<a>insideoutsideinside</a>");
}

struct ExternalRow {
    const char* fault;
    std::string bytes;
    const char* told;  // of <a>[&x;]&y;</a>
};
const ExternalRow externalRows[] = {
    {"an entity is not in UTF-8 by itself", "\xC3\xA9", "<a>[\xC3\x83\xC2\xA9]y</a>"},
    {"markup does not tell UTF-8", "<b>\xC3\xA9</b>", "<a>[<b>\xC3\xA9</b>]y</a>"},
    {"the declared encoding is not used", "<?xml encoding='ISO-8859-1'?>\xE9", "<a>[\xC3\xA9]y</a>"},
    {"a version is refused", "<?xml version='1.0' encoding = \"UTF-8\" ?>\xC3\xA9", "<a>[\xC3\xA9]y</a>"},
    {"a charset is not converted", "<?xml version='1.0' encoding='Shift_JIS'?>\x95\x5C", "<a>[\xE8\xA1\xA8]y</a>"},
    {"the mark is not seen", std::string("\xFF\xFE\xE9\0x\0", 6), "<a>[\xC3\xA9x]y</a>"},
    {"a declared charset overrules the mark, or is refused", "\xEF\xBB\xBF<?xml encoding='windows-1252'?>\xC3\xA9",
     "<a>[\xC3\xA9]y</a>"},
    {"an instruction is taken for the declaration", "<?xmlx y?>z", "<a>[z]y</a>"},
    {"a short entity is lost", "<?p", "<a>!182C"},
    {"= may be absent", "<?xml encoding 'UTF-8'?>", "<a>!1823"},
    {"the end of the declaration may be absent", "<?xml encoding='UTF-8' x?>", "<a>!180C"},
    {"the encoding may be unknown", "<?xml encoding='x-none'?>", "<a>!1835"},
    {"an entity inside it is resolved against the document", "&y;", "<a>[inner]y</a>"},
    {"an entity that names itself is read for ever", "&x;", "<a>!1838"},
};

TEST(LumXmlParserDtd, externalEntities) {
    for (const ExternalRow& row : externalRows) {
        SCOPED_TRACE(row.fault);
        ResourceLibrary library;
        library.add("sub/x.ent", row.bytes);
        library.add("sub/y.ent", "inner");
        library.add("y.ent", "y");
        const bool isNested = row.bytes == "&x;";
        if (isNested) library.add("sub/sub/x.ent", row.bytes);
        const std::string x = isNested ? library.getBase() + "sub/x.ent" : "sub/x.ent";
        const std::string document =
            "<!DOCTYPE a [<!ENTITY x SYSTEM '" + x + "'><!ENTITY y PUBLIC 'p' 'y.ent'>]><a>[&x;]&y;</a>";
        EXPECT_EQ(tell(document, {}, library.getBase()), row.told);
        EXPECT_EQ(tell(document, {}, library.getBase(), 1), row.told);
    }
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

struct KindRow {
    const char* document;
    const char* mediaType;
    const char* extension;
    bool isXhtml;
    bool isHtml;
};
constexpr KindRow kindRows[] = {
    {"<html/>", "", "", false, true},
    {"<html xmlns='http://www.w3.org/1999/xhtml'/>", "", "", true, false},
    {"<html xmlns='http://www.w3.org/1999/xhtml'/>", "TEXT/HTML", "", true, true},
    {"<html xmlns='u'/>", "", "", false, false},
    {"<a/>", "Application/XHTML+xml", ".html", true, false},
    {"<a/>", "text/html", ".xhtml", false, true},
    {"<html/>", "text/xml", ".htm", false, false},
    {"<a/>", "", ".XHT", true, false},
    {"<a/>", "", ".xhtml", true, false},
    {"<a/>", "", ".HTM", false, true},
    {"<html/>", "", ".xml", false, false},
    {"<p:html xmlns:p='http://www.w3.org/1999/xhtml'/>", "", ".xml", true, false},
};

TEST(LumXmlParserDtd, kindOfTheDocument) {
    for (const KindRow& row : kindRows) {
        SCOPED_TRACE(testing::Message() << row.document << ' ' << row.mediaType << ' ' << row.extension);
        PieceStream in(row.document);
        const LumPtr<LumXmlParser> parser = openParser(in);
        parser->setStreamType(row.mediaType, row.extension);
        parser->next();
        EXPECT_EQ(parser->isXhtmlType(), row.isXhtml);
        EXPECT_EQ(parser->isHtmlType(), row.isHtml);
    }
}

struct ExpansionRow {
    const char* construct;
    const char* kind;    // "" or "% "
    const char* before;  // a reference
    const char* content;
};
constexpr ExpansionRow expansionRows[] = {
    {"attribute value", "", "&", "]><a b='&e9;'/>"},
    {"declarations", "% ", "%", "%e9;]><a/>"},
};

TEST(LumXmlParserDtd, exponentialExpansion) {
    for (const ExpansionRow& row : expansionRows) {
        SCOPED_TRACE(row.construct);
        std::string document =
            "<!DOCTYPE a [<!ENTITY " + std::string(row.kind) + "e0 ' " + std::string(1000, 'x') + "'>";
        for (int level = 1; level < 10; ++level) {
            document += "<!ENTITY " + std::string(row.kind) + "e" + std::to_string(level) + " '";
            for (int i = 0; i < 10; ++i) document += row.before + ("e" + std::to_string(level - 1)) + ";";
            document += "'>";
        }
        const std::string told = tell(document + row.content);
        EXPECT_EQ(told.substr(told.size() - 5), "!1837");
    }
}

// Each text is inside all those before it; looking for a name among them one by one would take hours.
TEST(LumXmlParserDtd, manyDeclarations) {
    constexpr int entities = 100000;
    std::string same = "<!DOCTYPE a [", chain = same;
    for (int i = 0; i < entities; ++i) {
        same += "<!ENTITY e '" + std::to_string(i) + "'>";
        chain += "<!ENTITY e" + std::to_string(i) + " '&e" + std::to_string(i + 1) + ";" + (i % 2 ? "" : "x") + "'>";
    }
    EXPECT_EQ(tell(same + "]><a>&e;</a>"), "<a>0</a>");
    chain += "<!ENTITY e" + std::to_string(entities);
    EXPECT_EQ(tell(chain + " ''>]><a>&e0;</a>"), "<a>" + std::string(entities / 2, 'x') + "</a>");
    EXPECT_EQ(tell(chain + " '&e7;'>]><a>&e0;</a>"), "<a>!1837");
}

TEST(LumXmlParserDtd, everyPrefixOfADeclaration) {
    const std::string document =
        "<!DOCTYPE p:a PUBLIC \"p\" 's' [<!-- c --><?p q?><!ENTITY % p '<!ENTITY f \"&#65;\">'>%p;<!ENTITY e 'x&f;'>"
        "<!ENTITY x PUBLIC 'p' 's' NDATA n><![IGNORE[<![INCLUDE[ ]]>]]><!ATTLIST a b CDATA '>'> ] ><a>&e;</a>";
    ASSERT_EQ(tell(document, {skipDtd}), "<a>xA</a>");
    for (std::size_t bytes = 1; bytes < document.size(); ++bytes) {
        const std::string cut = document.substr(0, bytes);
        const std::string told = tell(cut, {skipDtd});
        EXPECT_EQ(tell(cut, {skipDtd}, {}, 1), told) << cut;
        // Up to the root everything is needed.
        if (cut.find("] >") == std::string::npos) {
            EXPECT_TRUE(told.starts_with("!18")) << cut << " " << told;
        }
    }
}

}  // namespace
