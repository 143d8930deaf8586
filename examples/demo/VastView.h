#pragma once

#include "VastFetch.h"

#include <optional>

#include <QWidget>

class QComboBox;
class QLabel;
class QPushButton;

namespace demo {

/// Makes a VAST URL for what is chosen, and shows it taken apart beside what the service answered.
class VastView : public QWidget {
public:
    explicit VastView(QWidget* parent = nullptr);

    void show(const VastAnswer& answer);
    void refresh();

private:
    void ask();

    VastFetch fetch_;
    std::optional<VastAnswer> answer_;
    QComboBox* zone_;
    QComboBox* type_;
    QComboBox* version_;
    QPushButton* make_;
    QLabel* words_;
};

}  // namespace demo
