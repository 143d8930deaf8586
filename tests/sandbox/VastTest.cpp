#include <velmora/velmora.h>

#include "harness/Files.h"
#include "harness/TemporaryDirectory.h"
#include "sandbox/Sandbox.h"
#include "sandbox/Zones.h"
#include "store/VLDefaults.h"
#include "support/Environment.h"
#include "support/Exchange.h"
#include "support/LastEntry.h"
#include "support/Program.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using sandbox::Sandbox;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Whether the document is one of that version.
bool isValid(const std::string& document, int version) {
    const TemporaryDirectory folder;
    const auto file = (folder / "vast.xml").string();
    writeContent(file, document);
    const auto schema = std::string(VELMORA_SCHEMAS) + "/vast" + std::to_string(version) + ".xsd";
    const auto ended = runProgram({"xmllint", "--noout", "--schema", schema, file});
    // 3 says that it was read, and is not valid.
    EXPECT_THAT((std::vector{0, 3}), Contains(ended.status)) << document << ended.errors;
    return ended.status == 0;
}

std::string replaced(std::string text, const std::string& part, const std::string& other) {
    const auto at = text.find(part);
    EXPECT_NE(at, std::string::npos) << part;
    return at == std::string::npos ? text : text.replace(at, part.size(), other);
}

class SandboxVast : public testing::Test {
protected:
    [[nodiscard]] std::string document(const std::string& zone, const std::string& query) const {
        const auto answer = ask({.url = service_.plainUrl("/v2/pre-roll/" + zone + "/vast?" + query)});
        EXPECT_EQ(answer.status, 200);
        return answer.body;
    }

    /// Of the last request.
    [[nodiscard]] std::vector<std::string> problems() const { return lastProblems(service_); }

    const Sandbox service_;
    const Environment base_{"VELMORA_API_BASE_URL", service_.plainApiUrl().c_str()};
};

TEST_F(SandboxVast, ADocumentIsValidInTheVersionThatWasAskedFor) {
    for (const auto& zone : sandbox::allZones()) {
        const std::string name(zone.name);
        EXPECT_TRUE(isValid(document(name, "vastVersion=2"), 2)) << name;
        for (const char* query : {"vastVersion=3", "vastVersion=3&prerollType=2", "", "vastVersion=4"})
            EXPECT_TRUE(isValid(document(name, query), 3)) << name << " " << query;
    }
    // The host is the client's word.
    const auto odd = ask({.url = service_.plainUrl("/v2/pre-roll/video/vast?vastVersion=3"),
                          .headers = {{"host", "a&<b>\""}}});
    EXPECT_THAT(odd.body, HasSubstr("http://a&amp;&lt;b"));
}

TEST_F(SandboxVast, WhatIsNoSuchDocumentIsToldFromIt) {
    EXPECT_FALSE(isValid(document("video", "vastVersion=2"), 3));
    EXPECT_FALSE(isValid(document("video", "vastVersion=3"), 2));
}

TEST_F(SandboxVast, OnlyAPreRollThatMayBeSkippedSaysFromWhereOn) {
    const auto says = [&](const std::string& zone, const std::string& query) {
        return document(zone, query).find(" skipoffset=\"") != std::string::npos;
    };
    EXPECT_TRUE(says("skippable-video", "vastVersion=3&prerollType=2"));
    EXPECT_TRUE(says("skippable-video", "vastVersion=3"));
    EXPECT_FALSE(says("skippable-video", "vastVersion=3&prerollType=1"));
    EXPECT_FALSE(says("skippable-video", "vastVersion=2&prerollType=2"));
    EXPECT_FALSE(says("video", "vastVersion=3&prerollType=2"));
}

TEST_F(SandboxVast, WhatTheLibraryMakesIsWithoutFault) {
    Velmora::initializeWithAppKey("a b%25سلام", std::make_shared<VLConfiguration>());
    for (const int number : {2, 3, 4}) {
        ask({.url = VelmoraVAST::getVastUrlForZone("video", number - 1, number).value()});
        EXPECT_THAT(problems(), IsEmpty()) << number;
    }
    VLDefaults::setVelmoraUserId("user");
    const auto url = VelmoraVAST::getVastUrlForZone("video", 1, 3).value();
    ask({.url = url});
    EXPECT_THAT(problems(), IsEmpty());

    ask({.url = replaced(url, "secretKey=", "secretKey=x")});
    EXPECT_THAT(problems(), ElementsAre(HasSubstr("secretKey is \"x")));
    ask({.url = replaced(url, "&screenWidth=", "&screenWidth=1080")});
    EXPECT_THAT(problems(), ElementsAre(HasSubstr("screenWidth is \"1080")));
    ask({.url = replaced(url, "&mcc=", "&mmc=")});
    EXPECT_THAT(problems(), ElementsAre("mcc is missing"));
    ask({.url = replaced(url, "vastVersion=3", "vastVersion=5")});
    EXPECT_THAT(problems(), ElementsAre("vastVersion is \"5\", neither 2 nor 3"));
    ask({.url = replaced(url, "device-os=ios", "device-os=other")});
    EXPECT_THAT(problems(), ElementsAre(HasSubstr("device-os is \"other\"")));
    ask({.url = url + "&mnc=(null)"});
    EXPECT_THAT(problems(), ElementsAre("mnc is there more than once"));
    EXPECT_THAT(document("video", ""), HasSubstr("<MediaFile"));
    EXPECT_THAT(problems(), ElementsAre("there is no query"));
}

}  // namespace

}  // namespace velmora::test
