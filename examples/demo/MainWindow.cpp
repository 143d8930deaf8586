#include "MainWindow.h"

#include "CardGrid.h"
#include "DeviceFacts.h"
#include "DeviceView.h"
#include "EventList.h"
#include "SettingsBar.h"
#include "StateView.h"
#include "StoredState.h"
#include "Theme.h"
#include "VastView.h"
#include "ZoneCard.h"
#include "Zones.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>

namespace demo {

namespace {

constexpr int kWide = 900;
constexpr int kGap = 14;

QLabel* label(const QString& text, const char* style) {
    auto* made = new QLabel(text);
    made->setObjectName(style);
    made->setWordWrap(true);
    return made;
}

QFrame* sheet(const QString& heading, QWidget* content) {
    auto* frame = new QFrame;
    frame->setObjectName("sheet");
    auto* column = new QVBoxLayout(frame);
    column->setContentsMargins(16, 12, 12, 12);
    column->setSpacing(6);
    column->addWidget(label(heading, "heading"));
    column->addWidget(content, 1);
    return frame;
}

QString serviceText(const QString& inspector) {
    const auto base = qEnvironmentVariable("VELMORA_API_BASE_URL", "the ad service that was built in");
    auto text = "asks " + base.toHtmlEscaped();
    if (!inspector.isEmpty())
        text += QString("; <a href='%1' style='color:%2'>what it received</a>")
                    .arg(inspector.toHtmlEscaped(), Theme::current().accent.name());
    return text;
}

}  // namespace

MainWindow::MainWindow(AdDesk& desk, DeviceFacts& facts, const Arguments& arguments)
    : desk_(desk),
      settings_(new SettingsBar),
      events_(new EventList),
      state_(new StateView(StoredState::usualFile())),
      vast_(new VastView),
      theme_(new QPushButton),
      service_(new QLabel),
      inspector_(arguments.inspector) {
    setWindowTitle("Velmora demo");
    auto* page = new QWidget;
    page->setObjectName("page");
    auto* rows = new QVBoxLayout(page);
    rows->setContentsMargins(kGap, kGap, kGap, kGap);
    rows->setSpacing(kGap);
    rows->addWidget(makeHead());
    columns_ = new QBoxLayout(QBoxLayout::LeftToRight);
    columns_->setSpacing(kGap);
    columns_->addWidget(makeZones(), 5);
    columns_->addWidget(makeNews(), 3);
    rows->addLayout(columns_, 1);
    rows->addWidget(makeBelow(facts));

    auto* scroll = new QScrollArea;
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(page);
    setCentralWidget(scroll);
    resize(arguments.size);
    wear(Theme::current());

    connect(theme_, &QPushButton::clicked, this,
            [this] { wear(Theme::current().isDark ? Theme::light() : Theme::dark()); });
    connect(&desk_, &AdDesk::happened, this, [this](const Event& event) {
        events_->add(event);
        state_->refresh();
    });
    connect(&desk_, &AdDesk::changed, this, [this](const QString& zone) {
        for (auto* card : cards_) {
            if (card->zone() == zone) card->refresh();
        }
    });
}

QWidget* MainWindow::makeHead() {
    auto* head = new QWidget;
    auto* row = new QHBoxLayout(head);
    row->setContentsMargins(2, 0, 0, 0);
    auto* words = new QVBoxLayout;
    words->setSpacing(1);
    words->addWidget(label("Velmora demo", "title"));
    service_->setObjectName("soft");
    service_->setWordWrap(true);
    service_->setOpenExternalLinks(true);
    words->addWidget(service_);
    row->addLayout(words, 1);
    row->addWidget(theme_, 0, Qt::AlignTop);
    return head;
}

QWidget* MainWindow::makeZones() {
    auto* left = new QWidget;
    auto* column = new QVBoxLayout(left);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(kGap);
    column->addWidget(settings_);
    auto* grid = new CardGrid(216, kGap);
    for (const auto& zone : kZones) {
        auto* card = new ZoneCard(zone, desk_);
        cards_.append(card);
        grid->addWidget(card);
        connect(card, &ZoneCard::requestWanted, this,
                [this](const QString& name) { desk_.request(name, settings_->settings()); });
        connect(card, &ZoneCard::showWanted, this,
                [this](const QString& name) { desk_.show(name, settings_->settings()); });
    }
    column->addLayout(grid);
    column->addStretch(1);
    return left;
}

QWidget* MainWindow::makeNews() {
    auto* right = new QWidget;
    auto* column = new QVBoxLayout(right);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(kGap);
    column->addWidget(sheet("What happened", events_), 1);
    column->addWidget(sheet("What the library keeps", state_));
    return right;
}

QWidget* MainWindow::makeBelow(DeviceFacts& facts) {
    auto* below = new QWidget;
    below_ = new QBoxLayout(QBoxLayout::LeftToRight, below);
    below_->setContentsMargins(0, 0, 0, 0);
    below_->setSpacing(kGap);
    if (facts.canBeFound()) {
        device_ = new DeviceView(facts);
        below_->addWidget(sheet("This device", device_), 1);
    }
    below_->addWidget(sheet("A VAST URL", vast_), 1);
    return below;
}

void MainWindow::wear(const Theme& theme) {
    theme.apply();
    theme_->setText(theme.isDark ? "Light" : "Dark");
    service_->setText(serviceText(inspector_));
    for (auto* card : cards_) card->refresh();
    state_->refresh();
    vast_->refresh();
    if (device_ != nullptr) device_->refresh();
}

void MainWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    arrange();
}

void MainWindow::arrange() {
    const auto direction = width() < kWide ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight;
    columns_->setDirection(direction);
    below_->setDirection(direction);
}

}  // namespace demo
