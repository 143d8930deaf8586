// An application on whose terms the browser engine may not be able to start; the first argument names them.
// It ends as applications do, with the page still there.
#include "screen/Page.h"

#include "harness/EventLoop.h"
#include "support/PageWatcher.h"

#include <memory>
#include <string_view>

#include <QApplication>
#include <QWidget>

namespace {

using velmora::screen::Page;

void showPage(std::string_view terms) {
    // Kept beyond the end of the application object, as everything of the library may be.
    static const std::unique_ptr<Page> page = Page::make();
    static const auto watcher = std::make_shared<velmora::test::PageWatcher>();
    page->setDelegate(watcher);
    page->load("data:text/html,page");
    if (page->widget() != nullptr) page->widget()->show();
    if (terms == "engine") velmora::test::runUntil([] { return !watcher->ends.empty(); });
    std::puts(watcher->ends.empty() ? "nothing was loaded" : "a page was loaded");
}

}  // namespace

int main(int count, char** arguments) {
    const std::string_view terms = count > 1 ? arguments[1] : "";
    if (terms == "unshared") QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts, false);
    if (terms == "gui") {
        const QGuiApplication application(count, arguments);
        showPage(terms);
    } else if (terms == "none") {
        showPage(terms);
    } else {
        const QApplication application(count, arguments);
        showPage(terms);
    }
    std::puts("and left");
    return 0;
}
