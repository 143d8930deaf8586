#include "platform/UserDefaults.h"

#include "platform/Json.h"
#include "support/Files.h"
#include "support/LogCapture.h"
#include "support/Process.h"
#include "support/StoreFiles.h"
#include "support/TemporaryDirectory.h"
#include "support/Threads.h"

#include <chrono>
#include <map>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::test {

namespace {

namespace fs = std::filesystem;

using platform::parseJson;
using platform::UserDefaults;
using platform::Value;
using testing::IsEmpty;

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

TEST_F(UserDefaultsTest, AReaderOfOneKindMakesDoWithEveryOther) {
    const struct {
        const char* json;
        std::optional<std::string> text;
        bool flag;
    } cases[] = {{"false", {}, false}, {"2", {}, true},           {"null", {}, false},
                 {"[1]", {}, false},   {R"("YES")", "YES", true}, {R"("")", "", false}};

    UserDefaults defaults(file_);
    for (const auto& [json, text, flag] : cases) {
        defaults.setJson(json, "key");
        EXPECT_EQ(defaults.objectForKey("key"), parseJson(json));
        EXPECT_EQ(defaults.stringForKey("key"), text) << json;
        EXPECT_EQ(defaults.boolForKey("key"), flag) << json;
    }
    EXPECT_EQ(defaults.stringForKey("missing"), std::nullopt);
    EXPECT_FALSE(defaults.boolForKey("missing"));
    defaults.setBool(true, "flag");
    EXPECT_EQ(defaults.objectForKey("flag"), Value(true));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(UserDefaultsTest, ProcessesAndThreadsWriteAtOnceAndLoseNothing) {
    constexpr int kValues = 50;
    const auto write = [](UserDefaults& defaults, int writer) {
        for (int i = 0; i < kValues; ++i) {
            const auto key = numbered(writer * kValues + i);
            defaults.setObject(i, key);
            EXPECT_EQ(defaults.objectForKey(key), Value(i)) << key;
            defaults.setObject(i, "shared");
        }
    };
    const auto process = [&](int writer) {
        UserDefaults defaults(file_);
        write(defaults, writer);
        EXPECT_THAT(log_.lines(), IsEmpty());
    };
    // All of them make the file, too.
    Process first([&] { process(0); });
    Process second([&] { process(1); });
    {
        UserDefaults shared(file_);
        UserDefaults own(file_);
        const Threads threads(3, [&](int thread) { write(thread == 0 ? own : shared, 2 + thread); });
    }
    EXPECT_TRUE(first.succeeded());
    EXPECT_TRUE(second.succeeded());

    UserDefaults defaults(file_);
    for (int i = 0; i < 5 * kValues; ++i) EXPECT_EQ(defaults.objectForKey(numbered(i)), Value(i % kValues));
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
        {"BEGIN IMMEDIATE", true, true},
        {"BEGIN IMMEDIATE", false, true},
        {"PRAGMA journal_mode = DELETE; BEGIN EXCLUSIVE", false, false},
    };

    for (const auto& [lock, openBefore, readable] : cases) {
        SCOPED_TRACE(lock);
        log_.clear();
        Pipe toUs;
        Pipe toHolder;
        Process holder([&, statement = lock] {
            toHolder.closeWriting();
            Stranger stranger(file_);
            stranger.run(statement);
            toUs.write(1);
            (void)toHolder.read();
        });
        ASSERT_TRUE(toUs.read());
        UserDefaults defaults(file_);
        if (openBefore) {
            EXPECT_EQ(defaults.stringForKey("key"), "old");
        }

        const auto start = std::chrono::steady_clock::now();
        defaults.setObject("new", "key");
        const auto waited = std::chrono::steady_clock::now() - start;

        EXPECT_GE(waited, std::chrono::milliseconds(200));
        EXPECT_LT(waited, std::chrono::milliseconds(2000));
        EXPECT_TRUE(log_.has("locked"));
        EXPECT_EQ(defaults.stringForKey("key"), readable ? std::optional("old") : std::nullopt);

        toHolder.closeWriting();
        EXPECT_TRUE(holder.succeeded());
        defaults.setObject("new", "key");
        EXPECT_EQ(defaults.stringForKey("key"), "new");
        defaults.setObject("old", "key");
    }
    EXPECT_THAT(movedAside(folder_.path()), IsEmpty());
}

TEST_F(UserDefaultsTest, AKilledProcessKeepsEveryValueWhoseSetReturned) {
    std::mt19937 random(1);
    int stored = 0;
    for (int round = 0; round < 200; ++round) {
        Pipe pipe;
        Process writer([&] {
            UserDefaults defaults(file_);
            for (int i = stored + 1;; ++i) {
                defaults.setObject(i, "number");
                pipe.write(i);
            }
        });
        pipe.closeWriting();
        int reported = stored;
        // It goes on writing meanwhile, so that the end comes anywhere in a later call.
        for (auto reports = random() % 20; reports > 0; --reports) reported = pipe.read().value_or(0);
        writer.kill();
        while (const auto number = pipe.read()) reported = *number;

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
