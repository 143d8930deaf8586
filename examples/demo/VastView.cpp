#include "VastView.h"

#include "CardGrid.h"
#include "RichLabel.h"
#include "Zones.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QPushButton>

namespace demo {

using velmora::VLPrerollType;
using velmora::VLVastVersion;

namespace {

constexpr int kNarrowestChoice = 200;
constexpr int kGap = 8;

QString wordsFor(const VastAnswer& answer) {
    return htmlOf(answer.facts(), "not told") + "<p>The URL ends in a query with these pairs:</p>" +
           htmlOf(answer.pairs(), "empty") + "<p>and with the library's headers:</p>" +
           htmlOf(answer.headers(), "empty");
}

}  // namespace

VastView::VastView(QWidget* parent)
    : QWidget(parent),
      zone_(new QComboBox),
      type_(new QComboBox),
      version_(new QComboBox),
      make_(new QPushButton("Make and fetch")),
      words_(new RichLabel) {
    for (const auto& zone : kZones) zone_->addItem(zone.name, zone.name);
    type_->addItem("Not to be skipped", QVariant::fromValue(VLPrerollType::notSkippable));
    type_->addItem("May be skipped", QVariant::fromValue(VLPrerollType::skippable));
    version_->addItem("VAST 3.0", QVariant::fromValue(VLVastVersion::v3));
    version_->addItem("VAST 2.0", QVariant::fromValue(VLVastVersion::v2));
    make_->setObjectName("first");

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    auto* grid = new CardGrid(kNarrowestChoice, kGap);
    for (QWidget* one : std::initializer_list<QWidget*>{zone_, type_, version_, make_}) grid->addWidget(one);
    column->addLayout(grid);
    words_->setText("For applications with a video player of their own: the URL of a pre-roll ad.");
    column->addWidget(words_);
    column->addStretch(1);
    connect(make_, &QPushButton::clicked, this, &VastView::ask);
    connect(&fetch_, &VastFetch::came, this, [this](const VastAnswer& answer) {
        make_->setEnabled(true);
        show(answer);
    });
}

void VastView::show(const VastAnswer& answer) {
    zone_->setCurrentIndex(zone_->findData(answer.question.zone));
    type_->setCurrentIndex(type_->findData(QVariant::fromValue(answer.question.type)));
    version_->setCurrentIndex(version_->findData(QVariant::fromValue(answer.question.version)));
    answer_ = answer;
    refresh();
}

void VastView::ask() {
    make_->setEnabled(false);
    fetch_.fetch({.zone = zone_->currentData().toString(),
                  .type = type_->currentData().value<VLPrerollType>(),
                  .version = version_->currentData().value<VLVastVersion>()});
}

void VastView::refresh() {
    if (answer_) words_->setText(wordsFor(*answer_));
}

}  // namespace demo
