#pragma once

#include <QDir>
#include <QImage>
#include <QString>

namespace demo {

/// Pictures in a folder, numbered in the order in which they were taken.
class Screenshots {
public:
    explicit Screenshots(const QDir& folder);

    /// The file's name; empty when it could not be written.
    QString add(const QImage& picture, const QString& name);

private:
    const QDir folder_;
    int count_ = 0;
};

}  // namespace demo
