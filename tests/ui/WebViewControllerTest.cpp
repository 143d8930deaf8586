#include "ui/VLWebViewController.h"

#include "harness/EventLoop.h"
#include "platform/Screen.h"
#include "screen/Application.h"
#include "support/OddUrls.h"
#include "support/ScriptedPage.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <QApplication>
#include <QWidget>
#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Text = std::optional<std::string>;

/// Implements what every delegate must, and notes it.
class RequiredDelegate : public VLWebViewControllerDelegate {
public:
    void vlWebViewBridgeClose() override { calls.emplace_back("close"); }
    void vlWebViewBridgeDismiss() override { calls.emplace_back("dismiss"); }
    void vlWebViewBridgeReplay() override { calls.emplace_back("replay"); }
    void vlWebViewBridgeOpenType(const Text& type, const Text& target, const Text& description) override {
        calls.push_back("open " + type.value_or("-") + " " + target.value_or("-") + " " +
                        description.value_or("-"));
    }

    std::vector<std::string> calls;
};

class Delegate final : public RequiredDelegate {
public:
    void vlWebViewControllerWasDismissed() override { calls.emplace_back("was dismissed"); }
};

class WebViewController : public testing::Test {
protected:
    WebViewController() {
        controller->delegate = delegate;
        controller->setUrlString("http://page/");
        window_.show();
    }

    ~WebViewController() override {
        // The window of the library is closed as a person would.
        for (auto* window : QApplication::topLevelWidgets())
            if (window != &window_) window->close();
        window_.hide();
        const std::weak_ptr<VLWebViewController> weak = std::exchange(controller, nullptr);
        EXPECT_TRUE(runUntil([&] { return weak.expired(); }));
    }

    [[nodiscard]] const ScriptedPage& page() const { return *pages.made().front(); }

    void present() {
        bool done = false;
        const auto root = screen::Application::rootViewController();
        root->presentViewController(controller, false, [&] { done = true; });
        ASSERT_TRUE(runUntil([&] { return done; }));
    }

    [[nodiscard]] bool isGone() const {
        return runUntil([&] { return controller->presentingViewController() == nullptr; });
    }

    const ScriptedPages pages;
    std::shared_ptr<VLWebViewController> controller = std::make_shared<VLWebViewController>();
    std::shared_ptr<Delegate> delegate = std::make_shared<Delegate>();

private:
    QWidget window_;
};

TEST_F(WebViewController, ThePageIsMadeOnceOnFirstUseAndLoadsAtOnce) {
    EXPECT_EQ(controller->urlString(), "http://page/");
    EXPECT_THAT(page().loads, ElementsAre("http://page/"));
    EXPECT_EQ(controller->presentingViewController(), nullptr);
    EXPECT_EQ(page().widget->parentWidget(), controller->view());
    EXPECT_EQ(page().widget->geometry(), controller->view()->geometry());

    for (const auto& url : noUrls("http://page/")) {
        controller->setUrlString(url);
        EXPECT_EQ(controller->urlString(), url);
    }
    controller->setUrlString(std::nullopt);
    EXPECT_EQ(controller->urlString(), std::nullopt);
    EXPECT_THAT(page().loads, ElementsAre("http://page/"));
    for (const auto& url : oddUrls("http://page/")) controller->setUrlString(url);
    EXPECT_EQ(page().loads.size(), 1 + oddUrls("").size());
    EXPECT_EQ(pages.made().size(), 1u);

    const auto idle = std::make_shared<VLWebViewController>();
    EXPECT_EQ(pages.made().size(), 1u);
    idle->view()->resize(300, 200);
    EXPECT_EQ(idle->webView().widget()->geometry(), QRect(0, 0, 300, 200));
    EXPECT_EQ(pages.made().size(), 2u);
    EXPECT_THAT(pages.made().back()->loads, IsEmpty());
}

TEST_F(WebViewController, ThePageGoesWithItsControllerAndTheDelegateIsNotKept) {
    const std::weak_ptr<Delegate> weakDelegate = delegate;
    delegate.reset();
    EXPECT_TRUE(weakDelegate.expired());

    const std::weak_ptr<VLWebViewController> weak = controller;
    controller.reset();
    EXPECT_TRUE(weak.expired());
    EXPECT_TRUE(page().widget.isNull());
    EXPECT_TRUE(page().navigate("velmora://close"));
}

