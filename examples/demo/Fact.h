#pragma once

#include <QList>
#include <QString>

namespace demo {

/// A line of a table: what it is called, and what it is; empty where nobody tells.
struct Fact {
    QString name;
    QString value;
};

/// A table for a label, in the colours of the theme; `untold` stands for what nobody tells.
[[nodiscard]] QString htmlOf(const QList<Fact>& facts, const QString& untold);

}  // namespace demo
