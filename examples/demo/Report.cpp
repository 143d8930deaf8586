#include "Report.h"

#include "VastVisits.h"

#include <algorithm>

#include <QDateTime>
#include <QSaveFile>
#include <QUrl>

namespace demo {

namespace {

constexpr const char* kHead = R"(<!doctype html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Velmora demo: report</title>
<style>
  :root { color-scheme: light dark; --page: #f6f5f1; --sheet: #fff; --line: #dedad0; --text: #1c2130; --soft: #5f6577;
    --good: #1b7a43; --bad: #b3261e; --good-sheet: #e3f3e8; --bad-sheet: #fdecea; }
  @media (prefers-color-scheme: dark) { :root { --page: #12151d; --sheet: #1a1f2b; --line: #343c4d; --text: #e8eaf0;
    --soft: #9aa2b5; --good: #6fd39a; --bad: #ff9b91; --good-sheet: #17301f; --bad-sheet: #3a1f22; } }
  * { box-sizing: border-box; }
  body { margin: 0; background: var(--page); color: var(--text);
    font: 15px/1.45 system-ui, -apple-system, "Segoe UI", Roboto, "DejaVu Sans", sans-serif; }
  main { max-width: 1240px; margin: 0 auto; padding: 24px 18px 60px; display: grid; gap: 18px; }
  h1 { font-size: 24px; margin: 0; } h2 { font-size: 18px; margin: 0; } h3 { font-size: 13px; color: var(--soft); margin: 0 0 4px; }
  section { background: var(--sheet); border: 1px solid var(--line); border-radius: 14px; padding: 16px 18px; display: grid; gap: 14px; min-width: 0; }
  .head { display: flex; flex-wrap: wrap; gap: 6px 12px; align-items: baseline; }
  .soft { color: var(--soft); }
  .pill { border-radius: 99px; padding: 2px 11px; font-size: 13px; font-weight: 600; }
  .good { background: var(--good-sheet); color: var(--good); } .bad { background: var(--bad-sheet); color: var(--bad); }
  ul.bad { margin: 0; border-radius: 10px; padding: 10px 14px 10px 30px; }
  .pictures { display: flex; gap: 12px; overflow-x: auto; padding-bottom: 6px; }
  figure { margin: 0; flex: none; width: min-content; min-width: 150px; } figcaption { font-size: 13px; color: var(--soft); padding-top: 4px; }
  img { display: block; height: 240px; width: auto; max-width: 400px; object-fit: contain; border-radius: 8px; border: 1px solid var(--line); background: #000; }
  .columns { display: grid; gap: 18px; grid-template-columns: repeat(auto-fit, minmax(min(100%, 420px), 1fr)); }
  .columns > div { min-width: 0; overflow-x: auto; }
  table { border-collapse: collapse; width: 100%; font-size: 13px; }
  td { padding: 3px 12px 3px 0; vertical-align: top; border-top: 1px solid var(--line); white-space: nowrap; }
  td:nth-child(3) { white-space: normal; overflow-wrap: anywhere; }
  td:first-child { color: var(--soft); font-variant-numeric: tabular-nums; width: 1%; }
  table.facts td { white-space: normal; overflow-wrap: anywhere; } table.facts td:first-child { width: 38%; }
  .mono { font-family: ui-monospace, Menlo, Consolas, "DejaVu Sans Mono", monospace; font-size: 12px; }
  a { color: inherit; }
</style>
</head>
<body>
<main>
)";

QString seconds(qint64 milliseconds) {
    return QString::number(static_cast<double>(milliseconds) / 1000, 'f', 2) + " s";
}

QString pill(bool isGood, const QString& words) {
    return QString("<span class='pill %1'>%2</span>").arg(isGood ? "good" : "bad", words);
}

QString figure(const Picture& picture, const QString& caption) {
    if (picture.file.isEmpty()) return {};
    const auto link = QString::fromUtf8(QUrl::toPercentEncoding(picture.file));
    return QString("<figure><a href='%1'><img loading='lazy' src='%1' "
                   "alt='%2'></a><figcaption>%3</figcaption></figure>")
        .arg(link, picture.words.toHtmlEscaped(), caption.toHtmlEscaped());
}

QString row(qint64 since, const QStringList& cells) {
    auto html = "<tr><td>" + seconds(since) + "</td>";
    for (const auto& cell : cells) html += "<td>" + cell + "</td>";
    return html + "</tr>\n";
}

QString eventRow(const Event& event, qint64 start) {
    const auto name = isCallback(event) ? "<b>" + event.name + "</b>" : event.name;
    const QString thread = !isCallback(event) ? "" : event.onMainThread ? "main" : "background";
    return row(event.time - start,
               {name, describe(event).toHtmlEscaped(), "<span class='soft'>" + thread + "</span>"});
}

QString entryRow(const QJsonObject& entry, qint64 start) {
    const auto path = entry["path"].toString().toHtmlEscaped();
    return row(entry["time"].toInteger() - start,
               {entry["kind"].toString(), "<span class='mono'>" + path + "</span>",
                QString::number(entry["status"].toInt())});
}

QString sectionOf(const Record& record) {
    QString html = "<section>\n<div class='head'><h2>" + record.scenario.zone + "</h2><span>" +
                   record.scenario.title.toHtmlEscaped() + "</span>" +
                   pill(record.wrong.isEmpty(), record.wrong.isEmpty() ? "as planned" : "not as planned") +
                   "<span class='soft'>" + (record.scenario.isCached ? "cached, " : "streamed, ") +
                   seconds(record.end - record.start) + "</span></div>\n";
    if (!record.wrong.isEmpty()) {
        html += "<ul class='bad'>";
        for (const auto& line : record.wrong) html += "<li>" + line.toHtmlEscaped() + "</li>";
        html += "</ul>\n";
    }
    html += "<div class='pictures'>\n";
    for (const auto& picture : record.pictures)
        html += figure(picture, seconds(picture.time - record.start) + ": " + picture.words);
    html +=
        "</div>\n<div class='columns'>\n<div><h3>What was asked, and what the library called</h3><table>\n";
    for (const auto& event : record.events) html += eventRow(event, record.start);
    html += "</table></div>\n<div><h3>What the ad service received</h3><table>\n";
    for (const auto& entry : record.received) html += entryRow(entry, record.start);
    return html + "</table></div>\n</div>\n</section>\n";
}

/// In two columns; the first is narrow, and the second breaks anywhere.
QString tableOf(const QString& heading, const QList<Fact>& facts) {
    auto html = "<div><h3>" + heading + "</h3><table class='facts'>\n";
    for (const auto& fact : facts) {
        const auto value =
            fact.value.isEmpty() ? "<span class='soft'>not told</span>" : fact.value.toHtmlEscaped();
        html += "<tr><td>" + fact.name.toHtmlEscaped() + "</td><td>" + value + "</td></tr>\n";
    }
    return html + "</table></div>\n";
}

QString sectionOf(const VastAnswer& answer) {
    const auto wrong = VastVisits::deviations(answer);
    auto html =
        QString("<section>\n<div class='head'><h2>VAST %1</h2><span>the pre-roll of %2</span>%3</div>\n")
            .arg(answer.question.versionText(), answer.question.zone,
                 pill(wrong.isEmpty(), wrong.isEmpty() ? "as planned" : "not as planned"));
    if (!wrong.isEmpty()) html += "<ul class='bad'><li>" + wrong.join("; ").toHtmlEscaped() + "</li></ul>\n";
    return html + "<div class='columns'>\n" + tableOf("What the service answered", answer.facts()) +
           tableOf("The pairs of the URL", answer.pairs()) +
           tableOf("The library's headers in it", answer.headers()) + "</div>\n</section>\n";
}

QString sectionOf(const QList<Fact>& device) {
    if (device.isEmpty()) return {};
    const auto half = (device.size() + 1) / 2;
    return "<section>\n<h2>This device</h2>\n<div class='columns'>\n" +
           tableOf("What the library finds out", device.first(half)) +
           tableOf("&nbsp;", device.sliced(half)) + "</div>\n</section>\n";
}

/// How many of them are as planned.
QString tally(qsizetype good, qsizetype all, const char* what) {
    return QString("%1 of %2 %3 as planned").arg(good).arg(all).arg(what);
}

QString verdict(const Story& story) {
    const auto& records = story.records;
    const auto& vast = story.vast;
    const auto& trouble = story.trouble;
    const auto shown = std::count_if(records.begin(), records.end(),
                                     [](const Record& record) { return record.wrong.isEmpty(); });
    const auto fetched = std::count_if(vast.begin(), vast.end(), [](const VastAnswer& answer) {
        return VastVisits::deviations(answer).isEmpty();
    });
    auto html = "<div class='head'><h1>Velmora demo</h1>" +
                pill(trouble.isEmpty() && shown == records.size(), tally(shown, records.size(), "showings")) +
                pill(trouble.isEmpty() && fetched == vast.size(), tally(fetched, vast.size(), "VAST URLs")) +
                "<span class='soft'>" + QDateTime::currentDateTime().toString("yyyy-MM-dd HH:mm:ss") +
                "</span></div>\n";
    if (!trouble.isEmpty()) html += "<ul class='bad'><li>" + trouble.toHtmlEscaped() + "</li></ul>\n";
    return html;
}

}  // namespace

Report::Report(const QDir& folder) : folder_(folder) {}

QString Report::write(const Story& story) const {
    auto html = QString(kHead) + verdict(story);
    for (const auto& record : story.records) html += sectionOf(record);
    for (const auto& answer : story.vast) html += sectionOf(answer);
    html += sectionOf(story.device);
    html += "<section><h2>The application at the end</h2><div class='pictures'>\n";
    for (const auto& picture : story.own) html += figure(picture, picture.words);
    html += "</div></section>\n</main>\n</body>\n</html>\n";

    QSaveFile file(folder_.filePath("report.html"));
    if (!file.open(QIODevice::WriteOnly)) return {};
    file.write(html.toUtf8());
    return file.commit() ? file.fileName() : QString();
}

}  // namespace demo
