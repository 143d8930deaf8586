#pragma once

#include "Fact.h"
#include "Record.h"
#include "VastFetch.h"

#include <QDir>
#include <QList>

namespace demo {

/// How it all went.
struct Story {
    QList<Record> records = {};
    /// Pictures of the application itself.
    QList<Picture> own = {};
    /// What the library found out about the device; empty when nobody looked.
    QList<Fact> device = {};
    QList<VastAnswer> vast = {};
    /// What kept it from going on, in words.
    QString trouble = {};
};

/// One page that tells it.
class Report {
public:
    explicit Report(const QDir& folder);

    /// The file's path; empty when it could not be written.
    [[nodiscard]] QString write(const Story& story) const;

private:
    const QDir folder_;
};

}  // namespace demo
