#pragma once

#include "screen/Page.h"

#include <QPointer>

class QWebEngineView;

namespace velmora::webpage {

class EnginePage;

/// A page of Qt WebEngine.
class WebPage final : public screen::Page {
public:
    WebPage();
    ~WebPage() override;
    WebPage(const WebPage&) = delete;
    WebPage& operator=(const WebPage&) = delete;

    [[nodiscard]] QWidget* widget() override;
    void load(const std::string& url) override;
    void setDelegate(std::weak_ptr<screen::PageDelegate> delegate) override;

private:
    /// Null once the application object has gone.
    QPointer<QWebEngineView> view_;
    QPointer<EnginePage> page_;
};

}  // namespace velmora::webpage
