#pragma once

#include "screen/qt/webpage/PageModule.h"

#include <QObject>

namespace velmora::webpage {

/// What the plugin loader makes: pages of Qt WebEngine.
class WebPageModule final : public QObject, public screen::PageModule {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID VELMORA_PAGE_MODULE)
    Q_INTERFACES(velmora::screen::PageModule)

public:
    [[nodiscard]] Made makePage() override;
};

}  // namespace velmora::webpage
