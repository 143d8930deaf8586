#include "screen/qt/webpage/EnginePage.h"

#include "screen/qt/webpage/DevelopmentAuthority.h"

#include <algorithm>
#include <array>

#include <QScopedValueRollback>
#include <QUuid>
#include <QWebEngineCertificateError>
#include <QWebEngineClientCertificateSelection>
#include <QWebEngineFileSystemAccessRequest>
#include <QWebEngineNewWindowRequest>
#include <QWebEngineQuotaRequest>
#include <QWebEngineRegisterProtocolHandlerRequest>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>

namespace velmora::webpage {

namespace {

/// The engine would hand any other scheme to the desktop, or show its own inner pages.
bool isOfTheWeb(const QUrl& url) {
    constexpr std::array kSchemes{"http", "https", "data", "blob", "about", "file", "javascript"};
    const auto scheme = url.scheme();
    return std::any_of(kSchemes.begin(), kSchemes.end(),
                       [&](const char* known) { return scheme == QLatin1String(known); });
}

/// A document that is about to move on gets no load event; if it then stays after all, it is told of late.
constexpr const char* kTellOfTheEnd = R"((() => {
    let told = false;
    const tell = () => {
        if (!told) console.info('%1' + location.href);
        told = true;
    };
    addEventListener('load', event => { if (event.isTrusted) tell(); }, {capture: true});
    document.addEventListener('readystatechange', event => {
        if (event.isTrusted && document.readyState === 'complete') setTimeout(tell, 200);
    }, {capture: true});
})())";

std::string textOf(const QUrl& url) { return url.toEncoded(QUrl::FullyEncoded).toStdString(); }

}  // namespace

EnginePage::EnginePage(QWebEngineProfile& profile, QObject* parent)
    : QWebEnginePage(&profile, parent), mark_(QUuid::createUuid().toString()) {
    connect(this, &QWebEnginePage::newWindowRequested, this, &EnginePage::openHere);
    connect(this, &QWebEnginePage::certificateError, this, [](QWebEngineCertificateError error) {
        const bool trusted = error.isOverridable() &&
                             DevelopmentAuthority().verifies(error.certificateChain(), error.url().host());
        if (trusted) return error.acceptCertificate();
        error.rejectCertificate();
    });
    refuseRequests();
    watchDocuments();
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
    if (isAsking_) return loadLater(address);
    load(address);
}

void EnginePage::loadLater(const QUrl& url) {
    QMetaObject::invokeMethod(
        this,
        [this, url] {
            if (!closed_) load(url);
        },
        Qt::QueuedConnection);
}

void EnginePage::setDelegate(std::weak_ptr<screen::PageDelegate> delegate) {
    delegate_ = std::move(delegate);
}

void EnginePage::close() {
    closed_ = true;
    delegate_.reset();
}

bool EnginePage::acceptNavigationRequest(const QUrl& url, NavigationType, bool) {
    if (const auto delegate = delegate_.lock()) {
        const QScopedValueRollback asking(isAsking_, true);
        if (!delegate->pageShouldStartLoad(textOf(url))) return false;
    }
    return !closed_ && isOfTheWeb(url);
}

void EnginePage::watchDocuments() {
    // The engine's own reports do not tell: a navigation that begins or is refused while a document loads
    // takes that load's place in them, or has none. So each document tells of its end, in a world that it
    // does not see; the mark is what it could not make up.
    QWebEngineScript script;
    script.setInjectionPoint(QWebEngineScript::DocumentCreation);
    script.setWorldId(QWebEngineScript::ApplicationWorld);
    script.setRunsOnSubFrames(false);
    script.setSourceCode(QString::fromLatin1(kTellOfTheEnd).arg(mark_));
    scripts().insert(script);
}

void EnginePage::javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString& message, int,
                                          const QString&) {
    if (!message.startsWith(mark_)) return;
    const auto url = QUrl::fromEncoded(message.mid(mark_.size()).toUtf8());
    if (const auto delegate = delegate_.lock()) delegate->pageDidFinishLoad(textOf(url));
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

}  // namespace velmora::webpage
