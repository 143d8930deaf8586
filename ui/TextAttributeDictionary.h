#pragma once

#include "ui/ParagraphStyle.h"
#include "ui/Shadow.h"

#include <optional>

#include <QColor>
#include <QFont>

namespace velmora {

/// How a text is drawn, an entry an attribute; one that is absent leaves it to whoever draws.
struct TextAttributeDictionary {
    std::optional<QFont> font{};
    std::optional<ParagraphStyle> paragraphStyle{};
    std::optional<QColor> backgroundColor{};
    std::optional<QColor> foregroundColor{};
    /// 0 draws none, 2 a thick line, 9 two, any other number one.
    std::optional<int> underlineStyle{};
    std::optional<Shadow> shadow{};
    /// Absent, the stroke has the foreground's colour.
    std::optional<QColor> strokeColor{};
    /// In hundredths of the font's size. Above 0 only the outlines are drawn, below 0 the inside too.
    std::optional<float> strokeWidth{};

    friend bool operator==(const TextAttributeDictionary&, const TextAttributeDictionary&) = default;
};

}  // namespace velmora
