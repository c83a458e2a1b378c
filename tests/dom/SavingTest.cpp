#include <gtest/gtest.h>

#include <sys/stat.h>

#include "dom/CountedDocument.h"
#include "support/ExpectError.h"
#include "support/FaultyCalls.h"
#include "support/Repeat.h"
#include "support/TempFolder.h"

namespace LumTest {
namespace {

const std::string prolog = "<?xml version=\"1.0\"?>";

class SavingTest : public testing::Test {
protected:
    SavingTest() {
        document->getSerializer()->setGenerator(UnicodeString());
        writeFile(path, old);
    }
    /// Of files in the folder.
    long count() const { return std::distance(std::filesystem::directory_iterator(folder.getPath()), {}); }

    const TempFolder folder;
    const std::string path = folder.getPath() + "a.xml", old = "<old/>";
    const std::string content = "<r>" + repeat("<e a=\"@\"/>", 20000) + "</r>";
    LumPtr<LumDocument> document{new LumDocument};
};

/// Calls `act` with each of its calls on a file struck in turn, and `check` with what is left of it: the error's code.
template <class Act, class Check>
void underEachFault(Act act, Check check) {
    for (const CallFault fault : {CallFault::FAILS, CallFault::INTERRUPTED, CallFault::SHORT}) {
        bool hasCome = true;
        for (int number = 1; hasCome && !testing::Test::HasFailure(); ++number) {
            SCOPED_TRACE("call " + std::to_string(number) + ", fault " + std::to_string(static_cast<int>(fault)));
            unsigned code = 0;
            {
                const FaultyCalls calls(fault, number);
                try {
                    act();
                } catch (const LumError& error) {
                    code = error.code;
                }
                hasCome = calls.hasCome();
            }
            check(hasCome && fault == CallFault::FAILS, code);
        }
    }
}

TEST_F(SavingTest, whateverCallFailsTheFileHoldsTheOldOrTheNew) {
    document->loadXml(text(content));
    const std::string saved = prolog + utf8(document->saveXml(document->getDocumentElement()));
    ASSERT_GT(saved.size(), 3u * 65536);
    underEachFault([&] { document->saveReplacing(text(path)); },
                   [&](bool mustFail, unsigned code) {
                       EXPECT_TRUE(mustFail ? code == 0x1003 || code == 0x1007 : code == 0) << code;
                       EXPECT_EQ(count(), 1);
                       const std::string bytes = readFile(path);
                       // After the renaming, only putting the folder on the disk can fail.
                       EXPECT_TRUE((code != 0 && bytes == old) || (code != 0x1003 && bytes == saved));
                       writeFile(path, old);
                   });
}

TEST_F(SavingTest, whateverReadFailsLoadingTellsIt) {
    writeFile(path, content);
    underEachFault([&] { document->load(text(path)); },
                   [&](bool mustFail, unsigned code) {
                       EXPECT_EQ(code, mustFail ? 0x1006u : 0u);
                       EXPECT_TRUE(mustFail || utf8(document->saveXml(document->getDocumentElement())) == content);
                   });
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

}  // namespace
}  // namespace LumTest
