#include "platform/Bundle.h"

#include "harness/TemporaryDirectory.h"
#include "platform/Directories.h"
#include "support/Environment.h"
#include "support/LogCapture.h"

#include <fstream>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

namespace fs = std::filesystem;

using platform::applicationDataDirectory;
using platform::Bundle;
using platform::Property;
using platform::Value;

TEST(Bundle, EveryEntryOfTheDescriptionCanBeRead) {
    const TemporaryDirectory folder;
    std::ofstream(folder / "game.velmora.json") << R"({"identifier": "com.example.game", "version": "1.4",
        "info": {"text": "سلام", "list": [1, {"a": null}], "flag": false, "marker": null}})";

    const Bundle bundle(folder / "game");

    EXPECT_EQ(bundle.identifier(), "com.example.game");
    EXPECT_EQ(bundle.version(), "1.4");
    EXPECT_EQ(bundle.infoValue("text"), Property("سلام"));
    EXPECT_EQ(bundle.infoValue("list"), Property(Value{1, {{"a", nullptr}}}));
    EXPECT_EQ(bundle.infoValue("flag"), Property(false));
    EXPECT_EQ(bundle.infoValue("marker"), std::nullopt);
    EXPECT_EQ(bundle.infoValue("missing"), std::nullopt);
}

TEST(Bundle, WhatTheDescriptionDoesNotSayHasADefault) {
    const struct {
        std::optional<std::string> description;
        const char* identifier;
        std::optional<std::string> version;
        bool logged;
    } cases[] = {
        {std::nullopt, "game", std::nullopt, false},
        {R"({"identifier": "", "version": ""})", "game", "", false},
        {R"({"identifier": 5, "version": 1.4, "info": ["key"]})", "game", std::nullopt, false},
        {"", "game", std::nullopt, true},
        {"[]", "game", std::nullopt, true},
        {"{\"identifier\": \"\xFF\"}", "game", std::nullopt, true},
    };

    for (const auto& [description, identifier, version, logged] : cases) {
        SCOPED_TRACE(description.value_or("no file"));
        const TemporaryDirectory folder;
        if (description) std::ofstream(folder / "game.velmora.json") << *description;
        const LogCapture log;

        const Bundle bundle(folder / "game");

        EXPECT_EQ(bundle.identifier(), identifier);
        EXPECT_EQ(bundle.version(), version);
        EXPECT_EQ(bundle.infoValue("key"), std::nullopt);
        EXPECT_EQ(log.has("game.velmora.json"), logged);
    }
    EXPECT_EQ(Bundle(fs::path()).identifier(), std::nullopt);
}

TEST(Bundle, TheApplicationIsTheRunningExecutable) {
    EXPECT_EQ(Bundle::main().identifier(), fs::read_symlink("/proc/self/exe").filename().string());
    const Environment home("XDG_DATA_HOME", "/data");
    EXPECT_EQ(applicationDataDirectory(), fs::path("/data") / *Bundle::main().identifier() / "velmora");
}

TEST(Bundle, ResourcesLieWithTheLibraryUnlessAFolderIsNamed) {
    {
        const Environment none("VELMORA_RESOURCES", nullptr);
        EXPECT_EQ(Bundle::resourcePath("close.png").filename(), "close.png");
        EXPECT_EQ(Bundle::resourcePath("close.png").parent_path().filename(), "velmora");
    }
    const Environment named("VELMORA_RESOURCES", "/somewhere/else");
    EXPECT_EQ(Bundle::resourcePath("close.png"), "/somewhere/else/close.png");
}

TEST(Directories, NoIdentifierLeavesTheDataHome) {
    const Environment home("XDG_DATA_HOME", "/data");

    const struct {
        std::string identifier;
        const char* folder;
    } cases[] = {
        {"com.example.game", "com.example.game"},
        {"بازی", "بازی"},
        {"", "application"},
        {"..", "%2E."},
        {".hidden", "%2Ehidden"},
        {"../../etc", "%2E.%2F..%2Fetc"},
        {std::string("a\0/..", 5), "a%00%2F.."},
    };

    for (const auto& [identifier, folder] : cases) {
        EXPECT_EQ(applicationDataDirectory(identifier), fs::path("/data") / folder / "velmora") << identifier;
    }
}

TEST(Directories, TheDataHomeIsTheOneThatTheDesktopNames) {
    const Environment home("HOME", "/home/player");

    const struct {
        const char* dataHome;
        const char* directory;
    } cases[] = {
        {"/data", "/data/game/velmora"},
        {nullptr, "/home/player/.local/share/game/velmora"},
        {"", "/home/player/.local/share/game/velmora"},
        {"relative/data", "/home/player/.local/share/game/velmora"},
    };

    for (const auto& [dataHome, directory] : cases) {
        const Environment named("XDG_DATA_HOME", dataHome);
        EXPECT_EQ(applicationDataDirectory("game"), directory);
    }
    const Environment noDataHome("XDG_DATA_HOME", nullptr);
    for (const char* useless : {"", "relative"}) {
        const Environment named("HOME", useless);
        EXPECT_TRUE(applicationDataDirectory("game").is_absolute());
    }
}

}  // namespace

}  // namespace velmora::test
