#include <gtest/gtest.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/uri/LumUriSub.h>
#include <support/Utf8.h>

#include <chrono>
#include <string>

namespace {

using namespace LumCommon;
using LumTest::utf8;

UnicodeString text(const std::string& bytes) { return UnicodeString::fromUTF8(bytes); }

std::string repeated(const std::string& piece, int times) {
    std::string result;
    for (int i = 0; i < times; ++i) result += piece;
    return result;
}

std::string resolved(const std::string& base, const std::string& reference) {
    return utf8(LumUriSub::makeAbsUri(text(base), text(reference)));
}

TEST(LumUriSub, resolvesAReferenceAgainstABase) {
    struct Case {
        const char *fault, *base, *reference, *result;
    };
    static constexpr Case cases[] = {
        {"file name of the base kept", "file:///docs/u/doc.xml", "img/p.png", "file:///docs/u/img/p.png"},
        {"level not climbed", "file:///docs/u/doc.xml", "../p.png", "file:///docs/p.png"},
        {"climbs past the root", "file:///docs/u/doc.xml", "../../../p.png", "file:///p.png"},
        {"root reference taken as relative", "file:///docs/u/doc.xml", "/p.png", "file:///p.png"},
        {"root reference ignores the host", "file://srv/a/b", "/p.png", "file://srv/p.png"},
        {"a dot is a name", "/a/b/c", ".", "/a/b/"},
        {"two dots are a name", "/a/b/c", "..", "/a/"},
        {"./ and ../ only in one order", "/a/b/c/d", "./.././../x", "/a/x"},
        {"dots at the end taken off", "/a/b/c", "../..", "/a/.."},
        {"name that begins with a dot loses it", "/a/b", ".x", "/a/.x"},
        {"slash behind dots taken for the root", "/a/b/c", "..//x", "/a//x"},

        {"query of the base kept", "http://h/a/b?q=1/2", "x", "http://h/a/x"},
        {"query of a file cut", "file:///a?b/c", "x", "file:///a?b/x"},
        {"host taken for a segment", "https://h", "../../x", "https://h/x"},
        {"scheme of the base not lower-cased", "HTTP://H/A?/b", "x", "http://H/x"},
        {"localhost kept", "FILE://localhost/a/b", "x", "file:///a/x"},
        {"base without // has a root", "urn:a/b", "../../x", "urn:a/x"},
        {"relative base climbs to the root", "a/b", "../../x", "a/x"},
        {"drive letter taken for a scheme", "file:///d/doc.xml", "C:/a.xml", "file:///d/C:/a.xml"},

        {"entry loses its archive", "jar:file:///z.jar!/a/b.xml", "c.xml", "jar:file:///z.jar!/a/c.xml"},
        {"climbs out of the archive", "jar:file:///z.jar!/a/b.xml", "../../c", "jar:file:///z.jar!/c"},
        {"root of the outer archive", "jar:f:/o!/i.zip!/a/b", "/c", "jar:f:/o!/i.zip!/c"},
        {"jar without entry has a limit", "jar:a/b", "../c", "jar:a/c"},

        {"end of the base not tidied: /.", "file:///a/b/.", "x", "file:///a/b/x"},
        {"end of the base not tidied: /..", "file:///a/b/c/..", "x", "file:///a/b/x"},
        {"end of the base not tidied: /../", "file:///a/b/c/../", "x", "file:///a/b/x"},
        {"tidied once only", "file:///a/b/c/.././../.", "x", "file:///a/x"},

        {"reference with a scheme resolved", "file:///a/b", "mailto:x", "mailto:x"},
        {"scheme of the reference lower-cased", "file:///a/b", "HTTP://h", "HTTP://h"},
        {"host read as path", "http://h/a", "//srv/a", "file://srv/a"},
        {"file: with an authority changed", "file:///d/doc.xml", "FILE://srv/x", "FILE://srv/x"},
        {"file: with one slash", "file:///d/doc.xml", "file:/x/y", "file://x/y"},
        {"file: without slash is absolute", "file:///d/doc.xml", "file:x.xml", "file:///d/x.xml"},

        {"base without / used", "doc.xml", "x", "x"},
        {"base ./ used", "./", "../x", "../x"},
        {"empty base used", "", "/x", "/x"},
        {"empty reference gives the base", "file:///a/b", "", ""},
        {"blank reference is empty", "file:///a/b", " \t", "file:///a/"},
        {"spaces not trimmed and escaped", "file:///a b/c", "  x y\n", "file:///a b/x%20y"},
        {"spaces of data escaped", "/a/b", " DATA:,a b ", "DATA:,a b"},

        {"archive not resolved", "file:///d/doc.xml", "jar:a.zip!/e f", "jar:file:///d/a.zip!/e%20f"},
        {"scheme not written in lower case", "file:///d/doc.xml", "JAR:http://h/a.zip!/e", "jar:http://h/a.zip!/e"},
        {"only one jar: taken off", "file:///d/doc.xml", "jar:\tjar:../a!/b!/c", "jar:jar:file:///a!/b!/c"},
        {"jar: without archive gets the base", "file:///d/doc.xml", "jar:jar:", "jar:jar:"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.fault << ": " << c.reference << " against " << c.base);
        EXPECT_EQ(resolved(c.base, c.reference), c.result);
    }
}

TEST(LumUriSub, unwrapsQuotesAndUrl) {
    struct Case {
        const char *fault, *s;
        int strType;
        const char* result;
        int specType;
    };
    static constexpr Case cases[] = {
        {"unwraps what it may not", "url('a')", 0, "url('a')", 0},
        {"unwraps what it may not", "url('a')", 1, "url('a')", 2},
        {"inside not trimmed, kind kept", "url( ' a b ' )", 3, " a b ", 0},
        {"unequal quotes removed", "'a\"", 3, "'a\"", 2},
        {"one quote counted twice", "'", 3, "'", 2},
        {"open wrapper cut", "url(a", 3, "url(a", 2},
        {"wrapper in upper case taken", "URL(a)", 3, "URL(a)", 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.fault << ": " << c.s << ", type " << c.strType);
        int specType = -1;
        EXPECT_EQ(utf8(LumUriSub::unquoteUri(text(c.s), specType, c.strType)), c.result);
        EXPECT_EQ(specType, c.specType);
    }
}

TEST(LumUriSub, recognisesSchemes) {
    static constexpr std::pair<const char*, int> cases[] = {
        {"http://h", 4}, {"C:/a", -1}, {"ab:", 2}, {"a+-.9:x", 5}, {"9a:x", -1},
        {"a_b:c", -1},   {"ab", -1},   {"", -1},   {":a", -1},     {"\xC3\xA9t\xC3\xA9:x", -1},
        {"a/b:c", -1},
    };
    for (const auto& [s, colon] : cases) EXPECT_EQ(LumUriSub::checkScheme(text(s)), colon) << s;
    EXPECT_TRUE(LumUriSub::isFileScheme(u"FiLe:x"));
    EXPECT_TRUE(LumUriSub::isJarScheme(u"JAR:"));
    EXPECT_TRUE(LumUriSub::isDataScheme(u"Data:,"));
    EXPECT_FALSE(LumUriSub::isDataScheme(u"dat\u0430:,")) << "a letter that only looks like a";
}

TEST(LumUriSub, makesUrisFromPathsAndPathsFromUris) {
    static constexpr const char* uris[][2] = {
        {"/docs/u/doc.xml", "file:///docs/u/doc.xml"},
        {"//srv/a b", "file://srv/a%20b"},
        {" a b.xml\n", "a%20b.xml"},
        {"http://h/a b", "http://h/a%20b"},
        {"data:, a ", "data:, a"},
        {"", ""},
    };
    for (const auto& [path, uri] : uris) EXPECT_EQ(utf8(LumUriSub::makeUriFromPath(text(path), 0)), uri) << path;

    static constexpr const char* paths[][2] = {
        {"file:///docs/a", "/docs/a"},
        {"file://srv/a", "//srv/a"},
        {"file:/a", "/a"},
        {"file:a", "a"},
        {"FILE:////a", "//a"},
        {"a%20b", "a b"},
        {"http://h/%20", "http://h/%20"},
        {"C:/a%41", "C:/aA"},
        {"", ""},
    };
    for (const auto& [uri, path] : paths) EXPECT_EQ(utf8(LumUriSub::makeLocalPathFromUri(text(uri))), path) << uri;
}

TEST(LumUriSub, decodesEscapesToSingleUnits) {
    static constexpr const char* cases[][2] = {
        {"a%41%2", "aA%2"}, {"%C3%a9", "\xC3\x83\xC2\xA9"}, {"%", "%"},       {"%%41", "%A"},
        {"%4%41", "%4A"},   {"%G1%1G", "%G1%1G"},           {"%2541", "%41"}, {"x", "x"},
    };
    for (const auto& [s, decoded] : cases) EXPECT_EQ(utf8(LumUri::unescape(text(s))), decoded) << s;
    EXPECT_EQ(LumUri::unescape(u"%FF%00").length(), 2);
}

TEST(LumUriSub, takesLongInputsInOnePass) {
    constexpr int n = 400000;
    const auto start = std::chrono::steady_clock::now();
    const std::string deep = "file:///" + repeated("d/", n);
    EXPECT_EQ(resolved(deep + "x", repeated("../", n) + "y"), "file:///y");
    EXPECT_EQ(resolved(deep + repeated("../", n) + "x", "y").size(), deep.size() + 3 * n + 1) << "dots inside stay";
    EXPECT_EQ(resolved("/a/" + repeated("../", n), repeated("./", n) + "y"), "/y");
    EXPECT_EQ(resolved("file:///d/x", repeated("jar:", n) + "a!/b"), repeated("jar:", n) + "file:///d/a!/b");
    EXPECT_EQ(utf8(LumUri::unescape(text(repeated("%41", n)))), std::string(n, 'A'));
    EXPECT_EQ(utf8(LumUri(text("a" + repeated(" ", n) + "b")).toString()), "a" + repeated("%20", n) + "b");
    EXPECT_EQ(utf8(LumUri(text(deep + "a/b")).getRelativeUri(text(deep + "b/c"))), "../a/b");
    EXPECT_EQ(utf8(LumUri(u"file:///b").getRelativeUri(text(deep))), repeated("../", n) + "b");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10)) << "time grows faster than the input";
}

}  // namespace
