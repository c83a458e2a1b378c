#include <gtest/gtest.h>
#include <lumcommon/uri/LumDataUri.h>
#include <support/Utf8.h>

#include <string>

namespace {

using namespace LumCommon;
using LumTest::utf8;

TEST(LumDataUri, findsItsParts) {
    struct Case {
        const char *fault, *uri, *mediaType;
        bool hasParameters;
        int page;
        const char* data;  // null for an invalid URI
    };
    static constexpr Case cases[] = {
        {"the shortest", "data:,abc", "", false, 0, "abc"},
        {"parameters", "data:image/png;base64,AAAA", "image/png", true, 0, "AAAA"},
        {"a second comma cuts the data", "data:text/plain,a,b;c", "text/plain", false, 0, "a,b;c"},
        {"page", "data:image/tiff;page=2;base64,AAAA", "image/tiff", true, 2, "AAAA"},
        {"page as a string", "data:image/tiff;page=\"12\",A", "image/tiff", true, 12, "A"},
        {"blanks around the parts", "data: image/tiff ; page = 3 ,A", "image/tiff", true, 3, "A"},
        {"no page has number 0", "data:;page=0,A", "", true, 0, "A"},
        {"the digits of a negative page", "data:;page=-2,A", "", true, 0, "A"},
        {"the code of a delimiter as a page", "data:;page=*,A", "", true, 0, "A"},
        {"a colour as a page", "data:;page=#000002,A", "", true, 0, "A"},
        {"a page without a value", "data:;page;page=,A", "", true, 0, "A"},
        {"a page of 0 hides the one before", "data:;page=4;page=0,A", "", true, 4, "A"},
        {"a page beyond the integers", "data:;page=99999999999,A", "", true, 2147483647, "A"},
        {"page in the data", "data:,;page=2", "", false, 0, ";page=2"},
        {"no comma", "data:text/plain", "", false, 0, nullptr},
        {"no comma behind the parameters", "data:text/plain;page=2;a", "text/plain", true, 2, nullptr},
        {"another scheme", "date:,a", "", false, 0, nullptr},
        {"scheme in capitals", "DATA:a/b,c", "a/b", false, 0, "c"},
        {"escapes in every part", "data:image%2Fpng%3Bpage%3D2%2Ca%41%4", "image/png", true, 2, "aA%4"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.fault << ": " << c.uri);
        LumDataUri uri(UnicodeString::fromUTF8(c.uri));
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(utf8(uri.getMediaType()), c.mediaType);
            EXPECT_EQ(uri.hasParameters(), c.hasParameters);
            EXPECT_EQ(uri.getPage(), c.page);
            EXPECT_EQ(uri.getDataStart() != -1, c.data != nullptr);
            if (c.data) {
                EXPECT_EQ(utf8(UnicodeString(uri.toString(), uri.getDataStart())), c.data);
            }
            uri.init();
        }
    }
}

TEST(LumDataUri, decodesOnce) {
    LumDataUri uri(LumUri(u"file:///a/b"), u"data:,%2541%C3");
    EXPECT_EQ(uri.toString(), UnicodeString(u"data:,%41\u00C3"));
    uri.init();
    EXPECT_EQ(uri.toString(), UnicodeString(u"data:,%41\u00C3")) << "data that look escaped were decoded";
    EXPECT_EQ(LumDataUri().getDataStart(), -1);
}

}  // namespace
