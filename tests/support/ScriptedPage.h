#pragma once

#include "screen/Page.h"

#include <memory>
#include <string>
#include <vector>

#include <QPointer>
#include <QWidget>

namespace velmora::test {

/// A page that loads nothing and reports what a test tells it to.
class ScriptedPage {
public:
    /// As a page does before a navigation; whether it may go on.
    [[nodiscard]] bool navigate(const std::string& url) const;
    /// As a page does at the end of a load.
    void finish(const std::string& url) const;

    /// Every URL that it was told to load.
    std::vector<std::string> loads;
    std::weak_ptr<screen::PageDelegate> delegate;
    /// Null when the page has gone.
    QPointer<QWidget> widget;
};

/// Has every page made scripted while it lives.
class ScriptedPages {
public:
    ScriptedPages();
    ~ScriptedPages();
    ScriptedPages(const ScriptedPages&) = delete;
    ScriptedPages& operator=(const ScriptedPages&) = delete;

    /// The pages that were made, those that have gone included.
    [[nodiscard]] const std::vector<std::shared_ptr<ScriptedPage>>& made() const { return *made_; }

private:
    std::shared_ptr<std::vector<std::shared_ptr<ScriptedPage>>> made_;
};

}  // namespace velmora::test
