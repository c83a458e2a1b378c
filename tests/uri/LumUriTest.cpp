#include <gtest/gtest.h>
#include <lumcommon/uri/LumUri.h>
#include <support/TempFolder.h>
#include <support/Utf8.h>

#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

using namespace LumCommon;
using LumTest::utf8;

UnicodeString text(const std::string& bytes) { return UnicodeString::fromUTF8(bytes); }

class LumUriTest : public testing::Test {
protected:
    void SetUp() override { std::filesystem::create_directory(folder_); }
    void TearDown() override { LumUri::setUriReferenceResolver(nullptr); }
    std::string makeFile(const std::string& name, const std::string& bytes) const {
        LumTest::writeFile(folder_ + "/" + name, bytes);
        return folder_ + "/" + name;
    }
    static std::string contentOf(const LumUri& uri) {
        const std::unique_ptr<std::istream> in(uri.getStream());
        if (!in) return "(null)";
        return std::string(std::istreambuf_iterator<char>(*in), {});
    }
    const LumTest::TempFolder tempFolder_;
    const std::string folder_ = tempFolder_.getPath() + "lum uri";
};

TEST_F(LumUriTest, answersAboutItsString) {
    struct Case {
        const char *fault, *uri, *scheme, *fileName, *extension, *baseString, *localPath;
        bool isFile;
    };
    static constexpr Case cases[] = {
        {"path not made absolute", "/h/u/doc.xml", "file", "doc.xml", ".xml", "/h/u/", "/h/u/doc.xml", true},
        {"url() not unwrapped", "url('a b.xml')", "", "a%20b.xml", ".xml", "./", "a b.xml", true},
        {"dot of a folder taken", "/a.b/c", "file", "c", "", "/a.b/", "/a.b/c", true},
        {"first dot taken", "x/a.tar.gz", "", "a.tar.gz", ".gz", "x/", "x/a.tar.gz", true},
        {"extension of a folder", "/a.b/", "file", "", "", "/a.b/", "/a.b/", true},
        {"dot at the end is no extension", "a.", "", "a.", ".", "./", "a.", true},
        {"escapes of a remote URI decoded", "http://h/a%20b.x", "http", "a%20b.x", ".x", "http://h/",
         "http://h/a%20b.x", false},
        {"extension of data", "data:image/x.y,z", "data", "x.y,z", "", "data:image/", "data:image/x.y,z", false},
        {"empty URI", "", "", "", "", "./", "", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.fault << ": " << c.uri);
        const LumUri uri(text(c.uri));
        EXPECT_EQ(utf8(uri.getScheme()), c.scheme);
        EXPECT_EQ(utf8(uri.getFileName()), c.fileName);
        EXPECT_EQ(utf8(uri.getExtension()), c.extension);
        EXPECT_EQ(utf8(uri.getBaseString()), c.baseString);
        EXPECT_EQ(utf8(uri.getLocalPath()), c.localPath);
        EXPECT_EQ(uri.isFile(), c.isFile);
        EXPECT_EQ(uri.isAbsolute(), *c.scheme != '\0');
        EXPECT_FALSE(uri.isRemote());
    }
    EXPECT_EQ(utf8(LumUri(u"url(a)", LumUri::URISTR_1).toString()), "url(a)") << "the string type is ignored";
}

