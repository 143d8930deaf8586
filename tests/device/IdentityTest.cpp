#include "harness/Files.h"
#include "harness/TemporaryDirectory.h"
#include "support/Environment.h"
#include "support/Program.h"

#include <filesystem>
#include <sstream>
#include <string>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

namespace fs = std::filesystem;

using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;

constexpr const char* kUuid = "[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}";
/// The digest of "com.example.game".
constexpr const char* kDigest = "-909b4a778ec65d09891e812195b23071";

struct Identity {
    std::string device;
    std::string advertising;

    friend bool operator==(const Identity&, const Identity&) = default;
};

/// What a process of its own says of itself.
Identity identityOf(const std::string& command) {
    Identity identity;
    std::istringstream(runProgram({"/bin/sh", "-c", command}).output) >> identity.device >>
        identity.advertising;
    return identity;
}

/// Applications, and the configuration home of the user who runs them.
class DeviceIdentity : public testing::Test {
protected:
    [[nodiscard]] std::string application(const std::string& name, const std::string& identifier) const {
        const auto program = folder_ / name;
        fs::create_directories(program.parent_path());
        fs::copy_file(VELMORA_IDENTITY, program);
        writeContent(program.string() + ".velmora.json", R"({"identifier": ")" + identifier + "\"}");
        return program;
    }

    /// The command on a machine with these ids, the system's own and that of its bus, where a process may
    /// have files of its own.
    [[nodiscard]] std::string onMachine(const std::string& own, const std::string& ofBus,
                                        const std::string& command) const {
        std::string script;
        for (const auto& [path, id] :
             {std::pair("/etc/machine-id", own), {"/var/lib/dbus/machine-id", ofBus}}) {
            const auto file = folder_ / std::filesystem::path(path).parent_path().filename();
            writeContent(file, id);
            script += std::string("if test -e ") + path + "; then mount --bind " + file.string() + " " +
                      path + "; fi && ";
        }
        return "unshare -rm sh -c '" + script + command + "' 2>&1";
    }

    const TemporaryDirectory folder_;
    const fs::path home_ = folder_ / "home";
    const fs::path file_ = home_ / "velmora/advertising-id";
    const Environment configuration_{"XDG_CONFIG_HOME", home_.c_str()};
};

TEST_F(DeviceIdentity, AnApplicationKeepsItsOwnAndTheUserThatOfTheAdvertising) {
    const auto game = application("one/game", "com.example.game");
    const auto first = identityOf(game);
    EXPECT_THAT(first.device, MatchesRegex(std::string(kUuid) + kDigest));
    EXPECT_THAT(first.advertising, MatchesRegex(kUuid));
    EXPECT_EQ(identityOf(game), first);
    EXPECT_EQ(identityOf(application("two/another", "com.example.game")), first);

    const auto other = identityOf(application("one/other", "com.example.other"));
    EXPECT_NE(other.device.substr(0, 36), first.device.substr(0, 36));
    EXPECT_NE(other.device.substr(36), first.device.substr(36));
    EXPECT_EQ(other.advertising, first.advertising);

    const Environment configuration("XDG_CONFIG_HOME", (folder_ / "of another user").c_str());
    const auto elsewhere = identityOf(game);
    EXPECT_EQ(elsewhere.device, first.device);
    EXPECT_NE(elsewhere.advertising, first.advertising);
}

TEST_F(DeviceIdentity, ItIsOfTheMachineAndAbsentWhereThatHasNoId) {
    const auto game = application("game", "com.example.game");
    const std::string id = "00112233445566778899aabbccddeeff";
    const auto on = [&](const std::string& own, const std::string& ofBus) {
        return identityOf(onMachine(own, ofBus, game));
    };
    const auto here = on(id, "");
    if (here.advertising.empty()) GTEST_SKIP() << "a process may not have files of its own here";
    // As every version before made it: uuid5 of Python says the same of that name.
    EXPECT_EQ(here.device, std::string("67699638-B347-5AC9-AC68-6087AFDD3D38").append(kDigest));
    EXPECT_NE(here.device, identityOf(game).device);
    EXPECT_EQ(on(id + "\n", "another"), here);
    EXPECT_NE(on("1" + id.substr(1), "").device, here.device);
    if (fs::exists("/var/lib/dbus/machine-id")) {
        EXPECT_EQ(on("\n", id), here);
    }
    EXPECT_EQ(on("", "\n"), (Identity{"-", here.advertising}));
}

TEST_F(DeviceIdentity, WhatIsKeptForAdvertisingIsReadAsItStandsAndRepairedWhenItIsNone) {
    const auto game = application("game", "com.example.game");
    const auto first = identityOf(game).advertising;
    EXPECT_EQ(contentOf(file_), first + "\n");
    writeContent(file_, "6f9619ff-8b86-d011-b42d-00c04fc964ff\n");
    EXPECT_EQ(identityOf(game).advertising, "6F9619FF-8B86-D011-B42D-00C04FC964FF");
    writeContent(file_, "{6F9619FF-8B86-D011-B42D-00C04FC964FF}\nmore\n");
    EXPECT_EQ(identityOf(game).advertising, "6F9619FF-8B86-D011-B42D-00C04FC964FF");
    std::string last = first;
    for (const char* damaged :
         {"", "\n", "no id", "00000000-0000-0000-0000-000000000000", "6F9619FF-8B86-D011"}) {
        writeContent(file_, damaged);
        const auto made = identityOf(game).advertising;
        EXPECT_THAT(made, MatchesRegex(kUuid)) << damaged;
        EXPECT_NE(made, last) << damaged;
        EXPECT_EQ(identityOf(game).advertising, made) << damaged;
        last = made;
    }
}

TEST_F(DeviceIdentity, WithoutAPlaceToKeepItThereIsNoneForAdvertising) {
    writeContent(home_, "a file");
    const auto game = application("game", "com.example.game");
    const auto ended = runProgram({game});
    EXPECT_THAT(ended.output, EndsWith("\n-\n"));
    EXPECT_THAT(ended.errors, HasSubstr("cannot be kept"));
}

}  // namespace

}  // namespace velmora::test
