#include "platform/Application.h"

#include "harness/Await.h"
#include "support/LogCapture.h"
#include "support/OddUrls.h"
#include "support/Opener.h"

#include <string>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using platform::Application;

TEST(Application, AUrlIsOpenedByTheDesktopAsItStands) {
    const Opener opener("velmora-test");
    const std::string url = "velmora-test:a'b$(touch%20x);d&e=%D8%A7,*~";
    EXPECT_FALSE(Application::canOpenUrl("no-such-scheme:x"));
    EXPECT_FALSE(Application::canOpenUrl("no scheme"));
    EXPECT_FALSE(Application::canOpenUrl(""));
    EXPECT_FALSE(Application::canOpenUrl("//velmora-test"));
    for (const auto& odd : oddUrls("velmora-test:")) EXPECT_TRUE(Application::canOpenUrl(odd)) << odd;
    for (const auto& none : noUrls("velmora-test:")) {
        EXPECT_FALSE(Application::canOpenUrl(none)) << none;
        Application::openUrl(none);
    }
    ASSERT_TRUE(Application::canOpenUrl(url));
    Application::openUrl(url);
    EXPECT_TRUE(becomes([&] { return !opener.opened().empty(); }));
    EXPECT_THAT(opener.opened(), testing::ElementsAre(url));
}

TEST(Application, AUrlThatNobodyOpensIsLogged) {
    for (const std::string url : {"no-such-scheme:x", "no URL"}) {
        const LogCapture log;
        Application::openUrl(url);
        EXPECT_TRUE(becomes([&] { return log.has("A URL cannot be opened"); })) << url;
    }
}

}  // namespace

}  // namespace velmora::test
