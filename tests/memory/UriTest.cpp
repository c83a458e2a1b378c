// What uri/ does when memory runs out.

#include <lumcommon/containers/LumZipFile.h>
#include <lumcommon/uri/LumDataUri.h>
#include <lumcommon/uri/LumUri.h>
#include <support/FailingMemory.h>
#include <support/TempFolder.h>
#include <support/Utf8.h>
#include <support/ZipBytes.h>

#include <memory>

namespace {

using namespace LumCommon;
using LumTest::utf8;
using LumTest::operator""_text;

const UnicodeString longText(u"folder/of/a/path/that/is/too/long/for/the/string/object"_text);

/// A copy of it needs memory.
UnicodeString borrowed() { return UnicodeString(false, longText.getBuffer(), longText.length()); }

/// A folder with a file and, in an archive that is a member of another one, a file.
struct Files {
    LumTest::TempFolder folder;
    Files() {
        using LumTest::ZipArchive;
        const std::string inner =
            ZipArchive().add(LumTest::deflatedMember("in ner.txt", std::string(9000, 'i'))).bytes();
        LumTest::writeFile(folder.getPath() + "plain.txt", std::string(9000, 'p'));
        LumTest::writeFile(folder.getPath() + "outer.zip",
                           ZipArchive().add(LumTest::deflatedMember("inner.zip", inner)).bytes());
    }
    UnicodeString path(const char* name) const { return UnicodeString::fromUTF8(folder.getPath() + name); }
};

struct Row {
    const char* fault;
    std::string (*operation)(const Files& files);
};
const Row rows[] = {
    {"a part of the URI is lost",
     [](const Files&) {
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
     [](const Files&) {
         return utf8(LumUri(u"'file:///C%20D%20a%20long%20path%20with%20escapes%41'"_text, LumUri::URISTR_3)
                         .getLocalPath()) +
                utf8(LumUri(borrowed(), LumUri::URISTR_1).toString()) + utf8(LumUri::unescape(borrowed())) +
                utf8(LumUri(u"url( 'a long path with blanks and quotes' )"_text, LumUri::URISTR_2).toString()) +
                utf8(LumUri(LumUri(u"jar:file:///a/long/path.zip!/member"_text), borrowed()).toString());
     }},
    {"the data: URI lacks a part",
     [](const Files&) {
         static const UnicodeString text(
             u"data:application/a-long-type-of-media;page=3;name=%41%42,data%20long%20enough%20to%20matter"_text);
         const LumDataUri uri(text);
         return utf8(uri.toString()) + utf8(uri.getMediaType()) + std::to_string(uri.getPage()) +
                std::to_string(uri.getDataStart());
     }},
    {"the file is shorter",
     [](const Files& files) {
         const std::unique_ptr<std::istream> in(LumUri(files.path("plain.txt")).getStream());
         return LumTest::contentOrFailure(in.get());
     }},
    {"the member of a member is shorter",
     [](const Files& files) {
         const LumUri uri(u"jar:" + LumUri(files.path("outer.zip")).toString() + u"!/inner.zip!/in%20ner.txt");
         const std::unique_ptr<std::istream> in(uri.getStream());
         return LumTest::contentOrFailure(in.get());
     }},
    {"what is written is lost",
     [](const Files& files) {
         std::unique_ptr<std::ostream> out(LumUri::createOStream(files.path("written.txt")));
         if (!out) throw std::bad_alloc();
         *out << std::string(9000, 'w');
         if (!LumUri::releaseOStream(out.release())) throw std::bad_alloc();
         const std::unique_ptr<std::istream> in(LumUri(files.path("written.txt")).getStream());
         return LumTest::contentOrFailure(in.get());
     }},
};

TEST(UriMemory, failsAloud) {
    const Files files;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        LumTest::forEveryFailure([&] { return row.operation(files); });
    }
}

}  // namespace
