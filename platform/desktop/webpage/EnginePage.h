#pragma once

#include "platform/Page.h"

#include <QUrl>
#include <QWebEnginePage>

class QWebEngineLoadingInfo;
class QWebEngineNewWindowRequest;

namespace velmora::webpage {

/// The engine's page, with everything refused that would reach beyond it.
class EnginePage final : public QWebEnginePage {
public:
    EnginePage(QWebEngineProfile& profile, QObject* parent);

    void begin(const std::string& url);
    void setDelegate(std::weak_ptr<platform::PageDelegate> delegate);
    /// Nothing is loaded and nobody is told any more.
    void close();

protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) override;
    QStringList chooseFiles(FileSelectionMode mode, const QStringList& oldFiles,
                            const QStringList& acceptedMimeTypes) override;
    void javaScriptAlert(const QUrl& securityOrigin, const QString& message) override;
    bool javaScriptConfirm(const QUrl& securityOrigin, const QString& message) override;
    bool javaScriptPrompt(const QUrl& securityOrigin, const QString& message, const QString& defaultValue,
                          QString* result) override;
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString& message, int line,
                                  const QString& source) override;

private:
    void refuseRequests();
    [[nodiscard]] bool mayGoOn(const QUrl& url);
    void loadingHasChanged(const QWebEngineLoadingInfo& info);
    void endLoad(const QUrl& url);
    void awaitDocument();
    void openHere(const QWebEngineNewWindowRequest& window);
    void loadLater(const QUrl& url);

    std::weak_ptr<platform::PageDelegate> delegate_;
    bool closed_ = false;
    bool isAsking_ = false;
    bool isLoading_ = false;
    int load_ = 0;
    QUrl refused_;
};

}  // namespace velmora::webpage
