// Prefixes, the namespaces that they stand for, and the declarations in scope.

#include <gtest/gtest.h>

#include <set>

#include "support/Utf8.h"
#include "support/XmlEvents.h"

namespace {

using namespace LumTest;

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
    PieceStream in("<a xmlns:p='u' xmlns:q='u2' b='1' p:b='2' q:b='' p:c='3'><b xmlns='u' b='1'/></a>");
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
    // A prefix is resolved as one of an element: an attribute without one is found under the default namespace.
    parser->next();
    EXPECT_EQ(find("u", "b"), "\"1\"");
    EXPECT_EQ(find("", "b"), "bogus");
}

}  // namespace
