#include "screen/qt/webpage/Engine.h"

#include "platform/Immortal.h"

#include <algorithm>

#include <QCoreApplication>
#include <QWebEngineDownloadRequest>
#include <QWebEngineProfile>
#include <QWebEngineSettings>
#include <QWebEngineView>

namespace velmora::webpage {

namespace {

constexpr struct {
    QWebEngineSettings::WebAttribute attribute;
    bool on;
} kSettings[] = {
    // A failed load leaves what was there, as a web view does that has no error pages.
    {QWebEngineSettings::ErrorPageEnabled, false},
    // A page may be loaded long before it is seen, and must not be heard then.
    {QWebEngineSettings::PlaybackRequiresUserGesture, true},
    // So that they are reported; none is opened.
    {QWebEngineSettings::JavascriptCanOpenWindows, true},
    {QWebEngineSettings::JavascriptCanAccessClipboard, false},
    {QWebEngineSettings::JavascriptCanPaste, false},
    {QWebEngineSettings::LocalContentCanAccessRemoteUrls, false},
    {QWebEngineSettings::LocalContentCanAccessFileUrls, false},
    {QWebEngineSettings::AllowRunningInsecureContent, false},
    {QWebEngineSettings::AllowGeolocationOnInsecureOrigins, false},
    {QWebEngineSettings::AllowWindowActivationFromJavaScript, false},
    {QWebEngineSettings::FullScreenSupportEnabled, false},
    {QWebEngineSettings::ScreenCaptureEnabled, false},
    {QWebEngineSettings::WebRTCPublicInterfacesOnly, true},
    {QWebEngineSettings::PluginsEnabled, false},
    {QWebEngineSettings::PdfViewerEnabled, false},
    {QWebEngineSettings::NavigateOnDropEnabled, false},
    {QWebEngineSettings::FocusOnNavigationEnabled, false},
};

std::unique_ptr<Engine>& current() {
    // A process that ends without an end of its application object leaves the engine as it is.
    static platform::Immortal<std::unique_ptr<Engine>> engine;
    return *engine;
}

void endEngine() { current().reset(); }

}  // namespace

Engine& Engine::instance() {
    if (!current()) current() = std::make_unique<Engine>();
    return *current();
}

void Engine::goFirst() {
    // These routines run last one first, and Qt Quick adds its own when the first page is drawn.
    qRemovePostRoutine(endEngine);
    qAddPostRoutine(endEngine);
}

Engine::Engine() : profile_(std::make_unique<QWebEngineProfile>()) {
    for (const auto& [attribute, on] : kSettings) profile_->settings()->setAttribute(attribute, on);
    profile_->settings()->setUnknownUrlSchemePolicy(QWebEngineSettings::AllowAllUnknownUrlSchemes);
    goFirst();
    QObject::connect(profile_.get(), &QWebEngineProfile::downloadRequested,
                     [](QWebEngineDownloadRequest* download) { download->cancel(); });
}

Engine::~Engine() {
    for (const auto& view : views_) delete view;
}

void Engine::add(QWebEngineView* view) {
    views_.erase(std::remove(views_.begin(), views_.end(), nullptr), views_.end());
    views_.emplace_back(view);
}

}  // namespace velmora::webpage