TEST_F(LumUriTest, replacesTheExtension) {
    struct Case {
        const char *fault, *uri, *extension, *after, *old;
    };
    static constexpr Case cases[] = {
        {"old extension stays", "/a/b.xml", ".pdf", "file:///a/b.pdf", ".xml"},
        {"nothing appended without an old one", "a.b/c", ".pdf", "a.b/c.pdf", ""},
        {"dot invented", "a.xml", "pdf", "apdf", ".xml"},
        {"null appends", "a.xml", nullptr, "a", ".xml"},
        {"folder changed", "a.b/", ".pdf", "a.b/", "(bogus)"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        LumUri uri(text(c.uri));
        const UnicodeString extension = c.extension ? text(c.extension) : UnicodeString();
        EXPECT_EQ(utf8(uri.setExtension(c.extension ? &extension : nullptr)), c.old);
        EXPECT_EQ(utf8(uri.toString()), c.after);
    }
    LumUri uri(u"a.b");
    uri.setExtension(&uri.toString());
    EXPECT_EQ(utf8(uri.toString()), "aa.b") << "its own string as extension";
}

TEST_F(LumUriTest, cutsTheFragmentAndEndsADirectoryOnce) {
    LumUri uri(u"a.xml#sec#2");
    EXPECT_EQ(utf8(uri.removeFragment()), "#sec#2");
    EXPECT_EQ(utf8(uri.toString()), "a.xml");
    EXPECT_EQ(utf8(uri.removeFragment()), "");
    UnicodeString s(u"a");
    EXPECT_EQ(utf8(LumUri::toDirectory(s, u'/')), "a/");
    EXPECT_EQ(utf8(LumUri::toDirectory(s, u'/')), "a/");
}

TEST_F(LumUriTest, writesItselfRelativeToABase) {
    struct Case {
        const char *fault, *uri, *base, *result;
    };
    static constexpr Case cases[] = {
        {"way down lost", "file:///a/b/c/d.xml", "file:///a/x/e.xml", "../b/c/d.xml"},
        {"below the base", "file:///a/b/c/d", "file:///a/x", "b/c/d"},
        {"above the base", "file:///a/d", "file:///a/b/c/x", "../../d"},
        {"folders that begin alike taken for one", "file:///a/bc/d", "file:///a/b/x", "../bc/d"},
        {"another scheme", "http://h/a", "file:///a/b", ""},
        {"no common folder", "a/b", "c/d", ""},
        {"no folder at all", "b", "c/d", ""},
        {"empty base", "a/b", "", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.fault << ": " << c.uri << " from " << c.base);
        EXPECT_EQ(utf8(LumUri(text(c.uri)).getRelativeUri(text(c.base))), c.result);
    }
}

TEST_F(LumUriTest, findsInstallationFiles) {
    struct Case {
        const char* fault;
        const char *value, *file, *result;
    };
    const std::string folderUri = utf8(LumUri(text(folder_)).toString());
    const std::string inFolder = folderUri + "/x.dat";
    const Case cases[] = {
        {"variable not read", folder_.c_str(), "x.dat", inFolder.c_str()},
        {"library not looked for in the folder", folder_.c_str(), "l.so", nullptr},
        {"folder itself", folder_.c_str(), nullptr, folderUri.c_str()},
        {"missing folder used", "/no/such/folder", "x.dat", "x.dat"},
        {"remote value used", "http://h/", "x.dat", "x.dat"},
        {"library given a folder", "", "l.so", "l.so"},
        {"empty value used", "", "", "."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        setenv("LUM_TEST_HOME", c.value, 1);
        EXPECT_EQ(utf8(LumUri::getModuleUri("ignored", c.file, "LUM_TEST_HOME").toString()),
                  c.result ? c.result : folderUri + "/" + c.file);
    }
    unsetenv("LUM_TEST_HOME");
    EXPECT_EQ(utf8(LumUri::getModuleUri(nullptr, nullptr, nullptr).toString()), ".");
}

TEST_F(LumUriTest, findsFilesWhateverTheirNames) {
    for (const char* const name : {"a.xml", "a b%.xml", "\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80.xml"}) {
        SCOPED_TRACE(name);
        const std::string path = makeFile(name, "x");
        LumUri uri(text(path));
        EXPECT_TRUE(uri.isFileExists());
        EXPECT_EQ(contentOf(uri), "x");
    }
    const std::string path = makeFile("a.xml", "x");
    const LumUri beyondNul(text(path + "%00.png"));
    EXPECT_FALSE(beyondNul.isFileExists()) << "the system saw only what stands before U+0000";
    EXPECT_EQ(contentOf(beyondNul), "(null)");
    EXPECT_TRUE(LumUri(text(path)).isSameFile(LumUri(text("file:" + path))));
    EXPECT_FALSE(LumUri(u"http://h/a").isSameFile(LumUri(u"http://h/a")));
}

TEST_F(LumUriTest, loadsLibraries) {
    void* const handle = LumUri(u"libm.so.6").loadLibrary();
    ASSERT_NE(handle, nullptr);
    using Unary = double (*)(double);
    const auto squareRoot = reinterpret_cast<Unary>(LumUri::getProcAddress(handle, "sqrt"));
    ASSERT_NE(squareRoot, nullptr);
    EXPECT_EQ(squareRoot(4.0), 2.0);
    LumUri::freeLibrary(handle);
    LumUri::freeLibrary(nullptr);
    EXPECT_EQ(LumUri(u"no-such-library.so").loadLibrary(), nullptr);
    EXPECT_EQ(LumUri().loadLibrary(), nullptr) << "the program itself was taken for a library";
    EXPECT_EQ(LumUri::getProcAddress(nullptr, "malloc"), nullptr);
}

TEST_F(LumUriTest, writesAndReadsLocalFiles) {
    const std::string bytes = "\r\n" + std::string(200000, '\0') +
                              "\x1A"
                              "end";
    const std::string path = makeFile("out.bin", "older and longer" + bytes);
    std::ostream* const out = LumUri::createOStream(text("file://" + path));
    ASSERT_NE(out, nullptr);
    *out << bytes;
    EXPECT_TRUE(LumUri::releaseOStream(out));
    EXPECT_TRUE(contentOf(LumUri(text(path))) == bytes);

    const std::unique_ptr<std::istream> in(LumUri(text(path)).getStream());
    in->seekg(-3, std::ios::end);
    std::string tail;
    *in >> tail;
    EXPECT_EQ(tail, "end");

    EXPECT_TRUE(LumUri::releaseOStream(nullptr));
    for (const std::string& bad : {folder_, folder_ + "/no/such", std::string("http://h/a"), std::string()}) {
        EXPECT_EQ(LumUri::createOStream(text(bad)), nullptr) << bad;
        EXPECT_EQ(contentOf(LumUri(text(bad))), "(null)") << bad;
    }
}

TEST_F(LumUriTest, tellsThatNotAllWasWritten) {
    for (const bool throws : {false, true}) {
        std::ostream* const out = LumUri::createOStream(u"/dev/full");
        ASSERT_NE(out, nullptr);
        *out << 'x';  // fails when the file is closed
        if (throws) out->exceptions(std::ios::failbit);
        EXPECT_FALSE(LumUri::releaseOStream(out));
    }
}

class Resolver : public LumUriReferenceResolver {
public:
    std::istream* getStream(const UnicodeString& uri) override {
        if (uri.startsWith(u"throw:")) throw std::runtime_error("resolver");
        return uri.startsWith(u"my:") ? new std::istringstream("resolved " + utf8(uri)) : nullptr;
    }
};

TEST_F(LumUriTest, asksTheResolverFirst) {
    Resolver resolver;
    const std::string path = makeFile("a", "file");
    EXPECT_EQ(LumUri(u"my:a").getStreamFromResolver(), nullptr);
    EXPECT_EQ(LumUri::setUriReferenceResolver(&resolver), nullptr);
    EXPECT_EQ(contentOf(LumUri(u"my:a")), "resolved my:a");
    EXPECT_EQ(contentOf(LumUri(text(path))), "file") << "what the resolver leaves is not opened";
    UnicodeString message;
    EXPECT_EQ(LumUri(u"throw:a").getStream(nullptr, &message), nullptr);
    EXPECT_EQ(utf8(message), "Unknown exception");
    EXPECT_EQ(LumUri(u"throw:a").getStreamFromResolver(), nullptr);
    EXPECT_EQ(LumUri::setUriReferenceResolver(nullptr), &resolver);
    EXPECT_EQ(contentOf(LumUri(u"my:a")), "(null)");
}

}  // namespace
