#include "platform/UserDefaults.h"

#include "harness/Files.h"
#include "harness/TemporaryDirectory.h"
#include "platform/Json.h"
#include "platform/OneWait.h"
#include "support/FullDisk.h"
#include "support/HeldStore.h"
#include "support/LogCapture.h"
#include "support/Program.h"
#include "support/StoreFiles.h"
#include "support/Threads.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <map>
#include <random>
#include <stdexcept>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::test {

namespace {

namespace fs = std::filesystem;

using platform::parseJson;
using platform::UserDefaults;
using platform::Value;
using testing::IsEmpty;
using testing::SizeIs;

std::chrono::nanoseconds timeOf(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::steady_clock::now() - start;
}

class UserDefaultsTest : public testing::Test {
protected:
    const TemporaryDirectory folder_;
    const fs::path file_ = folder_ / "defaults.sqlite3";
    LogCapture log_;
};

TEST_F(UserDefaultsTest, ValuesSurviveInANewObjectOnTheSameFile) {
    const std::map<std::string, std::string> values{
        {"whole", "-9223372036854775808"},
        {"large", "18446744073709551615"},
        {"real", "25.0"},
        {"marker", "null"},
        {"text", R"("a\u0000'\"سلام")"},
        {"tree", R"({"a":[1,{"b":null},[]]})"},
        {"", "false"},
        {"a'; DROP TABLE defaults; --", "1"},
        {"کلید", "2"},
        {std::string("a\0b", 3), "3"},
        {std::string("a\0c", 3), "4"},
        {"long", '"' + std::string(1'000'000, 'x') + '"'},
    };
    {
        UserDefaults defaults(file_);
        defaults.setObject("old", "whole");
        for (const auto& [key, json] : values) defaults.setObject(parseJson(json).value(), key);
        defaults.setObject("gone", "removed");
        defaults.removeObjectForKey("removed");
        defaults.removeObjectForKey("never there");
    }
    UserDefaults defaults(file_);
    for (const auto& [key, json] : values) {
        EXPECT_TRUE(defaults.hasKey(key)) << key;
        EXPECT_EQ(defaults.objectForKey(key), parseJson(json)) << key;
    }
    for (const char* key : {"removed", "never there", "a", "WHOLE"})
        EXPECT_FALSE(defaults.hasKey(key)) << key;
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(UserDefaultsTest, ProcessesAndThreadsWriteAtOnceAndLoseNothing) {
    constexpr int kValues = 50;
    const auto write = [](UserDefaults& defaults, int writer) {
        for (int i = 0; i < kValues; ++i) {
            const int number = writer * kValues + i;
            defaults.setObject(number, numbered(number));
            EXPECT_EQ(defaults.objectForKey(numbered(number)), Value(number));
            defaults.setObject(number, "shared");
        }
    };
    RunningProgram first({VELMORA_KEEPER, file_, "range", "0", std::to_string(kValues)});
    RunningProgram second({VELMORA_KEEPER, file_, "range", std::to_string(kValues), std::to_string(kValues)});
    for (auto* const program : {&first, &second}) EXPECT_EQ(program->line(), "ready");
    // All of them make the file, too.
    for (auto* const program : {&first, &second}) program->say("go");
    {
        UserDefaults shared(file_);
        UserDefaults own(file_);
        const Threads threads(3, [&](int thread) { write(thread == 0 ? own : shared, 2 + thread); });
    }
    for (auto* const program : {&first, &second}) {
        EXPECT_EQ(program->line(), "0") << "lines in its log";
        EXPECT_EQ(program->wait(), 0);
    }

    UserDefaults defaults(file_);
    for (int i = 0; i < 5 * kValues; ++i) EXPECT_EQ(defaults.objectForKey(numbered(i)), Value(i));
    EXPECT_TRUE(defaults.hasKey("shared"));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(UserDefaultsTest, OnlyTheOwnerMayReadTheFiles) {
    const auto mask = ::umask(0);
    const auto fresh = folder_ / "made" / "by us" / "defaults.sqlite3";
    writeContent(file_, "");
    for (const auto& file : {fresh, file_}) {
        UserDefaults defaults(file);
        defaults.setObject("secret", "key");
        for (const char* suffix : {"", "-wal", "-shm"}) {
            EXPECT_EQ(fs::status(file.string() + suffix).permissions(), fs::perms(0600)) << file << suffix;
        }
    }
    EXPECT_EQ(fs::status(fresh.parent_path()).permissions(), fs::perms(0700));
    ::umask(mask);
}

TEST_F(UserDefaultsTest, AChangeByAnotherProgramIsSeenAtOnce) {
    UserDefaults defaults(file_);
    defaults.setObject(1, "key");
    Stranger stranger(file_);
    stranger.run("UPDATE defaults SET value = '2' WHERE key = 'key'");
    EXPECT_EQ(defaults.objectForKey("key"), Value(2));
    stranger.run("DELETE FROM defaults");
    EXPECT_FALSE(defaults.hasKey("key"));
}

TEST_F(UserDefaultsTest, ACallGivesUpWhileAnotherProcessHoldsTheLock) {
    UserDefaults(file_).setObject("old", "key");

    const struct {
        const char* lock;
        bool openBefore;
        bool readable;
    } cases[] = {
        {"BEGIN EXCLUSIVE", true, true},
        {"BEGIN EXCLUSIVE", false, true},
        {"PRAGMA journal_mode = DELETE; BEGIN EXCLUSIVE", false, false},
    };

    for (const auto& [lock, openBefore, readable] : cases) {
        SCOPED_TRACE(lock);
        log_.clear();
        HeldStore held(file_, lock);
        UserDefaults defaults(file_);
        if (openBefore) {
            EXPECT_EQ(defaults.stringForKey("key"), "old");
        }
        held.hold();
        const auto single = timeOf([&] { defaults.setObject("new", "key"); });
        EXPECT_GE(single, std::chrono::milliseconds(200));
        const auto most = 2 * bareWait(file_);
        EXPECT_LT(single, most);
        EXPECT_TRUE(log_.has("locked"));
        EXPECT_EQ(defaults.stringForKey("key"), readable ? std::optional("old") : std::nullopt);

        const auto together = timeOf([&] {
            const platform::OneWait wait;
            for (int i = 0; i < 5; ++i) {
                defaults.setObject("new", "key");
                (void)defaults.hasKey("key");
                const platform::OneWait inner;
            }
        });
        EXPECT_LT(together, most);
        held.letGo();
        defaults.setObject("new", "key");
        EXPECT_EQ(defaults.stringForKey("key"), "new");
        defaults.setObject("old", "key");
    }
    EXPECT_THAT(movedAside(folder_.path()), IsEmpty());
}

TEST_F(UserDefaultsTest, ATransactionIsStoredWholeOrNotAtAll) {
    HeldStore held(file_);
    UserDefaults defaults(file_);
    const auto change = [&] {
        EXPECT_EQ(defaults.stringForKey("first"), "old");
        defaults.setObject("new", "first");
        EXPECT_EQ(defaults.stringForKey("first"), "new");
        defaults.removeObjectForKey("second");
        EXPECT_FALSE(defaults.hasKey("second"));
        defaults.appendToList("l", R"({"l":[1]})", "third");
    };

    const struct {
        const char* description;
        std::function<void()> act;
        bool isStored;
        std::size_t lines;
    } cases[] = {
        {"alone", [&] { defaults.inOneTransaction(change); }, true, 0},
        {"as a part of another",
         [&] { defaults.inOneTransaction([&] { defaults.inOneTransaction(change); }); }, true, 0},
        {"refused",
         [&] {
             held.hold();
             defaults.inOneTransaction([] { ADD_FAILURE() << "called without a transaction"; });
             held.letGo();
         },
         false, 1},
        {"as a part of one that is thrown out of",
         [&] {
             EXPECT_THROW(defaults.inOneTransaction([&] {
                 defaults.inOneTransaction(change);
                 throw std::runtime_error("");
             }),
                          std::runtime_error);
         },
         false, 0},
        {"with a disk that is full at its end",
         [&] {
             const FullDisk full(fs::file_size(file_.string() + "-wal"));
             defaults.inOneTransaction(change);
         },
         false, 1},
        {"with a disk that is full on the way",
         [&] {
             const FullDisk full(fs::file_size(file_.string() + "-wal"));
             defaults.inOneTransaction([&] {
                 change();
                 // More than is kept in memory until the end.
                 defaults.setObject(Value(std::string(8'000'000, 'x')), "large");
                 defaults.setObject("after the failure", "fourth");
             });
         },
         false, 1},
        {"with a change that the file refuses",
         [&] {
             Stranger stranger(file_);
             stranger.run("CREATE TRIGGER kept BEFORE DELETE ON defaults "
                          "BEGIN SELECT RAISE(ABORT, ''); END");
             defaults.inOneTransaction(change);
             stranger.run("DROP TRIGGER kept");
         },
         false, 1},
        {"in a process that is killed",
         [&] {
             RunningProgram keeper({VELMORA_KEEPER, file_, "transaction"});
             keeper.say("go");
             EXPECT_EQ(keeper.line(), "ready");
             EXPECT_EQ(keeper.line(), "changed");
             keeper.kill();
         },
         false, 0},
    };

    for (const auto& [description, act, isStored, lines] : cases) {
        SCOPED_TRACE(description);
        for (const char* key : {"first", "second"}) defaults.setObject("old", key);
        defaults.removeObjectForKey("third");
        log_.clear();

        act();

        using Text = std::optional<std::string>;
        Stranger stranger(file_);
        EXPECT_EQ(stranger.valueOf("first"), isStored ? R"("new")" : R"("old")");
        EXPECT_EQ(stranger.valueOf("second"), isStored ? Text() : Text(R"("old")"));
        EXPECT_EQ(stranger.valueOf("third"), isStored ? Text(R"({"l":[1]})") : Text());
        for (const char* key : {"large", "fourth"}) EXPECT_EQ(stranger.valueOf(key), Text()) << key;
        EXPECT_THAT(log_.lines(), SizeIs(lines));
    }
    EXPECT_THAT(movedAside(folder_.path()), IsEmpty());
}

TEST_F(UserDefaultsTest, AReaderDoesNotWaitForTheTransactionOfAnotherThreadAndAWriterNotForLong) {
    UserDefaults defaults(file_);
    defaults.setObject("old", "key");
    defaults.inOneTransaction([&] {
        defaults.setObject("ours", "key");
        const Threads reader(1, [&](int) {
            EXPECT_EQ(defaults.stringForKey("key"), "old");
            EXPECT_THAT(log_.lines(), IsEmpty());
        });
    });
    EXPECT_EQ(defaults.stringForKey("key"), "ours");

    std::chrono::nanoseconds longest{};
    std::chrono::nanoseconds bare{};
    defaults.inOneTransaction([&] {
        const Threads writer(1, [&](int) {
            longest = timeOf([&] { defaults.setObject("theirs", "key"); });
            const auto transaction =
                timeOf([&] { defaults.inOneTransaction([] { ADD_FAILURE() << "two at once"; }); });
            longest = std::max(longest, transaction);
            bare = bareWait(file_);
        });
    });
    EXPECT_LT(longest, 2 * bare);
    EXPECT_THAT(log_.lines(), SizeIs(2));
    EXPECT_EQ(defaults.stringForKey("key"), "ours");
}

TEST_F(UserDefaultsTest, WhatIsAppendedLeavesTheOthersByteForByte) {
    const std::string one = R"({"n":1.50,"big":12345678901234567890123,"text":"\u0000 سلام"})";
    const auto fresh = R"({"list":[)" + one + "]}";

    const struct {
        std::optional<std::string> stored;
        std::optional<std::string> after;
    } cases[] = {
        {std::nullopt, fresh},
        {R"('{"list":[]}')", fresh},
        {R"('{"a":{"list":[]},"list":[1.50,1e999,-0,98765432109876543210,"\/\u00e9"],"z":null}')",
         R"({"a":{"list":[]},"list":[1.50,1e999,-0,98765432109876543210,"\/\u00e9",)" + one +
             R"(],"z":null})"},
        {"'7'", {}},
        {"'null'", {}},
        {"'{}'", {}},
        {"'[[]]'", {}},
        {R"('{"list":null}')", {}},
        {R"('{"list":{}}')", {}},
        {R"('{"list":[')", {}},
        {R"('{"list":[]}}')", {}},
        {"''", {}},
        {"x'00FF80'", {}},
        {"'" + std::string(10'000, '[') + "'", {}},
    };

    UserDefaults defaults(file_);
    defaults.setObject(1, "other");
    Stranger stranger(file_);
    for (const auto& [stored, after] : cases) {
        SCOPED_TRACE(stored.value_or("missing").substr(0, 80));
        log_.clear();
        stranger.run(stored ? "REPLACE INTO defaults(key, value) VALUES('key', " + *stored + ")"
                            : "DELETE FROM defaults WHERE key = 'key'");
        const auto before = stranger.valueOf("key");

        defaults.appendToList("list", fresh, "key");

        EXPECT_EQ(stranger.valueOf("key"), after ? after : before);
        EXPECT_EQ(log_.has("\"key\""), !after);
        defaults.appendToList("list", std::nullopt, "key");
        EXPECT_EQ(stranger.valueOf("key"), after ? after : before);
    }
    EXPECT_THAT(movedAside(folder_.path()), IsEmpty());
}

TEST_F(UserDefaultsTest, AKilledProcessKeepsEveryValueWhoseSetReturned) {
    std::mt19937 random(1);
    int stored = 0;
    for (int round = 0; round < 200; ++round) {
        RunningProgram writer({VELMORA_KEEPER, file_, "count", std::to_string(stored + 1)});
        writer.say("go");
        EXPECT_EQ(writer.line(), "ready");
        int reported = stored;
        // It goes on writing meanwhile, so that the end comes anywhere in a later call.
        for (auto reports = random() % 20; reports > 0; --reports) reported = std::stoi(writer.line());
        writer.kill();
        for (auto line = writer.line(); !line.empty(); line = writer.line()) reported = std::stoi(line);

        UserDefaults defaults(file_);
        stored = static_cast<int>(platform::asInteger(defaults.objectForKey("number")));
        ASSERT_GE(stored, reported) << "in round " << round;
        ASSERT_LE(stored, reported + 1) << "in round " << round;
    }
    EXPECT_GT(stored, 200);
    EXPECT_THAT(log_.lines(), IsEmpty());
}

}  // namespace

}  // namespace velmora::test
