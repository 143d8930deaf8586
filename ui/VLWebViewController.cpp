#include "ui/VLWebViewController.h"

#include <algorithm>
#include <cmath>

#include <QWidget>

namespace velmora {

namespace {

constexpr std::string_view kBridgeScheme = "velmora";
constexpr std::string_view kEndSignal = "VelmoraSuggestionIsDone";

void open(VLWebViewControllerDelegate& delegate, const std::string& url) {
    const auto items = platform::queryItems(url);
    const auto value = [&](std::string_view key) { return VLWebViewController::valueForKey(key, items); };
    delegate.vlWebViewBridgeOpenType(value("type"), value("target"), value("description"));
}

/// The hosts of the bridge, and what each asks of the delegate.
constexpr struct {
    std::string_view host;
    void (*act)(VLWebViewControllerDelegate& delegate, const std::string& url);
} kCommands[] = {
    {"close", [](auto& delegate, const auto&) { delegate.vlWebViewBridgeClose(); }},
    {"dismiss", [](auto& delegate, const auto&) { delegate.vlWebViewBridgeDismiss(); }},
    {"replay", [](auto& delegate, const auto&) { delegate.vlWebViewBridgeReplay(); }},
    {"open", open},
};

}  // namespace

screen::Page& VLWebViewController::webView() {
    if (webView_) return *webView_;
    webView_ = screen::Page::make();
    webView_->setDelegate(std::shared_ptr<screen::PageDelegate>(shared_from_this(), this));
    if (auto* page = webView_->widget(); page != nullptr) {
        page->setParent(view());
        page->setGeometry(view()->geometry());
        page->show();
    }
    return *webView_;
}

void VLWebViewController::setUrlString(std::optional<std::string> urlString) {
    urlString_ = std::move(urlString);
    auto& page = webView();
    if (urlString_ && platform::isUrl(*urlString_)) page.load(*urlString_);
}

platform::ScreenSize VLWebViewController::screenSize() {
    // This host measures its screen the way it is turned, so that nothing is to be exchanged here.
    return platform::Screen::main().size;
}

void VLWebViewController::exitButtonTouched() { dismissViewControllerAnimated(true); }

std::optional<std::string>
VLWebViewController::valueForKey(std::string_view key,
                                 const std::optional<std::vector<platform::UrlQueryItem>>& fromQueryItems) {
    if (!fromQueryItems) return std::nullopt;
    const auto item = std::find_if(fromQueryItems->begin(), fromQueryItems->end(),
                                   [&](const auto& candidate) { return candidate.name == key; });
    return item != fromQueryItems->end() ? item->value : std::nullopt;
}

void VLWebViewController::viewDidLayoutSubviews() {
    screen::ViewController::viewDidLayoutSubviews();
    const auto [width, height] = screenSize();
    auto* page = webView().widget();
    if (page == nullptr) return;
    page->setGeometry(0, 0, static_cast<int>(std::lround(width)), static_cast<int>(std::lround(height)));
}

bool VLWebViewController::pageShouldStartLoad(const std::string& url) {
    const auto receiver = delegate.lock();
    if (platform::urlScheme(url) != kBridgeScheme || !receiver) return true;

    const auto host = platform::urlHost(url);
    for (const auto& command : kCommands) {
        if (command.host != host) continue;
        command.act(*receiver, url);
        break;
    }
    return false;
}

void VLWebViewController::pageDidFinishLoad(const std::string& url) {
    if (url.find(kEndSignal) == std::string::npos) return;
    dismissViewControllerAnimated(true);
    if (const auto receiver = delegate.lock()) receiver->vlWebViewControllerWasDismissed();
}

}  // namespace velmora
