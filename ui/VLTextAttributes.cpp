#include "ui/VLTextAttributes.h"

#include "platform/Bundle.h"
#include "screen/Fonts.h"

#include <fstream>
#include <iterator>
#include <mutex>
#include <string>
#include <string_view>

namespace velmora {

namespace {

constexpr std::string_view kDefaultFamily = "Web Yekan";
constexpr std::string_view kFunFamily = "Dast Nevis";
constexpr double kSize = 16;

/// Empty when it cannot be read.
std::string resource(std::string_view name) {
    std::ifstream file(platform::Bundle::resourcePath(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

VLTextAttributes styled(std::string_view family, double size, const ParagraphStyle& style) {
    VLTextAttributes attributes;
    attributes.setDictionary({.font = screen::Fonts::fontWithName(family, size), .paragraphStyle = style});
    return attributes;
}

}  // namespace

void VLTextAttributes::loadBundleFonts() {
    static std::once_flag loaded;
    std::call_once(loaded, [] {
        for (const std::string_view font : {"Yekan.ttf", "DastNevis.otf"}) {
            // Text without its font is drawn in another one, which is better than a complaint.
            static_cast<void>(screen::Fonts::add(resource(font)));
        }
    });
}

VLTextAttributes VLTextAttributes::defaultTextAttributes() {
    return defaultTextAttributesWithFontSize(kSize);
}

VLTextAttributes VLTextAttributes::defaultTextAttributesWithFontSize(double size) {
    loadBundleFonts();
    return styled(kDefaultFamily, size,
                  {TextAlignment::right, WritingDirection::rightToLeft, LineBreakMode::byTruncatingTail});
}

VLTextAttributes VLTextAttributes::funTextAttributes() { return funTextAttributesWithFontSize(kSize); }

VLTextAttributes VLTextAttributes::funTextAttributesWithFontSize(double size) {
    return styled(kFunFamily, size,
                  {TextAlignment::center, WritingDirection::rightToLeft, LineBreakMode::byWordWrapping});
}

void VLTextAttributes::setStrokeColor(const std::optional<QColor>& color, double width) {
    dictionary_.strokeColor = color;
    dictionary_.strokeWidth = static_cast<float>(width);
}

void VLTextAttributes::setFontSize(double size) {
    dictionary_.font = screen::Fonts::fontWithName(kDefaultFamily, size);
}

void VLTextAttributes::setLineBreakMode(LineBreakMode mode) {
    // Alignment and direction stay; the other way round, setting an alignment drops the mode.
    auto style = dictionary_.paragraphStyle.value_or(
        ParagraphStyle{.baseWritingDirection = WritingDirection::rightToLeft});
    style.lineBreakMode = mode;
    dictionary_.paragraphStyle = style;
}

void VLTextAttributes::setAlignment(TextAlignment alignment) {
    ParagraphStyle style{alignment, WritingDirection::rightToLeft, LineBreakMode::byTruncatingTail};
    if (const auto& stored = dictionary_.paragraphStyle)
        style.baseWritingDirection = stored->baseWritingDirection;
    dictionary_.paragraphStyle = style;
}

}  // namespace velmora
