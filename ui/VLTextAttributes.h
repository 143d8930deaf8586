#pragma once

#include "ui/TextAttributeDictionary.h"

#include <optional>

namespace velmora {

/// How the library's own texts look. A value; main thread only, but for `loadBundleFonts`.
///
/// Both styles are for text that runs from right to left. Absent values given to a setter remove the entry.
class VLTextAttributes final {
public:
    /// Registers the library's two fonts, once in a process, whatever comes of it: a file that is missing or
    /// is no font is passed over in silence. Needs the application object. Safe to call from any thread;
    /// returns when the fonts are there.
    static void loadBundleFonts();

    /// In "Web Yekan", to the right, the end cut off. Loads the fonts.
    [[nodiscard]] static VLTextAttributes defaultTextAttributes();
    [[nodiscard]] static VLTextAttributes defaultTextAttributesWithFontSize(double size);

    /// In "Dast Nevis", centred, over several lines. Leaves loading the fonts to others; before that, and
    /// wherever a font is missing, there is no font entry.
    [[nodiscard]] static VLTextAttributes funTextAttributes();
    [[nodiscard]] static VLTextAttributes funTextAttributesWithFontSize(double size);

    /// A copy, which later changes do not reach.
    [[nodiscard]] TextAttributeDictionary attributes() const { return dictionary_; }

    [[nodiscard]] TextAttributeDictionary& dictionary() { return dictionary_; }
    void setDictionary(const TextAttributeDictionary& dictionary) { dictionary_ = dictionary; }

    [[nodiscard]] const std::optional<ParagraphStyle>& style() const { return dictionary_.paragraphStyle; }
    void setStyle(const std::optional<ParagraphStyle>& style) { dictionary_.paragraphStyle = style; }

    void setBackgroundColor(const std::optional<QColor>& color) { dictionary_.backgroundColor = color; }
    void setForegroundColor(const std::optional<QColor>& color) { dictionary_.foregroundColor = color; }
    void setShadow(const std::optional<Shadow>& shadow) { dictionary_.shadow = shadow; }
    void setUnderlineStyle(int style) { dictionary_.underlineStyle = style; }
    void setStrokeColor(const std::optional<QColor>& color, double width);

    /// "Web Yekan" at that size, whichever font it was.
    void setFontSize(double size);

    /// A new paragraph style of that mode; the stored one's direction and alignment are carried over.
    void setLineBreakMode(LineBreakMode mode);

    /// A new paragraph style of that alignment, the end cut off; of the stored one only the direction is
    /// carried over. Set the line break mode after the alignment, not before.
    void setAlignment(TextAlignment alignment);

private:
    TextAttributeDictionary dictionary_;
};

}  // namespace velmora
