#pragma once

#include "screen/Page.h"

#include <memory>
#include <string>

#include <QtPlugin>

namespace velmora::screen {

/// What the library knows of the module that brings the browser engine. Nothing here needs a symbol of the
/// library, so that the module is linked without it.
class PageModule {
public:
    struct Made {
        std::unique_ptr<Page> page;
        /// Where there is no page: the reason, for the log.
        std::string whyNot;
    };

    virtual ~PageModule() = default;

    [[nodiscard]] virtual Made makePage() = 0;
};

}  // namespace velmora::screen

/// Changes with every change of the classes that cross this border.
#define VELMORA_PAGE_MODULE "velmora.PageModule/1"

Q_DECLARE_INTERFACE(velmora::screen::PageModule, VELMORA_PAGE_MODULE)
