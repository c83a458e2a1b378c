// What the operations on the text of a URI answer; nothing here opens one.

#include <gtest/gtest.h>
#include <lumcommon/lumcommon.h>

#include <string>
#include <vector>

#include "support/DataRows.h"
#include "support/Recipe.h"
#include "support/Sweeps.h"
#include "support/Utf8.h"

namespace {

using namespace LumCommon;
using LumTest::Fields;
using LumTest::utf8;

UnicodeString text(const std::string& bytes) { return UnicodeString::fromUTF8(bytes); }

std::string repeated(const std::string& piece, std::size_t times) {
    return LumTest::recipeBytes(text(std::to_string(times) + "*'" + piece + "'"));
}

std::string resolved(const std::string& base, const std::string& reference) {
    return utf8(LumUriSub::makeAbsUri(text(base), text(reference)));
}

/// Several results as one, with "-" for an empty one.
std::string joined(const std::vector<UnicodeString>& results) {
    std::string all;
    for (const UnicodeString& each : results) all += (all.empty() ? "" : " ~ ") + (each == u"" ? "-" : utf8(each));
    return all;
}

std::string unquote(const Fields& in) {
    int kind = -1;
    const UnicodeString result = LumUriSub::unquoteUri(in[0], kind, static_cast<int>(LumTest::numberOf(in[1])));
    return joined({result, LumUtil::toString(kind)});
}

std::string scheme(const Fields& in) {
    UnicodeString kind;
    if (LumUriSub::isFileScheme(in[0])) kind += u"file";
    if (LumUriSub::isJarScheme(in[0])) kind += u"jar";
    if (LumUriSub::isDataScheme(in[0])) kind += u"data";
    return joined({LumUtil::toString(LumUriSub::checkScheme(in[0])), kind});
}

std::string parts(const Fields& in) {
    const LumUri uri(in[0]);
    EXPECT_EQ(uri.isAbsolute(), !uri.getScheme().isEmpty());
    EXPECT_FALSE(uri.isRemote());
    return joined({uri.getScheme(), uri.getFileName(), uri.getExtension(), uri.getBaseString(), uri.getLocalPath(),
                   uri.isFile() ? u"file" : u"other"});
}

std::string extension(const Fields& in) {
    LumUri uri(in[0]);
    const UnicodeString old = uri.setExtension(in[1] == u"(null)" ? nullptr : &in[1]);
    return joined({uri.toString(), old});
}

std::string fragment(const Fields& in) {
    LumUri uri(in[0]);
    const UnicodeString removed = uri.removeFragment();
    return joined({uri.toString(), removed});
}

std::string data(const Fields& in) {
    LumDataUri uri(in[0]);
    const auto answers = [&uri] {
        const int start = uri.getDataStart();
        return joined({uri.getMediaType(), uri.hasParameters() ? u"yes" : u"no", LumUtil::toString(uri.getPage()),
                       start == -1 ? u"(null)" : UnicodeString(uri.toString(), start)});
    };
    const std::string first = answers();
    uri.init();
    EXPECT_EQ(answers(), first) << "taken apart again";
    static_cast<LumUri&>(uri) = LumUri(u"a");
    uri.init();
    EXPECT_EQ(answers(), "- ~ no ~ 0 ~ (null)") << "something of the former URI is left";
    return first;
}

TEST(LumUri, answersAboutItsText) {
    LumTest::checkRows("uri/rules.txt",
                       {{"resolve", [](const Fields& in) { return utf8(LumUriSub::makeAbsUri(in[0], in[1])); }},
                        {"unquote", unquote},
                        {"scheme", scheme},
                        {"fromPath", [](const Fields& in) { return utf8(LumUriSub::makeUriFromPath(in[0], 0)); }},
                        {"toPath", [](const Fields& in) { return utf8(LumUriSub::makeLocalPathFromUri(in[0])); }},
                        {"unescape", [](const Fields& in) { return utf8(LumUri::unescape(in[0])); }},
                        {"parts", parts},
                        {"extension", extension},
                        {"fragment", fragment},
                        {"relative", [](const Fields& in) { return utf8(LumUri(in[0]).getRelativeUri(in[1])); }},
                        {"data", data}});
    LumUri own(u"a.b");
    own.setExtension(&own.toString());
    EXPECT_EQ(utf8(own.toString()), "aa.b") << "its own string as extension";
    EXPECT_EQ(utf8(LumUri(u"url(a)", LumUri::URISTR_1).toString()), "url(a)") << "the string type is ignored";
    EXPECT_EQ(utf8(LumDataUri(LumUri(u"file:///a/b"), u"data:,%41").toString()), "data:,A") << "not decoded";
    UnicodeString folder(u"a");
    for (int i = 0; i < 2; ++i) EXPECT_EQ(utf8(LumUri::toDirectory(folder, u'/')), "a/");
}

TEST(LumUri, takesLongInputsInOnePass) {
    LumTest::expectLinearTime("time grows faster than the input", 50000, [](std::size_t n) {
        const std::string deep = "file:///" + repeated("d/", n);
        EXPECT_EQ(resolved(deep + "x", repeated("../", n) + "y"), "file:///y");
        EXPECT_EQ(resolved(deep + repeated("../", n) + "x", "y").size(), deep.size() + 3 * n + 1) << "dots inside stay";
        EXPECT_EQ(resolved("/a/" + repeated("../", n), repeated("./", n) + "y"), "/y");
        EXPECT_EQ(resolved("file:///d/x", repeated("jar:", n) + "a!/b"), repeated("jar:", n) + "file:///d/a!/b");
        EXPECT_EQ(utf8(LumUri::unescape(text(repeated("%41", n)))), std::string(n, 'A'));
        EXPECT_EQ(utf8(LumUri(text("a" + repeated(" ", n) + "b")).toString()), "a" + repeated("%20", n) + "b");
        EXPECT_EQ(utf8(LumUri(text(deep + "a/b")).getRelativeUri(text(deep + "b/c"))), "../a/b");
        EXPECT_EQ(utf8(LumUri(u"file:///b").getRelativeUri(text(deep))), repeated("../", n) + "b");
    });
}

}  // namespace
