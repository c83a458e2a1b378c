// What the operations on the text of a URI answer; nothing here opens one.

#include <gtest/gtest.h>
#include <lumcommon/uri/LumDataUri.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/uri/LumUriSub.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "support/Recipe.h"
#include "support/Sweeps.h"
#include "support/Utf8.h"

namespace {

using namespace LumCommon;
using LumTest::utf8;
using Texts = std::vector<std::string>;

UnicodeString text(const std::string& bytes) { return UnicodeString::fromUTF8(bytes); }

std::string repeated(const std::string& piece, std::size_t times) {
    return LumTest::recipeBytes(text(std::to_string(times) + "*'" + piece + "'"));
}

std::string resolved(const std::string& base, const std::string& reference) {
    return utf8(LumUriSub::makeAbsUri(text(base), text(reference)));
}

Texts unquote(const Texts& in) {
    int kind = -1;
    const UnicodeString result = LumUriSub::unquoteUri(text(in[0]), kind, std::stoi(in[1]));
    return {utf8(result), std::to_string(kind)};
}

Texts scheme(const Texts& in) {
    const UnicodeString s = text(in[0]);
    std::string kind;
    if (LumUriSub::isFileScheme(s)) kind += "file";
    if (LumUriSub::isJarScheme(s)) kind += "jar";
    if (LumUriSub::isDataScheme(s)) kind += "data";
    return {std::to_string(LumUriSub::checkScheme(s)), kind};
}

Texts parts(const Texts& in) {
    const LumUri uri(text(in[0]));
    EXPECT_EQ(uri.isAbsolute(), !uri.getScheme().isEmpty());
    EXPECT_FALSE(uri.isRemote());
    return {utf8(uri.getScheme()),     utf8(uri.getFileName()),  utf8(uri.getExtension()),
            utf8(uri.getBaseString()), utf8(uri.getLocalPath()), uri.isFile() ? "file" : "other"};
}

Texts extension(const Texts& in) {
    LumUri uri(text(in[0]));
    const UnicodeString given = text(in[1]);
    const std::string old = utf8(uri.setExtension(in[1] == "(null)" ? nullptr : &given));
    return {utf8(uri.toString()), old};
}

Texts fragment(const Texts& in) {
    LumUri uri(text(in[0]));
    const std::string removed = utf8(uri.removeFragment());
    return {utf8(uri.toString()), removed};
}

Texts data(const Texts& in) {
    LumDataUri uri(text(in[0]));
    const auto answers = [&uri]() -> Texts {
        const int start = uri.getDataStart();
        return {utf8(uri.getMediaType()), uri.hasParameters() ? "yes" : "no", std::to_string(uri.getPage()),
                start == -1 ? "(null)" : utf8(UnicodeString(uri.toString(), start))};
    };
    const Texts first = answers();
    uri.init();
    EXPECT_EQ(answers(), first) << "taken apart again";
    return first;
}

/// How many fields an operation takes, and what it gives.
const std::map<std::string, std::pair<std::size_t, std::function<Texts(const Texts&)>>> operations = {
    {"resolve", {2, [](const Texts& in) { return Texts{resolved(in[0], in[1])}; }}},
    {"unquote", {2, unquote}},
    {"scheme", {1, scheme}},
    {"fromPath", {1, [](const Texts& in) { return Texts{utf8(LumUriSub::makeUriFromPath(text(in[0]), 0))}; }}},
    {"toPath", {1, [](const Texts& in) { return Texts{utf8(LumUriSub::makeLocalPathFromUri(text(in[0])))}; }}},
    {"unescape", {1, [](const Texts& in) { return Texts{utf8(LumUri::unescape(text(in[0])))}; }}},
    {"parts", {1, parts}},
    {"extension", {2, extension}},
    {"fragment", {1, fragment}},
    {"relative", {2, [](const Texts& in) { return Texts{utf8(LumUri(text(in[0])).getRelativeUri(text(in[1])))}; }}},
    {"data", {1, data}},
};

TEST(LumUri, answersAboutItsText) {
    const auto rows = LumTest::readTextRows("uri/rules.txt", 3);
    EXPECT_GT(rows.size(), 130u);
    for (auto row : rows) {
        SCOPED_TRACE(row[0] + ": " + row[2]);
        const auto& [arguments, run] = operations.at(row[1]);
        const Texts results = run({row.begin() + 2, row.begin() + 2 + std::ptrdiff_t(arguments)});
        row.resize(2 + arguments + results.size());
        EXPECT_EQ(results, Texts(row.begin() + 2 + std::ptrdiff_t(arguments), row.end()));
    }
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
