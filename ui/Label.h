#pragma once

#include "ui/KeptPicture.h"
#include "ui/TextAttributeDictionary.h"

#include <QString>
#include <QWidget>

namespace velmora {

/// A text over what lies beneath it: of one line unless told otherwise, in the middle of the label's height.
/// Touches go through it.
class Label : public QWidget {
public:
    explicit Label(QWidget* parent = nullptr);

    [[nodiscard]] const QString& text() const { return text_; }
    [[nodiscard]] const TextAttributeDictionary& attributes() const { return attributes_; }

    /// The size stays as it is; see `sizeToFit`.
    void setText(const QString& text, const TextAttributeDictionary& attributes);

    /// 0 means as many as the label has room for.
    void setNumberOfLines(int number);

    /// What the text takes within that width, in whole pixels.
    [[nodiscard]] QSize sizeThatFits(int width) const;

    /// Takes the size of the text, the upper left corner staying where it is: of all of it on one line, or,
    /// with other numbers of lines, broken at the width that the label has.
    void sizeToFit();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString text_;
    TextAttributeDictionary attributes_;
    int numberOfLines_ = 1;
    KeptPicture picture_;
};

}  // namespace velmora
