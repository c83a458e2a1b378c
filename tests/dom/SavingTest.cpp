#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <csignal>

#include "dom/CountedDocument.h"
#include "support/CommaLocale.h"
#include "support/ExpectError.h"
#include "support/FaultyCalls.h"
#include "support/PieceStream.h"
#include "support/TempFolder.h"

namespace LumTest {
namespace {

constexpr const char* inputFailed = "LumCommon::XmlParserImpl::checkStream";
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

}  // namespace
}  // namespace LumTest
