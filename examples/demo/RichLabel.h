#pragma once

#include <QLabel>

namespace demo {

/// A label for HTML of several lines, which can be selected and copied.
class RichLabel : public QLabel {
public:
    explicit RichLabel(QWidget* parent = nullptr) : QLabel(parent) {
        setTextFormat(Qt::RichText);
        setWordWrap(true);
        setAlignment(Qt::AlignTop);
        setTextInteractionFlags(Qt::TextSelectableByMouse);
    }
};

}  // namespace demo
