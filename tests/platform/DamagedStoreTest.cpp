#include "harness/Files.h"
#include "harness/TemporaryDirectory.h"
#include "platform/Json.h"
#include "platform/OneWait.h"
#include "platform/UserDefaults.h"
#include "support/FullDisk.h"
#include "support/LogCapture.h"
#include "support/Program.h"
#include "support/StoreFiles.h"
#include "support/Threads.h"

#include <algorithm>
#include <fstream>
#include <list>
#include <random>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::test {

namespace {

namespace fs = std::filesystem;

using platform::UserDefaults;
using platform::Value;
using testing::IsEmpty;
using testing::SizeIs;

/// Root, who may write everywhere, is somebody else as long as this lives.
class Nobody {
public:
    Nobody() {
        if (wasRoot_) become(kNobody);
    }

    ~Nobody() {
        if (wasRoot_) become(0);
    }

    Nobody(const Nobody&) = delete;
    Nobody& operator=(const Nobody&) = delete;

private:
    static constexpr uid_t kNobody = 65534;

    static void become(uid_t user) { EXPECT_EQ(::setresuid(user, user, 0), 0); }

    const bool wasRoot_ = ::geteuid() == 0;
};

class DamagedStoreTest : public testing::Test {
protected:
    const TemporaryDirectory folder_;
    const fs::path file_ = folder_ / "defaults.sqlite3";
    LogCapture log_;
};

TEST_F(DamagedStoreTest, AValueDamagedByHandIsAbsentAndTheOthersStay) {
    UserDefaults defaults(file_);
    defaults.setObject("kept", "other");
    const std::string damaged[] = {"''", "'{\"a\":'", "x'00FF80'", "'\"' || x'FF' || '\"'",
                                   "'" + std::string(10'000, '[') + std::string(10'000, ']') + "'"};
    for (const auto& value : damaged) {
        SCOPED_TRACE(value.substr(0, 30));
        log_.clear();
        Stranger(file_).run("REPLACE INTO defaults(key, value) VALUES('key', " + value + ")");
        EXPECT_EQ(defaults.objectForKey("key"), std::nullopt);
        EXPECT_THAT(log_.lines(), SizeIs(1));
        EXPECT_TRUE(log_.has("\"key\""));
        EXPECT_EQ(defaults.stringForKey("other"), "kept");
    }
    defaults.setObject("mended", "key");
    EXPECT_EQ(defaults.stringForKey("key"), "mended");
    EXPECT_THAT(movedAside(folder_.path()), IsEmpty());
}

TEST_F(DamagedStoreTest, AFileThatIsNoDatabaseIsMovedAsideAsItIs) {
    fill(file_, 3);
    const auto whole = contentOf(file_);
    fs::remove(file_);
    std::string noise(64 * 1024, '\0');
    std::generate(noise.begin(), noise.end(),
                  [random = std::minstd_rand(1)]() mutable { return static_cast<char>(random()); });
    const std::string contents[] = {"xy",
                                    noise,
                                    std::string(4096, '\0'),
                                    whole.substr(0, 50),
                                    whole.substr(0, 100) + noise,
                                    whole.substr(0, whole.size() / 2)};
    for (const auto& content : contents) {
        SCOPED_TRACE(content.size());
        const TemporaryDirectory folder;
        const auto file = folder / "defaults.sqlite3";
        writeContent(file, content);
        log_.clear();

        UserDefaults(file).setObject("works", "key");

        EXPECT_EQ(UserDefaults(file).stringForKey("key"), "works");
        const auto aside = movedAside(folder.path());
        ASSERT_THAT(aside, SizeIs(1));
        EXPECT_EQ(contentOf(aside[0]), content);
        EXPECT_EQ(fs::status(file).permissions(), fs::perms(0600));
        EXPECT_TRUE(log_.has("moved to " + aside[0].filename().string()));
        EXPECT_THAT(log_.lines(), SizeIs(1));
    }
}

TEST_F(DamagedStoreTest, WhatCanBeReadOfADamagedFileIsCarriedOver) {
    constexpr int kValues = 200;
    fill(file_, kValues);
    {
        // Is in the journal only.
        UserDefaults defaults(file_);
        defaults.setObject("last words", "late");
    }
    auto content = contentOf(file_);
    const auto page = content.size() / 2 / 4096 * 4096;
    std::fill_n(content.begin() + static_cast<std::ptrdiff_t>(page), 4096, '\xAA');
    writeContent(file_, content);

    UserDefaults defaults(file_);
    int found = 0;
    for (int i = 0; i < kValues; ++i) found += defaults.stringForKey(numbered(i)) == std::string(1000, 'v');

    EXPECT_GE(found, kValues - 10);
    EXPECT_LT(found, kValues);
    EXPECT_EQ(defaults.stringForKey("late"), "last words");
    const auto aside = movedAside(folder_.path());
    ASSERT_THAT(aside, SizeIs(1));
    EXPECT_EQ(contentOf(aside[0]), content);
    EXPECT_TRUE(log_.has(std::to_string(found + 1) + " values"));
    EXPECT_THAT(log_.lines(), SizeIs(1));

    defaults.setObject("works", numbered(kValues / 2));
    EXPECT_EQ(UserDefaults(file_).stringForKey(numbered(kValues / 2)), "works");
}

TEST_F(DamagedStoreTest, AReaderThatFindsDamageTakesNoFileFromUnderATransaction) {
    constexpr int kValues = 200;
    fill(file_, kValues);
    UserDefaults defaults(file_);
    const auto readAll = [&] {
        for (int i = 0; i < kValues; ++i) (void)defaults.stringForKey(numbered(i));
    };
    defaults.inOneTransaction([&] {
        defaults.setObject("kept", "late");
        std::fstream(file_).seekp(static_cast<std::streamoff>(fs::file_size(file_) / 2 / 4096 * 4096))
            << std::string(4096, '\xAA');
        const Threads reader(1, [&](int) {
            const platform::OneWait wait;
            readAll();
        });
    });
    EXPECT_THAT(movedAside(folder_.path()), IsEmpty());
    readAll();
    EXPECT_THAT(movedAside(folder_.path()), SizeIs(1));
    EXPECT_EQ(Stranger(file_).valueOf("late"), R"("kept")");
}

TEST_F(DamagedStoreTest, ProcessesThatFindTheDamageAtOnceMendItOnce) {
    for (int round = 0; round < 10; ++round) {
        const TemporaryDirectory folder;
        const auto file = folder / "defaults.sqlite3";
        writeContent(file, "no database");
        std::list<RunningProgram> programs;
        for (int i = 0; i < 4; ++i)
            programs.emplace_back(
                std::vector<std::string>{VELMORA_KEEPER, file, "range", std::to_string(i), "1"});
        for (auto& program : programs) EXPECT_EQ(program.line(), "ready");
        for (auto& program : programs) program.say("go");
        for (auto& program : programs) {
            EXPECT_NE(program.line(), "");
            EXPECT_EQ(program.wait(), 0);
        }

        UserDefaults defaults(file);
        for (int i = 0; i < 4; ++i) EXPECT_EQ(defaults.objectForKey(numbered(i)), Value(i));
        EXPECT_THAT(movedAside(folder.path()), SizeIs(1));
    }
}

TEST_F(DamagedStoreTest, ATableOfOtherColumnsIsReplaced) {
    for (const bool whileOpen : {false, true}) {
        const TemporaryDirectory folder;
        const auto file = folder / "defaults.sqlite3";
        UserDefaults defaults(file);
        if (whileOpen) defaults.setObject(1, "key");
        Stranger(file).run("DROP TABLE IF EXISTS defaults; CREATE TABLE defaults(name, content)");

        EXPECT_FALSE(defaults.hasKey("key"));
        defaults.setObject("works", "key");
        EXPECT_EQ(UserDefaults(file).stringForKey("key"), "works");
        EXPECT_THAT(movedAside(folder.path()), SizeIs(1));
    }
}

TEST_F(DamagedStoreTest, ValuesStayReadableWhereNothingMayBeWritten) {
    const struct {
        const char* description;
        std::vector<std::string> removed;
        std::optional<std::string> value;
    } cases[] = {
        {"with the journal", {}, "newer"},
        {"without a journal", {"-wal", "-shm"}, "old"},
        // The file alone would show a value that was replaced.
        {"with a journal that cannot be read", {"-shm"}, std::nullopt},
    };

    for (const auto& [description, removed, value] : cases) {
        SCOPED_TRACE(description);
        const TemporaryDirectory folder;
        const auto file = folder / "defaults.sqlite3";
        UserDefaults(file).setObject("old", "key");
        Stranger(file).run("PRAGMA wal_checkpoint(TRUNCATE)");
        UserDefaults(file).setObject("newer", "key");
        for (const auto& suffix : removed) fs::remove(file.string() + suffix);
        for (const auto& entry : fs::directory_iterator(folder.path()))
            fs::permissions(entry, fs::perms(0444));
        fs::permissions(folder.path(), fs::perms(0555));

        {
            const Nobody nobody;
            UserDefaults defaults(file);
            EXPECT_EQ(defaults.stringForKey("key"), value);
            log_.clear();
            defaults.setObject("newest", "key");
            defaults.removeObjectForKey("key");
            defaults.inOneTransaction([] { ADD_FAILURE() << "called without a transaction"; });
            EXPECT_THAT(log_.lines(), SizeIs(3));
            EXPECT_TRUE(log_.has("cannot be written"));
            EXPECT_EQ(defaults.stringForKey("key"), value);
        }
        fs::permissions(folder.path(), fs::perms(0700));
    }
}

TEST_F(DamagedStoreTest, WithoutAPlaceForTheFileEverythingIsAbsentAndLogged) {
    writeContent(folder_ / "file", "");
    fs::create_directory(folder_ / "folder");
    for (const auto& file : {folder_ / "file" / "defaults.sqlite3", folder_ / "folder"}) {
        SCOPED_TRACE(file);
        log_.clear();
        UserDefaults defaults(file);
        defaults.setObject(1, "key");
        EXPECT_FALSE(defaults.hasKey("key"));
        EXPECT_EQ(defaults.objectForKey("key"), std::nullopt);
        defaults.removeObjectForKey("key");
        EXPECT_THAT(log_.lines(), SizeIs(4));
    }
    EXPECT_TRUE(fs::is_directory(folder_ / "folder"));
}

TEST_F(DamagedStoreTest, OnAFullDiskTheOldValueStays) {
    UserDefaults defaults(file_);
    defaults.setObject("old", "key");
    {
        const FullDisk full(fs::file_size(file_.string() + "-wal"));
        defaults.setObject(Value(std::string(10'000, 'x')), "key");
        EXPECT_EQ(defaults.stringForKey("key"), "old");
        EXPECT_THAT(log_.lines(), SizeIs(1));
        UserDefaults fresh(folder_ / "fresh.sqlite3");
        const FullDisk fuller(0);
        fresh.setObject(1, "key");
        EXPECT_FALSE(fresh.hasKey("key"));
    }
    EXPECT_TRUE(log_.has("cannot be written"));
    log_.clear();
    for (const auto& file : {file_, folder_ / "fresh.sqlite3"}) {
        UserDefaults(file).setObject("new", "key");
        EXPECT_EQ(UserDefaults(file).stringForKey("key"), "new");
    }
    EXPECT_THAT(log_.lines(), IsEmpty());
    EXPECT_THAT(movedAside(folder_.path()), IsEmpty());
}

TEST_F(DamagedStoreTest, AValueThatCannotBeWrittenLeavesTheOldOne) {
    UserDefaults defaults(file_);
    defaults.setObject("old", "key");
    Value deep = platform::Array();
    for (std::size_t i = 0; i < platform::kDeepestJson; ++i) deep = platform::Array{std::move(deep)};
    for (const auto& value : {deep, Value(std::nan(""))}) {
        log_.clear();
        defaults.setObject(value, "key");
        EXPECT_EQ(defaults.stringForKey("key"), "old");
        EXPECT_TRUE(log_.has("\"key\""));
    }
}

TEST_F(DamagedStoreTest, AFileThatWasDeletedWhileOpenIsMadeAnew) {
    UserDefaults defaults(file_);
    UserDefaults other(file_);
    for (const bool journalToo : {false, true}) {
        defaults.setObject("old", "key");
        EXPECT_EQ(other.stringForKey("key"), "old");
        fs::remove(file_);
        if (journalToo) {
            fs::remove(file_.string() + "-wal");
            fs::remove(file_.string() + "-shm");
        }
        EXPECT_FALSE(defaults.hasKey("key"));
        defaults.setObject("new", "key");
        EXPECT_EQ(other.stringForKey("key"), "new");
        other.setObject("newer", "key");
        EXPECT_EQ(defaults.stringForKey("key"), "newer");
        EXPECT_EQ(UserDefaults(file_).stringForKey("key"), "newer");
    }
    EXPECT_THAT(log_.lines(), IsEmpty());
    EXPECT_THAT(movedAside(folder_.path()), IsEmpty());
}

}  // namespace

}  // namespace velmora::test
