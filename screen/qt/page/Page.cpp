#include "screen/Page.h"

#include "platform/Immortal.h"
#include "platform/Log.h"
#include "screen/Application.h"
#include "screen/qt/webpage/PageModule.h"

#include <filesystem>

#include <dlfcn.h>

#include <QCoreApplication>
#include <QPluginLoader>
#include <QPointer>
#include <QWidget>

namespace velmora::screen {

namespace {

/// The engine works in an application whose object was made after this; it may load long after that.
[[maybe_unused]] const bool kContextsAreShared = [] {
    if (QCoreApplication::instance() != nullptr) return false;
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    return true;
}();

/// What there is to see without an engine: nothing.
class EmptyPage final : public Page {
public:
    EmptyPage() {
        if (Application::hasScreen()) widget_ = new QWidget;
    }

    ~EmptyPage() override {
        // After the application object no widget can be taken down any more.
        if (QCoreApplication::instance() != nullptr) delete widget_;
    }

    EmptyPage(const EmptyPage&) = delete;
    EmptyPage& operator=(const EmptyPage&) = delete;

    QWidget* widget() override { return widget_; }
    void load(const std::string&) override {}
    void setDelegate(std::weak_ptr<PageDelegate>) override {}

private:
    QPointer<QWidget> widget_;
};

/// Beside whatever this code is linked into, both where it is built and where it is installed.
std::filesystem::path moduleFile() {
    Dl_info image{};
    if (dladdr(reinterpret_cast<const void*>(&moduleFile), &image) == 0) return {};
    std::error_code failed;
    const auto file = std::filesystem::canonical(image.dli_fname, failed);
    return failed ? std::filesystem::path() : file.parent_path() / "velmora" / "webpage.so";
}

/// The module stays in the process: the engine cannot be taken out again.
class Module {
public:
    static Module& instance() {
        static platform::Immortal<Module> module;
        return *module;
    }

    PageModule::Made makePage() {
        if (module_ == nullptr) return {nullptr, whyNot_};
        return module_->makePage();
    }

    Module() {
        const auto file = QString::fromStdString(moduleFile().string());
        loader_.setLoadHints(QLibrary::PreventUnloadHint);
        loader_.setFileName(file);
        module_ = qobject_cast<PageModule*>(loader_.instance());
        if (module_ != nullptr) return;
        whyNot_ = loader_.isLoaded() ? "another version's module: " + file.toStdString()
                                     : loader_.errorString().toStdString();
    }

private:
    QPluginLoader loader_;
    PageModule* module_ = nullptr;
    std::string whyNot_;
};

std::unique_ptr<Page> makeEnginePage() {
    auto made = Module::instance().makePage();
    if (made.page) return std::move(made.page);
    platform::log("No web page can be shown: " + made.whyNot);
    return std::make_unique<EmptyPage>();
}

Page::Factory& factory() {
    static platform::Immortal<Page::Factory> factory;
    return *factory;
}

}  // namespace

std::unique_ptr<Page> Page::make() { return factory() ? factory()() : makeEnginePage(); }

void Page::replaceFactory(Factory replacement) { factory() = std::move(replacement); }

}  // namespace velmora::screen