TEST_F(WebViewController, ThePageCoversTheScreenAndHidesTheStatusBar) {
    present();
    const auto size = platform::Screen::main().size;
    EXPECT_EQ(page().widget->geometry(), QRect(0, 0, int(size.width), int(size.height)));
    EXPECT_TRUE(page().widget->isVisible());
    EXPECT_EQ(VLWebViewController::screenSize().width, size.width);
    EXPECT_EQ(VLWebViewController::screenSize().height, size.height);
    EXPECT_TRUE(controller->prefersStatusBarHidden());
}

TEST_F(WebViewController, CommandsAreRefusedAndReachTheDelegateOnce) {
    const std::string megabyte(1 << 20, 'x');
    const std::vector<std::pair<std::string, std::string>> commands{
        {"velmora://close", "close"},
        {"velmora://dismiss/path?query#part", "dismiss"},
        {"velmora://replay/", "replay"},
        {"velmora://user@replay:80", "replay"},
        {"velmora://open", "open - - -"},
        {"velmora://open/?type=a&target=b&description=c", "open a b c"},
        {"velmora://open?description=c&TYPE=a&target=b&target=d#type=e", "open - b c"},
        {"velmora://open?type=a%20%C3%A4&target=http%3A%2F%2Fx%3Fa%3Db%26c&description=a+b",
         "open a ä http://x?a=b&c a+b"},
        {"velmora://open?type&target=", "open -  -"},
        {"velmora://open?type=%zz&target=b", "open - - -"},
        {"velmora://open?#type=a", "open - - -"},
        {"velmora://open?", "open - - -"},
        {"velmora://open?&&type=[a]&target=%00&description=%FF", "open [a] - -"},
        {"velmora://open?target=" + megabyte, "open - " + megabyte + " -"},
    };
    for (const auto& [url, call] : commands) {
        delegate->calls.clear();
        EXPECT_FALSE(page().navigate(url)) << url.substr(0, 80);
        EXPECT_THAT(delegate->calls, ElementsAre(call)) << url.substr(0, 80);
    }
}

TEST_F(WebViewController, OtherCommandsAreRefusedWhatIsNoneIsAllowedAndNeitherCallsAnything) {
    for (const std::string url :
         {"velmora://Close", "velmora://closed", "velmora://%63lose", "velmora://", "velmora:///close",
          "velmora:close", "velmora:", "velmora://?close", "velmora://[close]", "velmora://other/close"}) {
        EXPECT_FALSE(page().navigate(url)) << url;
    }
    for (const std::string url : {"Velmora://close", "VELMORA://close", "velmoras://close", "http://close/",
                                  "http://x/?velmora://close", "about:blank", "velmora", "://close", ""}) {
        EXPECT_TRUE(page().navigate(url)) << url;
    }
    EXPECT_THAT(delegate->calls, IsEmpty());
    delegate.reset();
    EXPECT_TRUE(page().navigate("velmora://close"));
}

TEST_F(WebViewController, AnEndedPageWithTheSignalInItsUrlDismissesAndTells) {
    present();
    page().finish("http://page/?velmorasuggestionisdone");
    EXPECT_THAT(delegate->calls, IsEmpty());
    EXPECT_NE(controller->presentingViewController(), nullptr);

    page().finish("http://page/?a=xVelmoraSuggestionIsDonex");
    EXPECT_THAT(delegate->calls, ElementsAre("was dismissed"));
    EXPECT_TRUE(isGone());

    // The exit button tells nobody.
    present();
    controller->exitButtonTouched();
    EXPECT_TRUE(isGone());
    EXPECT_EQ(delegate->calls.size(), 1U);
}

TEST_F(WebViewController, ADelegateNeedNotListenToTheDismissal) {
    const auto quiet = std::make_shared<RequiredDelegate>();
    for (const auto& listener : {quiet, std::shared_ptr<RequiredDelegate>()}) {
        controller->delegate = listener;
        present();
        page().finish("http://page/VelmoraSuggestionIsDone");
        EXPECT_TRUE(isGone());
    }
    EXPECT_THAT(quiet->calls, IsEmpty());
}

}  // namespace

}  // namespace velmora::test
