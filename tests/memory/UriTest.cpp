// What uri/ does when memory runs out.

#include <support/FailingMemory.h>
#include <support/TempFolder.h>
#include <support/ZipBytes.h>

namespace {

using namespace LumCommon;
using LumTest::utf8;
using LumTest::operator""_text;

const UnicodeString longText(u"folder/of/a/path/that/is/too/long/for/the/string/object"_text);

/// A copy of it needs memory.
UnicodeString borrowed() { return UnicodeString(false, longText.getBuffer(), longText.length()); }

// A folder has a file and, in an archive that is a member of another one, a file.
TEST(UriMemory, failsAloud) {
    static const LumTest::TempFolder folder;
    static const auto pathOf = [](const char* name) { return UnicodeString::fromUTF8(folder.getPath() + name); };
    using LumTest::ZipArchive;
    const std::string inner = ZipArchive().add(LumTest::deflatedMember("in ner.txt", std::string(9000, 'i'))).bytes();
    LumTest::writeFile(folder.getPath() + "plain.txt", std::string(9000, 'p'));
    LumTest::writeFile(folder.getPath() + "outer.zip",
                       ZipArchive().add(LumTest::deflatedMember("inner.zip", inner)).bytes());
    const LumTest::MemoryRow<> rows[] = {
        {"a part of the URI is lost",
         [](auto&) {
             LumUri uri(LumUri(u"http://host/a/long/path/with?query"_text), borrowed());
             const UnicodeString extension = borrowed(), old = uri.setExtension(&extension);
             UnicodeString directory = borrowed();
             LumUri::toDirectory(directory, u'/');
             uri.setExtension(nullptr);
             LumUri fragment(longText);
             fragment = LumUri(fragment, u"#fragment");
             return utf8(uri.toString()) + utf8(old) + utf8(directory) +
                    utf8(uri.getRelativeUri(u"http://host/b/c/d/e"_text)) + utf8(uri.getBaseString()) +
                    utf8(uri.getFileName()) + utf8(fragment.removeFragment()) + utf8(fragment.toString()) +
                    utf8(uri.getScheme());
         }},
        {"the path is that of another file",
         [](auto&) {
             return utf8(LumUri(u"'file:///C%20D%20a%20long%20path%20with%20escapes%41'"_text, LumUri::URISTR_3)
                             .getLocalPath()) +
                    utf8(LumUri(borrowed(), LumUri::URISTR_1).toString()) + utf8(LumUri::unescape(borrowed())) +
                    utf8(LumUri(u"url( 'a long path with blanks and quotes' )"_text, LumUri::URISTR_2).toString()) +
                    utf8(LumUri(LumUri(u"jar:file:///a/long/path.zip!/member"_text), borrowed()).toString());
         }},
        {"the data: URI lacks a part",
         [](auto&) {
             static const UnicodeString text(
                 u"data:application/a-long-type-of-media;page=3;name=%41%42,data%20long%20enough%20to%20matter"_text);
             const LumDataUri uri(text);
             return utf8(uri.toString()) + utf8(uri.getMediaType()) + std::to_string(uri.getPage()) +
                    std::to_string(uri.getDataStart());
         }},
        {"the file is shorter",
         [](auto&) {
             const std::unique_ptr<std::istream> in(LumUri(pathOf("plain.txt")).getStream());
             return LumTest::contentOrFailure(in.get());
         }},
        {"the member of a member is shorter",
         [](auto&) {
             const LumUri uri(u"jar:" + LumUri(pathOf("outer.zip")).toString() + u"!/inner.zip!/in%20ner.txt");
             const std::unique_ptr<std::istream> in(uri.getStream());
             return LumTest::contentOrFailure(in.get());
         }},
        {"what is written is lost",
         [](auto&) {
             std::unique_ptr<std::ostream> out(LumUri::createOStream(pathOf("written.txt")));
             LumTest::insist(out.get());
             *out << std::string(9000, 'w');
             LumTest::insist(LumUri::releaseOStream(out.release()));
             const std::unique_ptr<std::istream> in(LumUri(pathOf("written.txt")).getStream());
             return LumTest::contentOrFailure(in.get());
         }},
    };
    LumTest::forEveryFailure(rows);
}

}  // namespace
