#pragma once

#include <QList>
#include <QString>

namespace demo {

/// What the library keeps for this application from run to run, read from its file.
struct StoredState {
    struct FinalState {
        QString suggestionId;
        int state;
        QString passedDuration;
    };
    struct Done {
        QString suggestionId;
        double percentage;
        double seconds;
    };
    struct Ready {
        QString suggestionId;
        QString zone;
        bool isCached;
        qint64 since;
    };

    QString user;
    QList<FinalState> finalStates;
    QList<Done> done;
    QList<Ready> ready;

    /// Empty when there is no file, or none that can be read.
    [[nodiscard]] static StoredState read(const QString& file);
    /// Of this application.
    [[nodiscard]] static QString usualFile();
};

}  // namespace demo
