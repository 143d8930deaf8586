#include "platform/desktop/webpage/EnginePage.h"

#include "platform/desktop/webpage/DevelopmentAuthority.h"

#include <algorithm>
#include <array>
#include <chrono>

#include <QPointer>
#include <QScopedValueRollback>
#include <QTimer>
#include <QWebEngineCertificateError>
#include <QWebEngineClientCertificateSelection>
#include <QWebEngineFileSystemAccessRequest>
#include <QWebEngineLoadingInfo>
#include <QWebEngineNewWindowRequest>
#include <QWebEngineQuotaRequest>
#include <QWebEngineRegisterProtocolHandlerRequest>
#include <QWebEngineScript>

namespace velmora::webpage {

namespace {

/// The engine would hand any other scheme to the desktop, or show its own inner pages.
bool isOfTheWeb(const QUrl& url) {
    constexpr std::array kSchemes{"http", "https", "data", "blob", "about", "file", "javascript"};
    const auto scheme = url.scheme();
    return std::any_of(kSchemes.begin(), kSchemes.end(),
                       [&](const char* known) { return scheme == QLatin1String(known); });
}

// In a world of their own, which the page does not see: whether a document's end was reported stays with it.
const auto kMarkDocument = QStringLiteral("globalThis.ended = true;");
const auto kAskDocument =
    QStringLiteral("(() => {"
                   "  if (globalThis.ended || location.href === 'about:blank') return 'none';"
                   "  if (document.readyState !== 'complete') return 'loading';"
                   "  globalThis.ended = true;"
                   "  return 'complete';"
                   "})()");
constexpr std::chrono::milliseconds kAskAgain{100};

std::string textOf(const QUrl& url) { return url.toEncoded(QUrl::FullyEncoded).toStdString(); }

}  // namespace

EnginePage::EnginePage(QWebEngineProfile& profile, QObject* parent) : QWebEnginePage(&profile, parent) {
    connect(this, &QWebEnginePage::loadingChanged, this, &EnginePage::loadingHasChanged);
    connect(this, &QWebEnginePage::newWindowRequested, this, &EnginePage::openHere);
    connect(this, &QWebEnginePage::certificateError, this, [](QWebEngineCertificateError error) {
        const bool trusted = error.isOverridable() &&
                             DevelopmentAuthority().verifies(error.certificateChain(), error.url().host());
        trusted ? error.acceptCertificate() : error.rejectCertificate();
    });
    refuseRequests();
}

void EnginePage::refuseRequests() {
    connect(this, &QWebEnginePage::featurePermissionRequested, this,
            [this](const QUrl& origin, Feature feature) {
                setFeaturePermission(origin, feature, PermissionDeniedByUser);
            });
    connect(this, &QWebEnginePage::quotaRequested, this,
            [](QWebEngineQuotaRequest request) { request.reject(); });
    connect(this, &QWebEnginePage::registerProtocolHandlerRequested, this,
            [](QWebEngineRegisterProtocolHandlerRequest request) { request.reject(); });
    connect(this, &QWebEnginePage::fileSystemAccessRequested, this,
            [](QWebEngineFileSystemAccessRequest request) { request.reject(); });
    connect(this, &QWebEnginePage::selectClientCertificate, this,
            [](QWebEngineClientCertificateSelection selection) { selection.selectNone(); });
}

void EnginePage::begin(const std::string& url) {
    const auto address = QUrl::fromEncoded(QByteArray::fromStdString(url));
    if (!address.isValid() || address.isRelative()) return;
    // The engine does not bear a new load in the middle of the question about another.
    isAsking_ ? loadLater(address) : load(address);
}

void EnginePage::loadLater(const QUrl& url) {
    QMetaObject::invokeMethod(
        this,
        [this, url] {
            if (!closed_) load(url);
        },
        Qt::QueuedConnection);
}

void EnginePage::setDelegate(std::weak_ptr<platform::PageDelegate> delegate) {
    delegate_ = std::move(delegate);
}

void EnginePage::close() {
    closed_ = true;
    delegate_.reset();
}

bool EnginePage::acceptNavigationRequest(const QUrl& url, NavigationType, bool isMainFrame) {
    if (mayGoOn(url)) return true;
    if (isMainFrame) refused_ = url;
    return false;
}

bool EnginePage::mayGoOn(const QUrl& url) {
    if (const auto delegate = delegate_.lock()) {
        const QScopedValueRollback asking(isAsking_, true);
        if (!delegate->pageShouldStartLoad(textOf(url))) return false;
    }
    return !closed_ && isOfTheWeb(url);
}

void EnginePage::loadingHasChanged(const QWebEngineLoadingInfo& info) {
    const auto status = info.status();
    // An answer of 404 with a document in it counts as failed here, and is one that was loaded and shown.
    const bool shown = status == QWebEngineLoadingInfo::LoadSucceededStatus ||
                       (status == QWebEngineLoadingInfo::LoadFailedStatus && !info.isErrorPage() &&
                        info.errorDomain() == QWebEngineLoadingInfo::HttpStatusCodeDomain);
    if (status == QWebEngineLoadingInfo::LoadStartedStatus) {
        ++load_;
        isLoading_ = true;
    } else if (!isLoading_) {
        return;
    } else if (shown) {
        runJavaScript(kMarkDocument, QWebEngineScript::ApplicationWorld);
        endLoad(info.url());
    } else if (info.url() == refused_) {
        awaitDocument();
    } else {
        isLoading_ = false;
    }
}

void EnginePage::endLoad(const QUrl& url) {
    isLoading_ = false;
    if (const auto delegate = delegate_.lock()) delegate->pageDidFinishLoad(textOf(url));
}

void EnginePage::awaitDocument() {
    // A navigation that is refused while a document loads takes the place of that load in the engine's
    // reports, but the document goes on and comes to its end: it has to be asked.
    runJavaScript(kAskDocument, QWebEngineScript::ApplicationWorld,
                  [self = QPointer(this), load = load_](const QVariant& answer) {
                      if (!self || !self->isLoading_ || self->load_ != load) return;
                      if (answer == QStringLiteral("complete")) return self->endLoad(self->url());
                      if (answer != QStringLiteral("loading")) return;
                      QTimer::singleShot(kAskAgain, self, [self, load] {
                          if (self->isLoading_ && self->load_ == load) self->awaitDocument();
                      });
                  });
}

void EnginePage::openHere(const QWebEngineNewWindowRequest& window) {
    // A phone's web view has one window, and shows in it what was meant for another.
    const auto url = window.requestedUrl();
    if (url.isValid() && url.scheme() != QStringLiteral("about")) loadLater(url);
}

QStringList EnginePage::chooseFiles(FileSelectionMode, const QStringList&, const QStringList&) { return {}; }

void EnginePage::javaScriptAlert(const QUrl&, const QString&) {}

bool EnginePage::javaScriptConfirm(const QUrl&, const QString&) { return false; }

bool EnginePage::javaScriptPrompt(const QUrl&, const QString&, const QString&, QString*) { return false; }

void EnginePage::javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString&, int,
                                          const QString&) {}

}  // namespace velmora::webpage
