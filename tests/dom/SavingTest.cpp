#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unicode/locid.h>

#include <functional>
#include <sstream>

#include "dom/CountedDocument.h"
#include "support/CommaLocale.h"
#include "support/ExpectError.h"
#include "support/FaultyCalls.h"
#include "support/TempFolder.h"

namespace LumTest {
namespace {

const std::string prolog = "<?xml version=\"1.0\"?>";

class SavingTest : public testing::Test {
protected:
    SavingTest() {
        document->getSerializer()->setGenerator(UnicodeString());
        for (int i = 0; i < 20000; ++i) content += "<e a='" + std::to_string(i) + "'/>";
        content = "<r>" + content + "</r>";
        writeFile(path, old);
    }
    /// Of files in the folder.
    long count() const { return std::distance(std::filesystem::directory_iterator(folder.getPath()), {}); }

    const TempFolder folder;
    const std::string path = folder.getPath() + "a.xml", old = "<old/>";
    std::string content;
    LumPtr<LumDocument> document{new LumDocument};
};

TEST_F(SavingTest, whateverCallFailsTheFileHoldsTheOldOrTheNew) {
    document->loadXml(text(content));
    const std::string saved = prolog + utf8(document->saveXml(document->getDocumentElement()));
    ASSERT_GT(saved.size(), 3u * 65536);
    for (const CallFault fault : {CallFault::FAILS, CallFault::INTERRUPTED, CallFault::SHORT}) {
        bool hasCome = true;
        int failures = 0;
        for (int number = 1; hasCome && !HasFailure(); ++number) {
            SCOPED_TRACE("call " + std::to_string(number) + ", fault " + std::to_string(static_cast<int>(fault)));
            writeFile(path, old);
            unsigned code = 0;
            {
                const FaultyCalls calls(fault, number);
                try {
                    document->saveReplacing(text(path));
                } catch (const LumError& error) {
                    code = error.code;
                }
                hasCome = calls.hasCome();
            }
            EXPECT_EQ(count(), 1);
            const std::string bytes = readFile(path);
            if (code == 0) {
                EXPECT_TRUE(bytes == saved) << "the call is not missed";
            } else {
                ++failures;
                EXPECT_TRUE(code == 0x1003 || code == 0x1007) << code;
                // After the renaming, only putting the folder on the disk can fail.
                EXPECT_TRUE(bytes == old || (code == 0x1007 && bytes == saved));
            }
        }
        EXPECT_EQ(failures > 8, fault == CallFault::FAILS)
            << failures << " failures: an interruption ends it, or calls are missed";
    }
}

TEST_F(SavingTest, whateverReadFailsLoadingTellsIt) {
    writeFile(path, content);
    document->loadXml(text(content));
    const UnicodeString whole = document->saveXml();
    for (const CallFault fault : {CallFault::FAILS, CallFault::INTERRUPTED, CallFault::SHORT}) {
        bool hasCome = true;
        for (int number = 1; hasCome && !HasFailure(); ++number) {
            SCOPED_TRACE("call " + std::to_string(number) + ", fault " + std::to_string(static_cast<int>(fault)));
            unsigned code = 0;
            {
                const FaultyCalls calls(fault, number);
                try {
                    document->load(text(path));
                } catch (const LumError& error) {
                    code = error.code;
                }
                hasCome = calls.hasCome();
            }
            EXPECT_EQ(code, hasCome && fault == CallFault::FAILS ? 0x1006u : 0u);
            EXPECT_TRUE(code != 0 || document->saveXml() == whole);
        }
    }
}

TEST_F(SavingTest, theFileThatIsStillBeingReadIsNotEmptied) {
    writeFile(path, content);
    std::filesystem::create_symlink("a.xml", folder.getPath() + "link");
    std::filesystem::create_hard_link(path, folder.getPath() + "twin");
    document->setDeferredLoad(true);
    document->load(text("file://" + path));
    for (const std::string name : {"a.xml", "link", "twin", "./a.xml"}) {
        const std::string other = folder.getPath() + name;
        for (const auto& save : {+[](LumDocument&d, const UnicodeString&to) { d.save(to); },
                                 +[](LumDocument&d, const UnicodeString&to) { d.saveDocumentElement(to); }}) {
            expectError(0x1003, "Cannot open file: " + other + " (it is still being read)",
                        "LumCommon::XmlSerializerImpl::setOutput", [&] { save(*document, text(other)); });
        }
    }
    EXPECT_EQ(readFile(path), content);
    document->save(text(folder.getPath() + "copy"));
    document->save(text(path));  // all of it has been read
    EXPECT_EQ(readFile(path), readFile(folder.getPath() + "copy"));
    document->load(text(path));
    document->saveReplacing(text(path));
    EXPECT_TRUE(readFile(path) == readFile(folder.getPath() + "copy")) << "replaced before it was read";
}

TEST_F(SavingTest, aReplacedFileKeepsItsRightsAndLinksAndStaysWhereItCannotBeReplaced) {
    document->loadXml(u"<n/>");
    const std::string saved = prolog + "<n/>", in = folder.getPath();
    const auto rights = [](const std::string& of) {
        struct stat status = {};
        EXPECT_EQ(::stat(of.c_str(), &status), 0);
        return status.st_mode & 07777u;
    };
    const mode_t mask = ::umask(027);
    std::filesystem::create_directory(in + "d");
    std::filesystem::create_symlink("d/made", in + "dangling");
    std::filesystem::create_symlink(path, in + "d/absolute");
    std::filesystem::create_symlink("loop", in + "loop");
    ::chmod(path.c_str(), 0604);
    struct {
        const char* fault;
        std::string to, changed;
        unsigned rights;  // 0: it is refused
    } const rows[] = {
        {"a new file is too open or too closed", in + "new", in + "new", 0640},
        {"rights of the old one are lost", path, path, 0604},
        {"a link is replaced", in + "d/absolute", path, 0604},
        {"a link to nothing is replaced", in + "dangling", in + "d/made", 0640},
        {"a folder is replaced", in + "d", "", 0},
        {"a folder gets a file without a name", in + "d/", "", 0},
        {"links are followed for ever", in + "loop", "", 0},
        {"a missing folder is made up for", in + "no/n", "", 0},
        {"what is no file is opened", "http://127.0.0.1/n", "", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.fault);
        if (row.rights == 0) {
            expectError(0x1003, "Cannot open file: " + row.to, "LumCommon::XmlSerializerImpl::setOutput",
                        [&] { document->saveReplacing(text(row.to)); });
            continue;
        }
        document->saveReplacing(text(row.to));
        EXPECT_EQ(readFile(row.changed), saved);
        EXPECT_EQ(rights(row.changed), row.rights);
        std::filesystem::remove(row.changed);
        writeFile(path, old);
        ::chmod(path.c_str(), 0604);
    }
    ::umask(mask);
    EXPECT_EQ(count(), 4) << "a file is left";
    expectError(0x1007, "Output stream error.", "LumCommon::XmlSerializerImpl::checkStream",
                [&] { document->saveReplacing(u"/dev/full"); });
    document->saveReplacing(u"/dev/null");
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null")) << "a device is replaced";
}

/// A text that does something while it is written.
class ActingText : public LumTextNode {
public:
    ActingText(LumDocument* document, const std::function<void()>& act)
        : LumTextNode(document, UnicodeString()), act_(act) {}
    UnicodeString getText() const override { return act_(), u"t"; }

private:
    const std::function<void()>& act_;
};

TEST_F(SavingTest, whatVanishesMeanwhileIsToldOrMadeAgain) {
    document->loadXml(u"<n/>");
    const std::string in = folder.getPath() + "d/", file = in + "n.xml";
    std::function<void()> act;
    document->getDocumentElement()->appendChild(LumPtr<LumNode>(new ActingText(document.get(), act)).get());
    const auto save = [&] {
        std::filesystem::create_directory(in);
        writeFile(file, old);
        document->saveReplacing(text(file));
    };
    act = [&] { std::filesystem::remove(file); };
    save();
    EXPECT_EQ(readFile(file), prolog + "<n>t</n>");
    act = [&] { std::filesystem::remove_all(in); };
    expectError(0x1007, "Output stream error.", "LumCommon::XmlSerializerImpl::checkStream", save);
    act = [] { throw std::runtime_error("enough"); };
    EXPECT_THROW(save(), std::runtime_error);
    EXPECT_EQ(readFile(file), old);
}

TEST_F(SavingTest, bytesAreTheSameInEveryLocaleAndTimeZone) {
    const auto saved = [&] {
        std::istringstream in("<?xml version='1.0' encoding='iso-8859-1'?><i>\xE9</i>");
        document->load(in);
        LumElement& root = *document->getDocumentElement();
        root.setAttribute(LumName(u"length"), LumValue(1.5f, UNIT_PT));
        root.setAttribute(LumName(u"color"), LumValue(LumColor(LumColor(), u"Spot", 0.5f)));
        document->saveReplacing(text(path), nullptr, u"shift_jis");
        return readFile(path);
    };
    const std::string expected = saved();
    EXPECT_NE(expected.find("encoding=\"SHIFT_JIS\"?><i length=\"1.5pt\""), std::string::npos) << expected;
    UErrorCode status = U_ZERO_ERROR;
    const icu::Locale before = icu::Locale::getDefault();
    icu::Locale::setDefault(icu::Locale("tr"), status);
    ::setenv("TZ", "Asia/Kathmandu", 1);
    {
        const CommaLocale locale;
        EXPECT_EQ(saved(), expected);
    }
    ::unsetenv("TZ");
    icu::Locale::setDefault(before, status);
}

}  // namespace
}  // namespace LumTest
