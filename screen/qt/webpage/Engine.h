#pragma once

#include <memory>
#include <vector>

#include <QPointer>

class QWebEngineProfile;
class QWebEngineView;

namespace velmora::webpage {

/// What the pages of one application share. It goes with the application object, because the engine does, and
/// takes along every page that is still there.
class Engine {
public:
    static Engine& instance();

    Engine();
    ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    /// Keeps nothing on disk.
    [[nodiscard]] QWebEngineProfile& profile() { return *profile_; }

    /// Has the view deleted no later than the engine goes.
    void add(QWebEngineView* view);

    /// To be told after a page began to load: only then is all in place that the engine itself needs at its
    /// end.
    static void goFirst();

private:
    std::unique_ptr<QWebEngineProfile> profile_;
    std::vector<QPointer<QWebEngineView>> views_;
};

}  // namespace velmora::webpage
