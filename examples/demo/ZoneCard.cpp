#include "ZoneCard.h"

#include "Theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace demo {

namespace {

using Standing = AdDesk::Standing;

struct Words {
    QString text;
    QColor colour;
};

Words wordsFor(Standing standing, const velmora::VelmoraAd* ad) {
    const auto& theme = Theme::current();
    switch (standing) {
    case Standing::untouched: return {"not asked yet", theme.soft};
    case Standing::asking: return {"asking ...", theme.accent};
    case Standing::ready:
        return {ad != nullptr && ad->getVideoFilePath() ? "ready, downloaded" : "ready, streamed",
                theme.good};
    case Standing::noAd: return {"no ad", theme.warn};
    case Standing::failed: return {"the request failed", theme.bad};
    case Standing::expired: return {"expired", theme.warn};
    case Standing::shown: return {"was shown", theme.soft};
    }
    return {};
}

QLabel* label(const QString& text, const char* style) {
    auto* made = new QLabel(text);
    made->setObjectName(style);
    made->setWordWrap(true);
    return made;
}

}  // namespace

ZoneCard::ZoneCard(const Zone& zone, const AdDesk& desk, QWidget* parent)
    : QFrame(parent),
      zone_(zone),
      desk_(desk),
      standing_(label({}, "standing")),
      request_(new QPushButton("Request")),
      show_(new QPushButton("Show")) {
    setObjectName("sheet");
    show_->setObjectName("first");
    auto* glyph = label(QString::fromUtf8(zone.glyph), "glyph");
    glyph->setFixedSize(38, 38);
    glyph->setAlignment(Qt::AlignCenter);

    auto* words = new QVBoxLayout;
    words->setSpacing(2);
    words->addWidget(label(zone.name, "name"));
    words->addWidget(standing_);
    auto* head = new QHBoxLayout;
    head->setSpacing(12);
    head->addWidget(glyph, 0, Qt::AlignTop);
    head->addLayout(words, 1);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addWidget(request_, 1);
    buttons->addWidget(show_, 1);

    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(14, 14, 14, 14);
    all->setSpacing(10);
    all->addLayout(head);
    all->addWidget(label(zone.shows, "soft"));
    all->addStretch(1);
    all->addLayout(buttons);

    connect(request_, &QPushButton::clicked, this, [this] { emit requestWanted(this->zone()); });
    connect(show_, &QPushButton::clicked, this, [this] { emit showWanted(this->zone()); });
    refresh();
}

QString ZoneCard::zone() const { return zone_.name; }

void ZoneCard::refresh() {
    const auto ad = desk_.ad(zone());
    const auto standing = desk_.standing(zone());
    const auto [text, colour] = wordsFor(standing, ad.get());
    standing_->setText(text);
    standing_->setStyleSheet("font-size: 13px; color: " + colour.name());
    request_->setEnabled(standing != Standing::asking);
    show_->setEnabled(standing == Standing::ready || standing == Standing::shown);
}

}  // namespace demo
