#include "CardGrid.h"

#include <algorithm>

namespace demo {

CardGrid::CardGrid(int narrowest, int gap) : narrowest_(narrowest), gap_(gap) {
    setContentsMargins(0, 0, 0, 0);
}

CardGrid::~CardGrid() { qDeleteAll(items_); }

void CardGrid::addItem(QLayoutItem* item) { items_.append(item); }

int CardGrid::count() const { return static_cast<int>(items_.size()); }

QLayoutItem* CardGrid::itemAt(int index) const { return items_.value(index); }

QLayoutItem* CardGrid::takeAt(int index) {
    return index >= 0 && index < count() ? items_.takeAt(index) : nullptr;
}

int CardGrid::heightForWidth(int width) const { return place(QRect(0, 0, width, 0), false); }

QSize CardGrid::sizeHint() const { return {minimumSize().width(), heightForWidth(minimumSize().width())}; }

QSize CardGrid::minimumSize() const {
    const auto margins = contentsMargins();
    return {narrowest_ + margins.left() + margins.right(), 0};
}

void CardGrid::setGeometry(const QRect& frame) {
    QLayout::setGeometry(frame);
    place(frame, true);
}

int CardGrid::place(const QRect& whole, bool forReal) const {
    const auto margins = contentsMargins();
    const auto frame = whole.marginsRemoved(margins);
    const int columns = std::max(1, (frame.width() + gap_) / (narrowest_ + gap_));
    const int width = (frame.width() - (columns - 1) * gap_) / columns;
    int top = frame.top();
    for (int first = 0; first < count(); first += columns) {
        const int last = std::min(first + columns, count());
        int height = 0;
        for (int index = first; index < last; ++index) {
            auto* item = items_[index];
            height = std::max(height, item->hasHeightForWidth() ? item->heightForWidth(width)
                                                                : item->sizeHint().height());
        }
        for (int index = first; forReal && index < last; ++index)
            items_[index]->setGeometry({frame.left() + (index - first) * (width + gap_), top, width, height});
        top += height + gap_;
    }
    return std::max(0, top - gap_ - frame.top()) + margins.top() + margins.bottom();
}

}  // namespace demo
