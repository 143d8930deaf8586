#pragma once

#include <functional>
#include <memory>
#include <string>

class QWidget;

namespace velmora::screen {

/// Who decides about a page's navigations and hears of its loads. Main thread.
///
/// The URLs are as the page's engine knows them: it may have brought scheme and host to lower case and
/// percent-encoded what a URL may not hold.
class PageDelegate {
public:
    virtual ~PageDelegate() = default;

    /// Whether a navigation may go on. Called once for each, before anything of it is loaded: those of the
    /// page and of every frame in it, by link, script, form, redirect or `Page::load`. A window that the page
    /// would open counts as a navigation of the page itself.
    virtual bool pageShouldStartLoad(const std::string& url) = 0;

    /// A load has come to its end, with the URL that was loaded, redirects followed. Frames do not count,
    /// nor do loads that were refused, given up, or failed; an error document that a server sent does.
    virtual void pageDidFinishLoad(const std::string& url) = 0;
};

/// A view that shows one web page. Main thread only. It may be destroyed at any time, in the middle of a call
/// to its delegate too.
///
/// A page asks nothing of the user and of the host: no dialogs, windows, downloads, camera, microphone, place
/// or notifications, and nothing stays on disk. What it navigates to outside the web (`tel:`, say) is
/// reported like everything else, and then goes nowhere.
class Page {
public:
    using Factory = std::function<std::unique_ptr<Page>()>;

    virtual ~Page() = default;

    /// For the view of a controller to take in. It belongs to the page, which takes it out before it goes.
    /// Null when the application has no widgets.
    [[nodiscard]] virtual QWidget* widget() = 0;

    /// Begins to load; what was loading is given up. What is no absolute URL loads nothing.
    virtual void load(const std::string& url) = 0;

    /// None lets every navigation go on.
    virtual void setDelegate(std::weak_ptr<PageDelegate> delegate) = 0;

    /// A page of the host's browser engine, which the first one brings into the process. Where there is none,
    /// or it could not start, one that shows nothing and reports nothing, and a log line says why.
    [[nodiscard]] static std::unique_ptr<Page> make();

    /// Has `make` ask another factory; none goes back to the engine.
    static void replaceFactory(Factory factory);
};

}  // namespace velmora::screen
