#include "platform/FileManager.h"

#include "harness/Files.h"
#include "harness/TemporaryDirectory.h"
#include "platform/Directories.h"
#include "platform/desktop/files/PartialFile.h"
#include "support/FullDisk.h"
#include "support/LogCapture.h"

#include <atomic>
#include <map>
#include <thread>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

namespace fs = std::filesystem;

using platform::FileManager;
using platform::PartialFile;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

/// The names in a folder, each with what it holds.
std::map<std::string, std::string> filesIn(const fs::path& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::directory_iterator(folder)) {
        files[entry.path().filename().string()] = entry.is_directory() ? "(folder)" : contentOf(entry.path());
    }
    return files;
}

TEST(FileManager, AFileIsWrittenWholeUnderItsOwnName) {
    const std::string contents[] = {"old and longer", "new", "", std::string("\0\r\n\xFF", 4),
                                    std::string(1'000'000, 'x')};
    const std::string names[] = {"plain", ".hidden", "فیلم.mp4", "not utf-8 \xFF.mp4", std::string(255, 'n')};
    for (const auto& name : names) {
        const TemporaryDirectory folder;
        for (const auto& content : contents) {
            EXPECT_TRUE(FileManager::write(folder / name, content)) << name;
            EXPECT_THAT(filesIn(folder.path()), ElementsAre(Pair(name, content)));
        }
    }
}

TEST(FileManager, AReaderSeesTheOldFileOrTheNewOne) {
    const TemporaryDirectory folder;
    const auto file = folder / "file";
    const std::string versions[] = {std::string(50'000, 'a'), std::string(100'000, 'b')};
    ASSERT_TRUE(FileManager::write(file, versions[0]));

    std::atomic<bool> written = false;
    std::thread writer([&] {
        for (int i = 1; i < 100; ++i) {
            EXPECT_TRUE(FileManager::write(file, versions[i % 2]));
        }
        written = true;
    });
    int torn = 0;
    while (!written) {
        const auto seen = contentOf(file);
        torn += seen != versions[0] && seen != versions[1];
    }
    writer.join();
    EXPECT_EQ(torn, 0);
}

TEST(FileManager, AWriteThatFailsLeavesEverythingAsItWas) {
    const TemporaryDirectory folder;
    ASSERT_TRUE(FileManager::write(folder / "file", "old"));
    fs::create_directory(folder / "folder");
    const auto before = filesIn(folder.path());

    EXPECT_FALSE(FileManager::write(folder / "folder", "new"));
    EXPECT_FALSE(FileManager::write(folder / "missing" / "file", "new"));
    EXPECT_FALSE(FileManager::write(folder / "file" / "file", "new"));
    const LogCapture log;
    EXPECT_FALSE(FileManager::write(fs::path(), "new"));
    EXPECT_TRUE(log.has("A file cannot be made: : No such file or directory"));
    {
        const FullDisk full(1000);
        EXPECT_FALSE(FileManager::write(folder / "file", std::string(1001, 'x')));
        EXPECT_FALSE(FileManager::write(folder / "other", std::string(1'000'000, 'x')));
    }
    EXPECT_EQ(filesIn(folder.path()), before);
}

TEST(PartialFile, WhatIsNotPublishedIsNowhere) {
    const TemporaryDirectory folder;
    {
        PartialFile file(folder / "file");
        EXPECT_TRUE(file.append("begun"));
        // Nothing that a killed process could leave.
        EXPECT_THAT(filesIn(folder.path()), IsEmpty());
    }
    EXPECT_THAT(filesIn(folder.path()), IsEmpty());
    EXPECT_FALSE(FileManager::fileExists(folder / std::string(5000, 'x')));

    PartialFile file(folder / "file");
    EXPECT_TRUE(file.append("a") && file.append("b") && file.publish());
    EXPECT_FALSE(file.append("c") || file.publish());
    EXPECT_THAT(filesIn(folder.path()), ElementsAre(Pair("file", "ab")));
}

TEST(FileManager, TheDocumentsAreForTheirOwnerUnlessThatOneOpensThem) {
    const auto directory = FileManager::documentsDirectory();
    EXPECT_EQ(directory, platform::applicationDataDirectory() / "Documents");
    EXPECT_EQ(fs::status(directory).permissions(), fs::perms(0700));
    fs::permissions(directory, fs::perms(0755));
    EXPECT_EQ(FileManager::documentsDirectory(), directory);
    EXPECT_EQ(fs::status(directory).permissions(), fs::perms(0755));
}

}  // namespace

}  // namespace velmora::test
