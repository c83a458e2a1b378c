// Prefixes, the namespaces that they stand for, and the declarations in scope.

#include <gtest/gtest.h>

#include <set>

#include "support/ExpectError.h"
#include "support/XmlEvents.h"

namespace {

using namespace LumTest;

#define XMLNS "{http://www.w3.org/2000/xmlns/}"
#define SVGNS "{http://www.w3.org/2000/svg}"
#define XLINKNS "{http://www.w3.org/1999/xlink}"
#define XMLNSPACE "{http://www.w3.org/XML/1998/namespace}"

struct NamespaceRow {
    const char* fault;
    const char* document;
    std::vector<std::string> events;
    std::vector<LumXmlParser::Feature> features = {};
};
const NamespaceRow namespaceRows[] = {
    {"a declaration is no attribute, or comes too late for its own element",
     "<p:a xmlns:p='u' p:b='1' c=''/>",
     {"START_TAG 1 {u}p:a " XMLNS "xmlns:p=\"u\" {u}p:b=\"1\" c=\"\" /", "END_TAG 1 {u}p:a"}},
    {"a declaration counts only for what stands behind it",
     "<p:a p:b='1' xmlns:p='u'/>",
     {"START_TAG 1 {u}p:a {u}p:b=\"1\" " XMLNS "xmlns:p=\"u\" /", "END_TAG 1 {u}p:a"}},
    {"the default namespace holds for attributes, or not for children",
     "<a xmlns='u' b='1'><c/></a>",
     {"START_TAG 1 {u}a " XMLNS "xmlns=\"u\" b=\"1\"", "START_TAG 2 {u}c /", "END_TAG 2 {u}c", "END_TAG 1 {u}a"}},
    {"the default namespace cannot be taken back, or not for the children, or for ever",
     "<a xmlns='u'><b xmlns=''><c/><d xmlns='v'/></b><e/></a>",
     {"START_TAG 1 {u}a " XMLNS "xmlns=\"u\"", "START_TAG 2 b " XMLNS "xmlns=\"\"", "START_TAG 3 c /", "END_TAG 3 c",
      "START_TAG 3 {v}d " XMLNS "xmlns=\"v\" /", "END_TAG 3 {v}d", "END_TAG 2 b", "START_TAG 2 {u}e /",
      "END_TAG 2 {u}e", "END_TAG 1 {u}a"}},
    {"an inner binding outlives its element",
     "<p:a xmlns:p='u'><p:b xmlns:p='v'/><p:c/></p:a>",
     {"START_TAG 1 {u}p:a " XMLNS "xmlns:p=\"u\"", "START_TAG 2 {v}p:b " XMLNS "xmlns:p=\"v\" /", "END_TAG 2 {v}p:b",
      "START_TAG 2 {u}p:c /", "END_TAG 2 {u}p:c", "END_TAG 1 {u}p:a"}},
    {"the prefix xml has to be declared",
     "<a xml:lang='en'/>",
     {"START_TAG 1 a " XMLNSPACE "xml:lang=\"en\" /", "END_TAG 1 a"}},
    {"one name with and without prefix is a duplicate",
     "<a xmlns='u' xmlns:p='u' b='1' p:b='2'/>",
     {"START_TAG 1 {u}a " XMLNS "xmlns=\"u\" " XMLNS "xmlns:p=\"u\" b=\"1\" {u}p:b=\"2\" /", "END_TAG 1 {u}a"}},
    {"one name in two namespaces is a duplicate",
     "<a xmlns:p='u' xmlns:q='v' p:b='1' q:b='2'/>",
     {"START_TAG 1 a " XMLNS "xmlns:p=\"u\" " XMLNS "xmlns:q=\"v\" {u}p:b=\"1\" {v}q:b=\"2\" /", "END_TAG 1 a"}},
    {"an undeclared prefix of an attribute is refused against the feature",
     "<a p:b='1' q:b='2'/>",
     {"START_TAG 1 a {p}p:b=\"1\" {q}q:b=\"2\" /", "END_TAG 1 a"},
     {LumXmlParser::FEATURE_ALLOW_UNDECLARED_PREFIX}},
    {"the feature overrides a declaration",
     "<a xmlns:p='u' p:b='1'/>",
     {"START_TAG 1 a " XMLNS "xmlns:p=\"u\" {u}p:b=\"1\" /", "END_TAG 1 a"},
     {LumXmlParser::FEATURE_ALLOW_UNDECLARED_PREFIX}},
    {"a root svg has no namespace, or its children have none",
     "<svg xlink:href='#a'><g/></svg>",
     {"START_TAG 1 " SVGNS "svg " XLINKNS "xlink:href=\"#a\"", "START_TAG 2 " SVGNS "g /", "END_TAG 2 " SVGNS "g",
      "END_TAG 1 " SVGNS "svg"}},
    {"a declaration at a root svg is overridden",
     "<svg xmlns='u' xmlns:xlink='v' xlink:href='#a'/>",
     {"START_TAG 1 {u}svg " XMLNS "xmlns=\"u\" " XMLNS "xmlns:xlink=\"v\" {v}xlink:href=\"#a\" /", "END_TAG 1 {u}svg"}},
    {"svg below the root gets the namespace",
     "<a><svg/></a>",
     {"START_TAG 1 a", "START_TAG 2 svg /", "END_TAG 2 svg", "END_TAG 1 a"}},
    {"a root svg with a prefix does not bind the default",
     "<s:svg xmlns:s='u'><g/></s:svg>",
     {"START_TAG 1 {u}s:svg " XMLNS "xmlns:s=\"u\"", "START_TAG 2 " SVGNS "g /", "END_TAG 2 " SVGNS "g",
      "END_TAG 1 {u}s:svg"}},
    {"a root chart has no namespace",
     "<chart xlink:href='#a'/>",
     {"START_TAG 1 {http://ns.diagrix.example/names/Diagrix}chart " XLINKNS "xlink:href=\"#a\" /",
      "END_TAG 1 {http://ns.diagrix.example/names/Diagrix}chart"}},
};

TEST(LumXmlParserNamespace, isResolvedForElementsAndAttributes) {
    for (const NamespaceRow& row : namespaceRows) {
        SCOPED_TRACE(row.fault);
        std::vector<std::string> expected = row.events;
        expected.push_back("END_DOCUMENT 0");
        for (const Pull how : {Pull::events, Pull::tokens}) {
            EXPECT_EQ(getDescriptions(recordEvents(row.document, how, {.features = row.features})), expected);
        }
    }
}

std::set<std::string> getBindings(const LumXmlParser& parser, int depth) {
    std::set<std::string> bindings;
    for (int i = 0; i < parser.getNamespaceCount(depth); ++i)
        bindings.insert(utf8(parser.getNamespacePrefix(i).getString()) + "=" +
                        utf8(parser.getNamespaceUri(i).getString()));
    return bindings;
}

TEST(LumXmlParserNamespace, declarationsAreListedForTheCurrentElement) {
    PieceStream in("<a xmlns='u' xmlns:p='v'><b/><c xmlns:p='w' xmlns:q='x' xmlns:r='y'><d xmlns:q='x'/></c></a>");
    const LumPtr<LumXmlParser> parser = openParser(in);
    const LumName p(fromUtf8("p"));
    EXPECT_EQ(parser->getNamespaceCount(0), 2) << "xml and xmlns are always bound";
    parser->next();
    EXPECT_EQ(getBindings(*parser, 1), (std::set<std::string>{"=u", "p=v"}));
    parser->next();  // <b>
    EXPECT_EQ(parser->getNamespaceCount(1), 2);
    EXPECT_EQ(parser->getNamespaceCount(2), 0);
    EXPECT_TRUE(parser->getNamespacePrefix(0).isNull());
    EXPECT_EQ(utf8(parser->getNamespace(p).getString()), "v");
    parser->next();
    EXPECT_EQ(parser->getNamespaceCount(2), 0) << "still the scope of <b>";
    parser->next();  // <c>
    EXPECT_EQ(getBindings(*parser, 2), (std::set<std::string>{"p=w", "q=x", "r=y"}));
    EXPECT_EQ(utf8(parser->getNamespace(p).getString()), "w");
    EXPECT_EQ(utf8(parser->getNamespace(LumName()).getString()), "u");
    parser->next();  // <d>
    EXPECT_EQ(parser->getNamespaceCount(3), 0) << "what is bound already is not declared again";
    EXPECT_EQ(parser->getNamespaceCount(2), 3);
    for (const int depth : {-1, 4, 1000000}) EXPECT_EQ(parser->getNamespaceCount(depth), 0);
    for (const int index : {-1, 3}) EXPECT_TRUE(parser->getNamespaceUri(index).isNull());
    parser->next();
    parser->next();  // </c>
    EXPECT_EQ(utf8(parser->getNamespace(p).getString()), "w");
    parser->next();  // </a>
    EXPECT_EQ(utf8(parser->getNamespace(p).getString()), "v");
    EXPECT_TRUE(parser->getNamespace(LumName(fromUtf8("q"))).isNull());
}

TEST(LumXmlParserNamespace, findsAnAttributeByName) {
    PieceStream in("<a xmlns:p='u' xmlns:q='u2' b='1' p:b='2' q:b='' p:c='3'>x</a>");
    const LumPtr<LumXmlParser> parser = openParser(in);
    parser->next();
    const auto find = [&parser](const char* uri, const char* name) {
        return escape(parser->getAttributeValue(LumName(fromUtf8(uri)), LumName(fromUtf8(name))));
    };
    EXPECT_EQ(find("", "b"), "\"1\"");
    EXPECT_EQ(find("u", "b"), "\"2\"");
    EXPECT_EQ(find("u2", "b"), "\"\"") << "an empty value is not an absent one";
    EXPECT_EQ(find("u2", "c"), "bogus");
    EXPECT_EQ(find("", "c"), "bogus");
    EXPECT_EQ(find("", "absent"), "bogus");
    EXPECT_EQ(find("http://www.w3.org/2000/xmlns/", "p"), "\"u\"");
}

// The prefix is resolved as one of an element: where there is a default namespace, an attribute without prefix is
// found under it.
TEST(LumXmlParserNamespace, findsAnAttributeWithoutPrefixUnderTheDefaultNamespace) {
    PieceStream in("<a xmlns='u' b='1'/>");
    const LumPtr<LumXmlParser> parser = openParser(in);
    parser->next();
    EXPECT_EQ(escape(parser->getAttributeValue(LumName(fromUtf8("u")), LumName(fromUtf8("b")))), "\"1\"");
    EXPECT_EQ(escape(parser->getAttributeValue(LumName(), LumName(fromUtf8("b")))), "bogus");
}

}  // namespace
