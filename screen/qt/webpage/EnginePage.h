#pragma once

#include "screen/Page.h"

#include <QString>
#include <QWebEnginePage>

class QWebEngineNewWindowRequest;

namespace velmora::webpage {

/// The engine's page, with everything refused that would reach beyond it.
class EnginePage final : public QWebEnginePage {
public:
    EnginePage(QWebEngineProfile& profile, QObject* parent);

    void begin(const std::string& url);
    void setDelegate(std::weak_ptr<screen::PageDelegate> delegate);
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
    void watchDocuments();
    void openHere(const QWebEngineNewWindowRequest& window);
    void loadLater(const QUrl& url);

    std::weak_ptr<screen::PageDelegate> delegate_;
    bool closed_ = false;
    bool isAsking_ = false;
    const QString mark_;
};

}  // namespace velmora::webpage
