#include "DeviceView.h"

#include "DeviceFacts.h"
#include "RichLabel.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace demo {

namespace {

QString wordsFor(const DeviceFacts& facts) {
    const auto& trouble = facts.trouble();
    if (facts.record().isEmpty() && !trouble.isEmpty()) return "It cannot be found out: " + trouble;
    if (facts.record().isEmpty()) return facts.isDone() ? "Nothing was found out." : "Looking…";
    const auto took = QString("The library took %1 ms for it").arg(facts.milliseconds(), 0, 'f', 1);
    if (!trouble.isEmpty()) return took + "; then " + trouble + '.';
    return facts.isDone() ? took + "." : took + "; the place may still come.";
}

}  // namespace

DeviceView::DeviceView(DeviceFacts& facts, QWidget* parent)
    : QWidget(parent),
      facts_(facts),
      table_(new RichLabel),
      words_(new QLabel),
      again_(new QPushButton("Look again")) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    words_->setObjectName("soft");
    words_->setWordWrap(true);
    column->addWidget(table_);
    auto* row = new QHBoxLayout;
    row->addWidget(words_, 1);
    row->addWidget(again_);
    column->addLayout(row);
    column->addStretch(1);
    connect(again_, &QPushButton::clicked, &facts_, &DeviceFacts::look);
    connect(&facts_, &DeviceFacts::changed, this, &DeviceView::refresh);
    refresh();
}

void DeviceView::refresh() {
    table_->setText(htmlOf(facts_.facts(), "not told by this machine"));
    words_->setText(wordsFor(facts_));
    again_->setEnabled(facts_.isDone());
}

}  // namespace demo
