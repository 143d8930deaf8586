#pragma once

#include "Record.h"

#include <QDir>
#include <QList>

namespace demo {

/// One page that shows how it all went.
class Report {
public:
    explicit Report(const QDir& folder);

    /// `own` are pictures of the application itself. The file's path; empty when it could not be written.
    [[nodiscard]] QString write(const QList<Record>& records, const QList<Picture>& own,
                                const QString& trouble) const;

private:
    const QDir folder_;
};

}  // namespace demo
