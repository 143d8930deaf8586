#pragma once

#include <QLayout>
#include <QList>

namespace demo {

/// As many columns of one width as there is room for, and rows as high as the highest card in each.
class CardGrid : public QLayout {
public:
    CardGrid(int narrowest, int gap);
    ~CardGrid() override;

    void addItem(QLayoutItem* item) override;
    [[nodiscard]] int count() const override;
    [[nodiscard]] QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSize() const override;
    void setGeometry(const QRect& frame) override;

private:
    /// The height that they take together.
    int place(const QRect& whole, bool forReal) const;

    const int narrowest_;
    const int gap_;
    QList<QLayoutItem*> items_;
};

}  // namespace demo
