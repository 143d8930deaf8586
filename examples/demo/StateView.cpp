#include "StateView.h"

#include "Event.h"
#include "Theme.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace demo {

namespace {

using namespace std::chrono_literals;

constexpr qsizetype kMostRows = 4;

const char* meaningOf(int state) {
    switch (state) {
    case 1: return "filtered out";
    case 2: return "offered";
    case 3: return "being shown";
    default: return "unknown";
    }
}

QString row(const QString& first, const QString& second) {
    return QString("<tr><td>%1</td><td align='right' style='color:%3'>&nbsp;&nbsp;%2</td></tr>")
        .arg(first.toHtmlEscaped(), second.toHtmlEscaped(), Theme::current().soft.name());
}

/// The newest rows.
template <class List, class ToRow>
QString section(const QString& title, const List& list, ToRow toRow) {
    auto html = QString("<p style='margin:10px 0 3px 0; color:%3'>%1&nbsp; <b>%2</b></p>")
                    .arg(title, QString::number(list.size()), Theme::current().soft.name());
    if (list.isEmpty()) return html;
    html += "<table width='100%' cellspacing='0' cellpadding='2'>";
    const auto rows = std::min(list.size(), kMostRows);
    for (qsizetype index = list.size(); index-- > list.size() - rows;) html += toRow(list[index]);
    html += "</table>";
    if (list.size() > rows) html += QString("<p style='margin:2px'>and %1 more</p>").arg(list.size() - rows);
    return html;
}

QString htmlOf(const StoredState& state) {
    auto html = section("Final states", state.finalStates, [](const StoredState::FinalState& one) {
        auto words = QString("%1, %2").arg(one.state).arg(meaningOf(one.state));
        if (!one.passedDuration.isEmpty()) words += ", passed " + one.passedDuration;
        return row(one.suggestionId, words);
    });
    html += section("Done suggestions", state.done, [](const StoredState::Done& one) {
        return row(one.suggestionId, QString("%1 %, %2 s").arg(one.percentage).arg(one.seconds, 0, 'f', 1));
    });
    html += section("Ready ads", state.ready, [](const StoredState::Ready& one) {
        return row(one.suggestionId,
                   QString("%1, since %2").arg(one.isCached ? "cached" : "streamed", clockText(one.since)));
    });
    if (!state.user.isEmpty())
        html += QString("<p style='margin:10px 0 0 0; color:%2'>The service knows this user as <b>%1</b></p>")
                    .arg(state.user.toHtmlEscaped(), Theme::current().soft.name());
    return html;
}

}  // namespace

StateView::StateView(QString file, QWidget* parent) : RichLabel(parent), file_(std::move(file)) {
    connect(&often_, &QTimer::timeout, this, &StateView::refresh);
    often_.start(1s);
    refresh();
}

void StateView::refresh() {
    const auto html = htmlOf(StoredState::read(file_));
    if (html != text()) setText(html);
}

}  // namespace demo
