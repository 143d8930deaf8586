#include "Fact.h"

#include "Theme.h"

namespace demo {

namespace {

constexpr qsizetype kLongestPiece = 12;

/// Where a label may break a word. Of itself it does not even after a hyphen, if a digit follows.
constexpr QChar kBreak(0x200B);

/// Names of several words in one may break between them.
QString breakableName(const QString& text) {
    QString words;
    for (const auto c : text) words += c.isUpper() ? QString(kBreak) + c : QString(c);
    return words;
}

/// Long values may break anywhere.
QString breakable(const QString& text) {
    QString pieces;
    qsizetype piece = 0;
    for (const auto c : text) {
        // A sign stays with its number.
        const bool isHyphen = c == '-' && !pieces.isEmpty();
        pieces += c;
        piece = c.isSpace() ? 0 : piece + 1;
        if (isHyphen || piece == kLongestPiece) {
            pieces += kBreak;
            piece = 0;
        }
    }
    return pieces;
}

}  // namespace

QString htmlOf(const QList<Fact>& facts, const QString& untold) {
    const auto soft = Theme::current().soft.name();
    QString html = "<table width='100%' cellspacing='0' cellpadding='2'>";
    for (const auto& fact : facts) {
        const auto value = fact.value.isEmpty()
                               ? QString("<span style='color:%1'>%2</span>").arg(soft, untold)
                               : breakable(fact.value).toHtmlEscaped();
        html += QString("<tr><td width='38%' style='color:%1'>%2</td><td>%3</td></tr>")
                    .arg(soft, breakableName(fact.name).toHtmlEscaped(), value);
    }
    return html + "</table>";
}

}  // namespace demo
