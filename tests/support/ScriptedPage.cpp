#include "support/ScriptedPage.h"

#include <utility>

namespace velmora::test {

namespace {

/// What the library holds of a scripted page.
class Held final : public screen::Page {
public:
    explicit Held(std::shared_ptr<ScriptedPage> script) : script_(std::move(script)) {
        script_->widget = new QWidget;
    }

    ~Held() override { delete script_->widget; }

    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

    QWidget* widget() override { return script_->widget; }
    void load(const std::string& url) override { script_->loads.push_back(url); }
    void setDelegate(std::weak_ptr<screen::PageDelegate> delegate) override {
        script_->delegate = std::move(delegate);
    }

private:
    std::shared_ptr<ScriptedPage> script_;
};

}  // namespace

bool ScriptedPage::navigate(const std::string& url) const {
    const auto told = delegate.lock();
    return !told || told->pageShouldStartLoad(url);
}

void ScriptedPage::finish(const std::string& url) const {
    if (const auto told = delegate.lock()) told->pageDidFinishLoad(url);
}

ScriptedPages::ScriptedPages() : made_(std::make_shared<std::vector<std::shared_ptr<ScriptedPage>>>()) {
    screen::Page::replaceFactory([made = made_] {
        made->push_back(std::make_shared<ScriptedPage>());
        return std::make_unique<Held>(made->back());
    });
}

ScriptedPages::~ScriptedPages() { screen::Page::replaceFactory({}); }

}  // namespace velmora::test
