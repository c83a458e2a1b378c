#include <lumcommon/streams/LumTempFile.h>

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "support/Deflated.h"
#include "support/ExpectError.h"
#include "support/OnThreads.h"
#include "support/TempFolder.h"
#include "support/Utf8.h"

using namespace LumCommon;
using namespace LumTest;

namespace {

constexpr const char* source = "LumCommon::LumTempFile";

bool isThere(const std::string& path) { return std::filesystem::exists(path); }

/// The count in a name without suffix: what follows its last "_".
unsigned long countIn(const std::string& name) { return std::stoul(name.substr(name.rfind('_') + 1), nullptr, 16); }

std::string printed(const char* format, unsigned long number) {
    char text[32];
    return {text, static_cast<std::size_t>(std::snprintf(text, sizeof text, format, number))};
}

std::string newName(const TempFolder& folder, const char* prefix = nullptr, const char* suffix = nullptr) {
    return utf8(LumTempFile::getTempFile(folder.getPath().c_str(), prefix, suffix));
}

TEST(LumTempFile, namesHaveProcessAndCount) {
    const TempFolder folder;
    const std::string first = newName(folder, "pre-", "");
    const std::string second = newName(folder, "pre-");
    const std::string start = folder.getPath() + printed("pre-%03lx_", static_cast<unsigned long>(getpid()));
    EXPECT_TRUE(first.starts_with(start)) << first;
    EXPECT_EQ(countIn(second), (countIn(first) + 1) & 0xFFFFFFFFu);
    EXPECT_TRUE(folder.isEmpty());

    // A name that is taken is passed over, by a link that leads nowhere too.
    const auto next = [&](unsigned steps) { return start + printed("%04lx", (countIn(second) + steps) & 0xFFFFFFFFu); };
    writeFile(next(1), "taken");
    ASSERT_EQ(symlink("nowhere", next(2).c_str()), 0);
    EXPECT_EQ(newName(folder, "pre-"), next(3));
    EXPECT_FALSE(isThere(folder.getPath() + "nowhere")) << "the proof went through a link";

    const std::string directory = utf8(stGetTempDirectory());
    EXPECT_TRUE(directory.ends_with('/') && std::filesystem::is_directory(directory));
    const std::string name = utf8(LumTempFile::getTempFile(nullptr, "lum", ".tmp"));
    EXPECT_TRUE(name.starts_with(directory + "lum") && name.ends_with(".tmp")) << name;
}

TEST(LumTempFileThreads, neverGetTheSameName) {
    const TempFolder folder;
    std::vector<std::vector<std::string>> names(8);
    onThreads(8, [&](unsigned self) {
        for (int i = 0; i < 1000; ++i) names[self].push_back(newName(folder));
    });
    std::set<std::string> all;
    for (const auto& mine : names) all.insert(mine.begin(), mine.end());
    EXPECT_EQ(all.size(), 8000u);
    EXPECT_TRUE(folder.isEmpty()) << "files are left behind";
}

TEST(LumTempFile, removesWhatItHolds) {
    const TempFolder folder;
    std::string path;
    {
        LumTempFile file(folder.getPath().c_str(), "a", ".x");
        path = utf8(file.getFileName());
        writeFile(path, "1");
        file.remove();
        EXPECT_FALSE(isThere(path));
        file.remove();  // there is nothing left to remove, which is no failure
        writeFile(path, "2");
    }
    EXPECT_FALSE(isThere(path)) << "a file made anew under the name is left";
    {
        LumTempFile file;
        file.remove();
        path = folder.getPath() + "\xff\xfe";  // no text: the name's bytes are what counts
        file.setFileName(path.c_str());
        writeFile(path, "3");
        file.setFileName(folder.getPath().c_str(), "b", nullptr);
        EXPECT_FALSE(isThere(path)) << "the file held before is left";
        path = utf8(file.getFileName());
        writeFile(path, "4");
        EXPECT_EQ(utf8(file.releaseFileName()), path);
        EXPECT_FALSE(file.isTempFile());
    }
    EXPECT_EQ(readFile(path), "4") << "a released file is removed";
}

TEST(LumTempFile, removalIsDoneOrReported) {
    const TempFolder folder;
    const std::string full = folder.getPath() + "full";
    std::filesystem::create_directory(full);
    writeFile(full + "/file", "x");
    EXPECT_TRUE(LumTempFile::removeTempFile((folder.getPath() + "missing").c_str()));
    EXPECT_TRUE(LumTempFile::removeTempFile((full + "/file/below").c_str())) << "a file has nothing below it";
    EXPECT_TRUE(LumTempFile::removeTempFile((full + std::string(5000, 'x')).c_str())) << "no file has such a name";
    EXPECT_FALSE(LumTempFile::removeTempFile(full.c_str()));

    LumTempFile file;
    file.setFileName(full.c_str());
    const std::string message = "Cannot remove temporary file: " + full;
    expectError(0x100D, message, source, [&] { file.remove(); });
    expectError(0x100D, message, source, [&] { file.setFileName("other"); });
    expectError(0x100D, message, source, [&] { file.setFileName(nullptr, nullptr, nullptr); });
    EXPECT_EQ(utf8(file.getFileName()), full) << "the name is lost with the failure";
}

TEST(LumTempFile, givesUpWhereNothingCanBeMade) {
    const TempFolder folder;
    const std::string directory = folder.getPath() + "missing/";
    try {
        LumTempFile::getTempFile(directory.c_str(), "a", ".b");
        ADD_FAILURE() << "nothing thrown";
    } catch (const LumError& error) {
        const std::string told = describe(error);
        EXPECT_TRUE(told.starts_with("100E Cannot create temporary file: " + directory + "a")) << told;
        EXPECT_TRUE(told.ends_with(".b (cannot create)\n in LumCommon::LumTempFile")) << told;
    }
    LumTempFile file;
    file.setFileName((folder.getPath() + "none").c_str());
    EXPECT_THROW(file.setFileName(directory.c_str(), "", ""), LumError);
    EXPECT_FALSE(file.isTempFile());
}

TEST(LumTempFile, inflatesIntoTheFile) {
    const std::string bytes = compressible(9000);
    const std::string data = deflated(bytes, Wrapper::RAW);
    const TempFolder folder;
    const LumTempFile file(folder.getPath().c_str(), nullptr, nullptr);
    const std::string path = utf8(file.getFileName());
    writeFile(path, std::string(20000, 'x'));
    EXPECT_TRUE(file.inflate(zlibBytes(data), data.size()));
    EXPECT_EQ(readFile(path), bytes) << "what the file held before is left";
    EXPECT_FALSE(file.inflate(zlibBytes(data), data.size() - 1));
    EXPECT_FALSE(file.inflate(nullptr, 0));
    EXPECT_EQ(readFile(path), "");
    EXPECT_FALSE(LumTempFile().inflate(zlibBytes(data), data.size())) << "there is no file";
    file.remove();
    const mode_t mask = umask(0);
    EXPECT_TRUE(file.inflate(zlibBytes(data), data.size()));
    umask(mask);
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0600)) << "others can read it";
    // What somebody else can put in its place leads nowhere.
    const std::string victim = folder.getPath() + "victim";
    writeFile(victim, "mine");
    for (const auto put : {+[](const char*to, const char*at) { return symlink(to, at); },
                           +[](const char*to, const char*at) { return link(to, at); },
                           +[](const char*, const char*at) { return mkfifo(at, 0600); }}) {
        file.remove();
        ASSERT_EQ(put(victim.c_str(), path.c_str()), 0);
        EXPECT_FALSE(file.inflate(zlibBytes(data), data.size()));
        EXPECT_EQ(readFile(victim), "mine");
    }
    file.remove();
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{4000, before.rlim_max};
    const auto handler = signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_FALSE(file.inflate(zlibBytes(data), data.size())) << "a full disk is not noticed";
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, handler);
}

}  // namespace
