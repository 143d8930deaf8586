#include "screen/qt/webpage/WebPage.h"

#include "screen/qt/webpage/Engine.h"
#include "screen/qt/webpage/EnginePage.h"

#include <QWebEngineView>

namespace velmora::webpage {

WebPage::WebPage() : view_(new QWebEngineView(static_cast<QWidget*>(nullptr))) {
    auto& engine = Engine::instance();
    engine.add(view_);
    page_ = new EnginePage(engine.profile(), view_);
    view_->setPage(page_);
    view_->setContextMenuPolicy(Qt::NoContextMenu);
    view_->setAcceptDrops(false);
}

WebPage::~WebPage() {
    if (page_) page_->close();
    if (!view_) return;
    view_->hide();
    view_->setParent(nullptr);
    // The engine may be in the middle of a call to this page.
    view_->deleteLater();
}

QWidget* WebPage::widget() { return view_; }

void WebPage::load(const std::string& url) {
    if (!page_) return;
    page_->begin(url);
    Engine::goFirst();
}

void WebPage::setDelegate(std::weak_ptr<screen::PageDelegate> delegate) {
    if (page_) page_->setDelegate(std::move(delegate));
}

}  // namespace velmora::webpage
