#pragma once

#include "platform/Screen.h"
#include "platform/UrlText.h"
#include "screen/Page.h"
#include "screen/ViewController.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

/// Who acts on what a page asks for. Main thread.
class VLWebViewControllerDelegate {
public:
    virtual ~VLWebViewControllerDelegate() = default;

    /// The controller has dismissed itself, because the page said that the ad is done.
    virtual void vlWebViewControllerWasDismissed() {}
    virtual void vlWebViewBridgeClose() = 0;
    virtual void vlWebViewBridgeDismiss() = 0;
    virtual void vlWebViewBridgeReplay() = 0;
    /// What the page did not say is absent.
    virtual void vlWebViewBridgeOpenType(const std::optional<std::string>& type,
                                         const std::optional<std::string>& andTarget,
                                         const std::optional<std::string>& andDescription) = 0;
};

/// One web page over the whole screen, which speaks to the library by navigating to URLs of the scheme
/// "velmora": the host is the command. Scheme and host are compared as they are reported; the engine of the
/// desktop reports them in lower case, however the page wrote them.
class VLWebViewController : public screen::ViewController, private screen::PageDelegate {
public:
    /// The page, made on first use and laid into the view.
    [[nodiscard]] screen::Page& webView();

    [[nodiscard]] const std::optional<std::string>& urlString() const { return urlString_; }
    /// Loads at once, on the screen or not. What is no URL loads nothing.
    void setUrlString(std::optional<std::string> urlString);

    std::weak_ptr<VLWebViewControllerDelegate> delegate;

    [[nodiscard]] bool prefersStatusBarHidden() const override { return true; }

    [[nodiscard]] static platform::ScreenSize screenSize();

    /// For a button that a subclass or a caller adds.
    void exitButtonTouched();

    /// The value of the first item of that name; absent without one, and where that has none.
    [[nodiscard]] static std::optional<std::string>
    valueForKey(std::string_view key,
                const std::optional<std::vector<platform::UrlQueryItem>>& fromQueryItems);

protected:
    void viewDidLayoutSubviews() override;

private:
    bool pageShouldStartLoad(const std::string& url) override;
    void pageDidFinishLoad(const std::string& url) override;

    std::unique_ptr<screen::Page> webView_;
    std::optional<std::string> urlString_;
};

}  // namespace velmora
