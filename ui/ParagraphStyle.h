#pragma once

namespace velmora {

enum class TextAlignment : int { left = 0, center = 1, right = 2, justified = 3, natural = 4 };

enum class WritingDirection : int { natural = -1, leftToRight = 0, rightToLeft = 1 };

enum class LineBreakMode : int {
    byWordWrapping = 0,
    byCharWrapping = 1,
    byClipping = 2,
    byTruncatingHead = 3,
    byTruncatingTail = 4,
    byTruncatingMiddle = 5,
};

/// How the lines of a text lie. Natural is as the text's first letter has it.
struct ParagraphStyle {
    TextAlignment alignment = TextAlignment::natural;
    WritingDirection baseWritingDirection = WritingDirection::natural;
    LineBreakMode lineBreakMode = LineBreakMode::byWordWrapping;

    friend bool operator==(const ParagraphStyle&, const ParagraphStyle&) = default;
};

}  // namespace velmora
