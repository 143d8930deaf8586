#include "ui/Label.h"

#include "ui/TextLayout.h"

#include <cmath>

#include <QPainter>

namespace velmora {

namespace {

constexpr int kAnyHeight = QWIDGETSIZE_MAX;

}  // namespace

Label::Label(QWidget* parent) : QWidget(parent) { setAttribute(Qt::WA_TransparentForMouseEvents); }

void Label::setText(const QString& text, const TextAttributeDictionary& attributes) {
    text_ = text;
    attributes_ = attributes;
    picture_.forget();
    update();
}

void Label::setNumberOfLines(int number) {
    numberOfLines_ = number;
    picture_.forget();
    update();
}

QSize Label::sizeThatFits(int width) const {
    const auto size = TextLayout(text_, attributes_, QSizeF(width, kAnyHeight), numberOfLines_).size();
    return {static_cast<int>(std::ceil(size.width())), static_cast<int>(std::ceil(size.height()))};
}

void Label::sizeToFit() { resize(sizeThatFits(numberOfLines_ == 1 ? QWIDGETSIZE_MAX : width())); }

void Label::paintEvent(QPaintEvent*) {
    if (text_.isEmpty()) return;
    picture_.paint(*this, [this](QPainter& painter) {
        const TextLayout layout(text_, attributes_, size(), numberOfLines_);
        layout.draw(painter, {0, (height() - layout.size().height()) / 2});
    });
}

}  // namespace velmora
