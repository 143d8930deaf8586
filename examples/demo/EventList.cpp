#include "EventList.h"

#include "Theme.h"

#include <QPainter>
#include <QStyledItemDelegate>

namespace demo {

namespace {

constexpr int kMost = 500;
constexpr int kRow = 46;
enum Role { kName = Qt::UserRole, kWords, kTime, kOnMain, kIsCallback, kTone };

enum Tone { calm, good, warn, bad };

Tone toneOf(const Event& event) {
    if (event.name == "error") return bad;
    if (event.name == "noAdAvailable" || event.name == "expiring") return warn;
    return event.name == "adAvailable" || event.completed.value_or(false) ? good : calm;
}

QColor colourOf(int tone) {
    const auto& theme = Theme::current();
    switch (tone) {
    case good: return theme.good;
    case warn: return theme.warn;
    case bad: return theme.bad;
    default: return theme.text;
    }
}

class Row : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& /*option*/, const QModelIndex& /*index*/) const override {
        return {100, kRow};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const auto& theme = Theme::current();
        const auto area = option.rect.adjusted(2, 0, -8, 0);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(theme.line);
        painter->drawLine(area.bottomLeft(), area.bottomRight());

        auto font = option.font;
        font.setPixelSize(12);
        painter->setFont(font);
        painter->setPen(theme.soft);
        const auto time = QRect(area.left(), area.top() + 5, 92, 18);
        painter->drawText(time, Qt::AlignVCenter, index.data(kTime).toString());
        const int right =
            index.data(kIsCallback).toBool() ? paintThread(*painter, area, index) : area.right();

        const QRect words(time.left(), area.top() + 23, area.width(), 18);
        painter->setPen(theme.soft);
        painter->drawText(
            words, Qt::AlignVCenter,
            painter->fontMetrics().elidedText(index.data(kWords).toString(), Qt::ElideRight, words.width()));
        font.setPixelSize(14);
        font.setBold(index.data(kIsCallback).toBool());
        painter->setFont(font);
        painter->setPen(colourOf(index.data(kTone).toInt()));
        const QRect name(QPoint(time.right() + 8, time.top()), QPoint(right - 8, time.bottom()));
        painter->drawText(
            name, Qt::AlignVCenter,
            painter->fontMetrics().elidedText(index.data(kName).toString(), Qt::ElideRight, name.width()));
        painter->restore();
    }

private:
    /// Where it begins.
    static int paintThread(QPainter& painter, const QRect& area, const QModelIndex& index) {
        const auto& theme = Theme::current();
        const bool onMain = index.data(kOnMain).toBool();
        const QString text = onMain ? "main" : "background";
        const int width = painter.fontMetrics().horizontalAdvance(text) + 16;
        const QRect pill(area.right() - width, area.top() + 5, width, 18);
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme.chip);
        painter.drawRoundedRect(pill, 9, 9);
        painter.setPen(onMain ? theme.accent : theme.warn);
        painter.drawText(pill, Qt::AlignCenter, text);
        return pill.left();
    }
};

}  // namespace

EventList::EventList(QWidget* parent) : QListWidget(parent) {
    setItemDelegate(new Row(this));
    setSelectionMode(NoSelection);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    setMinimumHeight(5 * kRow);
}

void EventList::add(const Event& event) {
    auto* item = new QListWidgetItem;
    item->setData(kName, event.name);
    item->setData(kWords, describe(event));
    item->setData(kTime, clockText(event.time));
    item->setData(kOnMain, event.onMainThread);
    item->setData(kIsCallback, isCallback(event));
    item->setData(kTone, toneOf(event));
    item->setToolTip(describe(event));
    insertItem(0, item);
    while (count() > kMost) delete takeItem(count() - 1);
}

}  // namespace demo
