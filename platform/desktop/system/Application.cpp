#include "platform/Application.h"

#include "platform/CallOut.h"
#include "platform/Log.h"
#include "platform/UrlText.h"

#include <memory>
#include <thread>

#include <gio/gio.h>

namespace velmora::platform {

namespace {

struct Release {
    void operator()(GObject* object) const noexcept { g_object_unref(object); }
    void operator()(GError* error) const noexcept { g_error_free(error); }
};

void launch(const std::string& url) {
    GError* failure = nullptr;
    if (g_app_info_launch_default_for_uri(url.c_str(), nullptr, &failure) != 0) return;
    const std::unique_ptr<GError, Release> error(failure);
    log(std::string("A URL cannot be opened: ") + (error ? error->message : "no reason given"));
}

}  // namespace

bool Application::canOpenUrl(const std::string& url) {
    const auto scheme = urlScheme(url);
    if (!isUrl(url) || scheme.empty()) return false;
    auto* handler = g_app_info_get_default_for_uri_scheme(scheme.c_str());
    const std::unique_ptr<GObject, Release> held(G_OBJECT(handler));
    return handler != nullptr;
}

void Application::openUrl(const std::string& url) {
    if (!isUrl(url)) return log("A URL cannot be opened: it is none");
    // GIO's own asynchronous call needs an event loop of GLib's kind, which not every application runs.
    callOut("opening a URL", [&] { std::thread([url] { launch(url); }).detach(); });
}

}  // namespace velmora::platform
